#!/usr/bin/env python
import os

os.system("touch /work/run/RUN/running.MC-marcus-temp_300_elec_getmob")
os.system("sbatch get_mob.slurm")

