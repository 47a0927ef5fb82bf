#!/usr/bin/env python
import os

cwd = os.getcwd()
os.chdir("RE")

os.system("touch /work/run/RUN/running.re_mol1-anion")
os.system("qsub ../jobs/job_re-mol1-anion.pbs")

os.system("touch /work/run/RUN/running.re_mol2-anion")
os.system("qsub ../jobs/job_re-mol2-anion.pbs")

os.chdir(cwd)

