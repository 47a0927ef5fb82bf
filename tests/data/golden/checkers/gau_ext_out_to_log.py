#!/usr/bin/env python

import os
import shutil
import sys

directory = sys.argv[1]

for file in [f for f in os.listdir(directory) if f.endswith('.out')]:
    newname = file[:file.rfind('.')]+'.log'

    if os.path.exists(directory+'/'+newname):
        os.remove(directory+'/'+newname)

    shutil.move(directory+'/'+file, directory+'/'+newname)
