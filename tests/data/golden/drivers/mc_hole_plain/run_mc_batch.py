#!/usr/bin/env python
import os

os.system("touch /work/run/RUN/running.MC-marcus_hole")
os.system("bsub <  run_mc.lsf")

