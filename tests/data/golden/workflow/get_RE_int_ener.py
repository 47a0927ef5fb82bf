#!/usr/bin/env python
import os,sys

cwd = os.getcwd()

os.system("touch /home/user/run/RUN/running.get_re_int_ener")
os.system("qsub jobs/get_re_int_ener.pbs")

os.chdir(cwd)

