#!/usr/bin/env python
import os

cwd = os.getcwd()
os.chdir("RE")

os.system("touch /work/run/RUN/running.re_mol1_neutral")
os.system("qsub ../jobs/job_re-mol1_neutral.pbs")

os.system("touch /work/run/RUN/running.re_mol2_neutral")
os.system("qsub ../jobs/job_re-mol2_neutral.pbs")

os.chdir(cwd)

