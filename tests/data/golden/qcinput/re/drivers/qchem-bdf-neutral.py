#!/usr/bin/env python
import os

cwd = os.getcwd()
os.chdir("RE")

# ----

os.system("touch /work/run/RUN/running.re-mol1-neutral")
os.system("qsub ../jobs/job_re-mol1-neutral.pbs")

# ----

os.system("touch /work/run/RUN/running.re-mol2-neutral")
os.system("qsub ../jobs/job_re-mol2-neutral.pbs")

os.chdir(cwd)

