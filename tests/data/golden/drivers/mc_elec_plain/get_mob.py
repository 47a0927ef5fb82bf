#!/usr/bin/env python
import os

os.system("touch /work/run/RUN/running.MC-marcus_elec_getmob")
os.system("qsub get_mob.pbs")

