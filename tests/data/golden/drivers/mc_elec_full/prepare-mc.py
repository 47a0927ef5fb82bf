#!/usr/bin/env python

# Prepares one carrier directory: copies the inputs in, sets carrier and temperature, computes the hop rates.
# Written by the preparing stage of the run; it is rewritten on every preparation.

import os
import shutil
import glob
shutil.copy("../../../tavix.inp", "./")
shutil.copy("../../../mol1.mol", "./")
shutil.copy("../../../mol2.mol", "./")
shutil.copy("../../../data/VL.dat", "./")
files = glob.glob('../../../data/VL*-dyn.dat')
for file in files:
    shutil.copy(file, "./")
shutil.copy("../../../data/LUMO-dyn.dat", "./")
shutil.copy("../../../data/NM-e.dat", "./")
shutil.copy("../../../data/EL.dat", "./")
shutil.copy("../../../data/reorg_lambda_outer-e.dat", "./")
shutil.copy("../../../data/neighbor.dat", "./")

with open("charge.inp", "w") as f:
    f.write("e\n")

with open("temp.inp", "w") as f:
    f.write("300 K\n")

os.system("tavix_hoprate.exe")

