#!/usr/bin/env python

import os
import shutil
import sys

directory = sys.argv[1]

for file in [f for f in os.listdir(directory) if f.endswith('.fch')]:
    newname = file[:file.rfind('.')]+'.fchk'

    if os.path.exists(directory+'/'+newname):
        os.remove(directory+'/'+newname)

    shutil.move(directory+'/'+file, directory+'/'+newname)
