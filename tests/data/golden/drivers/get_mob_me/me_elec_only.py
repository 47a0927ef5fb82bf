#!/usr/bin/env python
import shutil

shutil.copy("elec/exp_data.dat", "./mob_elec.dat")
