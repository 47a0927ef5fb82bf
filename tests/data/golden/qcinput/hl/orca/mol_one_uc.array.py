#!/usr/bin/env python
import os

cwd = os.getcwd()
os.chdir("HL")
os.system("touch /home/user/run/RUN/running.HL_uc_mol-1")
os.system("touch /home/user/run/RUN/running.HL_uc_mol-2")

os.system("qsub ../jobs/job_uc_mol.pbs")

os.chdir(cwd)

