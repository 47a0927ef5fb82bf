#!/usr/bin/env python
import os

os.system("touch /work/run/RUN/running.me_td_h_td_250")
os.system("qsub run_me.pbs")

