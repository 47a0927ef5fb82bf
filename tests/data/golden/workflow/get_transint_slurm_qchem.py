#!/usr/bin/env python
import os

os.system("python scr/qchem_fchk_ext_lowercase.py HL")

os.system("touch /home/user/run/RUN/running.run_transint")
os.system("sbatch jobs/job_transint.slurm")

