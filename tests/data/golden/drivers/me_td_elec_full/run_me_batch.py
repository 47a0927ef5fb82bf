#!/usr/bin/env python
import os

os.system("touch /work/run/RUN/running.me_td_e_td_300")
os.system("qsub run_me.pbs")

