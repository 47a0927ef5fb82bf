#!/usr/bin/env python
import os

os.system("touch /work/run/RUN/running.MC-marcus-temp_300_hole_getmob")
os.system("sh get_mob.local")

