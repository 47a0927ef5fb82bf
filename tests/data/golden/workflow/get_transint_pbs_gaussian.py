#!/usr/bin/env python
import os

os.system("touch /home/user/run/RUN/running.run_transint")
os.system("qsub jobs/job_transint.pbs")

