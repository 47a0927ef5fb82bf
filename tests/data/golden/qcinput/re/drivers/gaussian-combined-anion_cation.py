#!/usr/bin/env python
import os

cwd = os.getcwd()
os.chdir("RE")

os.system("touch /work/run/RUN/running.re_mol1_anion_cation")
os.system("qsub ../jobs/job_re-mol1_anion_cation.pbs")

os.system("touch /work/run/RUN/running.re_mol2_anion_cation")
os.system("qsub ../jobs/job_re-mol2_anion_cation.pbs")

os.chdir(cwd)

