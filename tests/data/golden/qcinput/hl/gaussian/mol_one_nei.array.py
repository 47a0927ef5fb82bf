#!/usr/bin/env python
import os

cwd = os.getcwd()
os.chdir("HL")

os.system("touch /home/user/run/RUN/running.HL_nei_mol-1-1")
os.system("touch /home/user/run/RUN/running.HL_nei_mol-1-2")

os.system("qsub ../jobs/job_nei_mol-1.pbs")

os.system("touch /home/user/run/RUN/running.HL_nei_mol-2-1")
os.system("touch /home/user/run/RUN/running.HL_nei_mol-2-2")

os.system("qsub ../jobs/job_nei_mol-2.pbs")

os.chdir(cwd)

