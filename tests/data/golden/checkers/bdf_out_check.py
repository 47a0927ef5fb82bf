#!/usr/bin/env python

import os
import sys

if len(sys.argv) == 1:
    sys.exit(1)

Input = sys.argv[1]
os.system('rm -f %s.ok' % Input)
os.system('rm -f %s.error' % Input)

if os.path.isfile(Input):
    if 'Normal termination. Thank you very much for using BDF.' in open(Input).read():
        os.system('touch %s.ok' % Input)
        sys.exit(0)
    else:
        sys.stdout.write("Abnormal termination of BDF with %s!\n" % Input)
        os.system('touch %s.error' % Input)
        sys.exit(1)
else:
    sys.exit(1)
