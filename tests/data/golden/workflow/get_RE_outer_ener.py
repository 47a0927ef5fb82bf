#!/usr/bin/env python
import os,sys

cwd = os.getcwd()

os.system("touch /home/user/run/RUN/running.get_re_outer")
os.system("qsub jobs/get_re_outer.pbs")

os.chdir(cwd)

