#!/usr/bin/env python

# Collects the reorganisation energies and the normal modes of every molecule from the evc directories.
# Written by the preparing stage of the run; it is rewritten on every preparation.

import os
import sys
import shutil

sys.stdout.write("Calculating NM data ...\n")

lamda_line = "Total reorganization energy"

# cm-1 to meV
ener_scale = 0.1239842

cwd = os.getcwd()

access_rights = 493

if not os.path.isdir("evc"):
    os.mkdir("evc", access_rights)
os.chdir("evc")
cwd2 = os.getcwd()

sys.stdout.write("  Treating mol2...\n")
os.chdir(cwd2)
os.chdir("mol2")
os.chdir("elec")
e_lam1 = 0
e_lam2 = 0
e_lam  = 0

with open("evc.cart.dat", "r") as f:
    lines = f.readlines()
    for line in lines:
        if lamda_line in line:
            lams = line.split()
            e_lam1 = float(lams[-2]) * ener_scale
            e_lam2 = float(lams[-1]) * ener_scale
            e_lam=e_lam1 + e_lam2
            break

with open("lambda.dat", "w") as n:
    n.write("elec:\n")
    n.write("lam lam1 lam2 [meV]\n")
    n.write("%16.8f %16.8f %16.8f\n" % (e_lam, e_lam1, e_lam2))
    n.write("# reorganization energies: lam lam1 lam2 [meV]\n")
os.chdir("..")
os.chdir("hole")
h_lam1 = 0
h_lam2 = 0
h_lam  = 0

with open("evc.cart.dat", "r") as f:
    lines = f.readlines()
    for line in lines:
        if lamda_line in line:
            lams = line.split()
            h_lam1 = float(lams[-2]) * ener_scale
            h_lam2 = float(lams[-1]) * ener_scale
            h_lam = h_lam1 + h_lam2
            break

with open("lambda.dat", "w") as n:
    n.write("hole:\n")
    n.write("lam lam1 lam2 [meV]\n")
    n.write("%16.8f %16.8f %16.8f\n" % (h_lam, h_lam1, h_lam2))
    n.write("# reorganization energies: lam lam1 lam2 [meV]\n")
os.chdir("..")
shutil.copy("elec/NM.dat", "../mol2_NM-e.dat")
shutil.copy("elec/NM.dat", "../../data/NM2-e.dat")
shutil.copy("elec/lambda.dat", "../../data/mol2_lambda-e.dat")
shutil.copy("hole/NM.dat", "../mol2_NM-h.dat")
shutil.copy("hole/NM.dat", "../../data/NM2-h.dat")
shutil.copy("hole/lambda.dat", "../../data/mol2_lambda-h.dat")
