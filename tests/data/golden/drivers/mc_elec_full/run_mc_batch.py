#!/usr/bin/env python
import os

os.system("touch /work/run/RUN/running.MC-marcus-temp_300_elec")
os.system("sbatch run_mc.slurm")

