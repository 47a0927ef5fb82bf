#!/usr/bin/env python
import os

os.system('touch running.re_es-tddft')
os.system('sbatch jobs/re-es-tddft.slurm')

