#!/usr/bin/env python
import os

os.system("touch /work/run/RUN/running.MC-marcus-temp_300_hole")
os.system("sh run_mc.local")

