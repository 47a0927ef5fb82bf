#!/usr/bin/env python
import os
import glob
import shutil

cwd = os.getcwd()
os.chdir("HL")

# ----

os.system("touch /home/user/run/RUN/running.HL_2mol-3")
os.system("qsub ../jobs/job_2mol-3.pbs")

# ----

os.system("touch /home/user/run/RUN/running.HL_2mol-4")
os.system("qsub ../jobs/job_2mol-4.pbs")

os.chdir(cwd)

