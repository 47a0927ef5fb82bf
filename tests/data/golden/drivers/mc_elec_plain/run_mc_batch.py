#!/usr/bin/env python
import os

os.system("touch /work/run/RUN/running.MC-marcus_elec")
os.system("qsub run_mc.pbs")

