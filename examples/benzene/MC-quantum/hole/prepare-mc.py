#!/usr/bin/env python

# Prepares one carrier directory: copies the inputs in, sets carrier and temperature, computes the hop rates.
# Written by the preparing stage of the run; it is rewritten on every preparation.

import os
import shutil
shutil.copy("../../tavix.inp", "./")
shutil.copy("../../benzene.cif", "./")
shutil.copy("../../data/VH.dat", "./")
shutil.copy("../../data/NM-h.dat", "./")

with open("charge.inp", "w") as f:
    f.write("h\n")

os.system("tavix_hoprate.exe")

