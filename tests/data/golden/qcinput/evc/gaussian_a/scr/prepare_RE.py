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
if not os.path.isdir("elec"):
    os.mkdir("elec", access_rights)
shutil.copy("../../RE/evc-e-mol1.inp", "elec/evc.inp")
shutil.copy("../../RE/re-mol1-anion.fchk", "elec/re-mol1-anion.fchk")
shutil.copy("../../RE/re-mol1-anion.log", "elec/re-mol1-anion.log")
shutil.copy("../../RE/re-mol1-neutral.fchk", "elec/re-mol1-neutral.fchk")
shutil.copy("../../RE/re-mol1-neutral.log", "elec/re-mol1-neutral.log")
if not os.path.isdir("hole"):
    os.mkdir("hole", access_rights)
shutil.copy("../../RE/evc-h-mol1.inp", "hole/evc.inp")
shutil.copy("../../RE/re-mol1-cation.fchk", "hole/re-mol1-cation.fchk")
shutil.copy("../../RE/re-mol1-cation.log", "hole/re-mol1-cation.log")
shutil.copy("../../RE/re-mol1-neutral.fchk", "hole/re-mol1-neutral.fchk")
shutil.copy("../../RE/re-mol1-neutral.log", "hole/re-mol1-neutral.log")
sys.stdout.write("  Treating mol2...\n")
os.chdir(evcdir)

if not os.path.isdir("mol2"):
    os.mkdir("mol2", access_rights)

os.chdir("mol2")
if not os.path.isdir("elec"):
    os.mkdir("elec", access_rights)
shutil.copy("../../RE/evc-e-mol2.inp", "elec/evc.inp")
shutil.copy("../../RE/re-mol2-anion.fchk", "elec/re-mol2-anion.fchk")
shutil.copy("../../RE/re-mol2-anion.log", "elec/re-mol2-anion.log")
shutil.copy("../../RE/re-mol2-neutral.fchk", "elec/re-mol2-neutral.fchk")
shutil.copy("../../RE/re-mol2-neutral.log", "elec/re-mol2-neutral.log")
if not os.path.isdir("hole"):
    os.mkdir("hole", access_rights)
shutil.copy("../../RE/evc-h-mol2.inp", "hole/evc.inp")
shutil.copy("../../RE/re-mol2-cation.fchk", "hole/re-mol2-cation.fchk")
shutil.copy("../../RE/re-mol2-cation.log", "hole/re-mol2-cation.log")
shutil.copy("../../RE/re-mol2-neutral.fchk", "hole/re-mol2-neutral.fchk")
shutil.copy("../../RE/re-mol2-neutral.log", "hole/re-mol2-neutral.log")
