#!/usr/bin/env python

import os
import sys

if len(sys.argv) == 1:
    sys.exit(1)

Input = sys.argv[1]
os.system('rm -f %s.ok' % Input)
os.system('rm -f %s.error' % Input)

GauNormEndStr=' Normal termination of Gaussian'

if os.path.isfile(Input):
    with open(Input) as f:
        for line in f:
            pass
        last = line
    if last.find(GauNormEndStr) != -1:
        os.system('touch %s.ok' % Input)
        sys.exit(0)
    else:
        sys.stdout.write("\nAbnormal termination of Gaussian with '%s'!\n\n" % Input)
        os.system('touch %s.error' % Input)
        sys.exit(1)
else:
    sys.exit(1)
