#!/usr/bin/env python
import os

cwd = os.getcwd()
os.chdir("RE")

os.system("touch /work/run/RUN/running.re_mps")
os.system("qsub ../jobs/job_re-mps.pbs")

os.chdir(cwd)

