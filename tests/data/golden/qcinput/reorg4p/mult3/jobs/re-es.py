#!/usr/bin/env python
import os

os.system('touch running.re_es')
os.system('sbatch jobs/re-es.slurm')

