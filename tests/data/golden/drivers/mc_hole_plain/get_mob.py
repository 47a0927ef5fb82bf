#!/usr/bin/env python
import os

os.system("touch /work/run/RUN/running.MC-marcus_hole_getmob")
os.system("bsub <  get_mob.lsf")

