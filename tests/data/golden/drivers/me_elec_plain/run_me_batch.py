#!/usr/bin/env python
import os

os.system("touch /work/run/RUN/running.me_e")
os.system("qsub run_me.pbs")

