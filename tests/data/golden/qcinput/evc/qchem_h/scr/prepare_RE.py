#!/usr/bin/env python

import os
import sys
import shutil

sys.stdout.write("Prepare for evc calculations...\n")

rootdir = os.getcwd()

access_rights = 493

if not os.path.isdir("evc"):
    os.mkdir("evc", access_rights)

os.chdir("evc")
evcdir = os.getcwd()

sys.stdout.write("  Treating mol1...\n")
os.chdir(evcdir)

if not os.path.isdir("mol1"):
    os.mkdir("mol1", access_rights)

os.chdir("mol1")
if not os.path.isdir("hole"):
    os.mkdir("hole", access_rights)
shutil.copy("../../RE/evc-h-mol1.inp", "hole/evc.inp")
shutil.copy("../../RE/re-mol1-cation.fchk", "hole/")
shutil.copy("../../RE/re-mol1-cation.out", "hole/")
shutil.copy("../../RE/re-mol1-neutral.fchk", "hole/")
shutil.copy("../../RE/re-mol1-neutral.out", "hole/")
