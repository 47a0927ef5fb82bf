#!/usr/bin/env python
import os
import sys

os.system("touch /home/user/run/RUN/running.run_evc_mol1_elec")
os.chdir("/home/user/run/evc/mol1/elec")
os.system("sh job_get_NM.local")
