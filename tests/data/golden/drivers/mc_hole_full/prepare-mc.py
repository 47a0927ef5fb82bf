#!/usr/bin/env python

# Prepares one carrier directory: copies the inputs in, sets carrier and temperature, computes the hop rates.
# Written by the preparing stage of the run; it is rewritten on every preparation.

import os
import shutil
import glob
shutil.copy("../../../tavix.inp", "./")
shutil.copy("../../../mol1.mol", "./")
shutil.copy("../../../mol2.mol", "./")
shutil.copy("../../../data/VH.dat", "./")
files = glob.glob('../../../data/VH*-dyn.dat')
for file in files:
    shutil.copy(file, "./")
shutil.copy("../../../data/HOMO-dyn.dat", "./")
shutil.copy("../../../data/NM-h.dat", "./")
shutil.copy("../../../data/EH.dat", "./")
shutil.copy("../../../data/reorg_lambda_outer-h.dat", "./")
shutil.copy("../../../data/neighbor.dat", "./")

with open("charge.inp", "w") as f:
    f.write("h\n")

with open("temp.inp", "w") as f:
    f.write("300 K\n")

os.system("tavix_hoprate.exe")

