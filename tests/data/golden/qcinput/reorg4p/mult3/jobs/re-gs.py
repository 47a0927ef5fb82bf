#!/usr/bin/env python
import os

os.system('touch running.re_gs')
os.system('sbatch jobs/re-gs.slurm')

