#!/usr/bin/env python
import os

cwd = os.getcwd()
os.chdir("HL")

# ----

os.system("touch /home/user/run/RUN/running.HL_nei_mol-3")
os.system("qsub ../jobs/job_nei_mol-3.pbs")

# ----

os.system("touch /home/user/run/RUN/running.HL_nei_mol-4")
os.system("qsub ../jobs/job_nei_mol-4.pbs")

os.chdir(cwd)

