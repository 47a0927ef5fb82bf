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

sys.stdout.write("  Treating mol2...\n")
os.chdir(evcdir)

if not os.path.isdir("mol2"):
    os.mkdir("mol2", access_rights)

os.chdir("mol2")
if not os.path.isdir("elec"):
    os.mkdir("elec", access_rights)
shutil.copy("../../RE/evc-e-mol2.inp", "elec/evc.inp")
shutil.copy("../../RE/re-mol2-anion.umv", "elec/")
shutil.copy("../../RE/re-mol2-neutral.umv", "elec/")
if not os.path.isdir("hole"):
    os.mkdir("hole", access_rights)
shutil.copy("../../RE/evc-h-mol2.inp", "hole/evc.inp")
shutil.copy("../../RE/re-mol2-cation.umv", "hole/")
shutil.copy("../../RE/re-mol2-neutral.umv", "hole/")
