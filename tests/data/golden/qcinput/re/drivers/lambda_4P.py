#!/usr/bin/env python
import os

cwd = os.getcwd()
os.chdir("RE")

os.system("touch /work/run/RUN/running.re_mol1_lambda_4P")
os.system("qsub ../jobs/job_re-mol1_lambda_4P.pbs")

os.system("touch /work/run/RUN/running.re_mol2_lambda_4P")
os.system("qsub ../jobs/job_re-mol2_lambda_4P.pbs")

os.chdir(cwd)

