#!/usr/bin/env python
import os

os.system('touch running.re_gs-tddft')
os.system('sbatch jobs/re-gs-tddft.slurm')

