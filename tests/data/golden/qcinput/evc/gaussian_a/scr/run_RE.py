#!/usr/bin/env python
import os
import sys

os.system("touch /home/user/run/RUN/running.run_evc_mol1_elec")
os.chdir("/home/user/run/evc/mol1/elec")
os.system("qsub job_get_NM.pbs")
os.system("touch /home/user/run/RUN/running.run_evc_mol1_hole")
os.chdir("/home/user/run/evc/mol1/hole")
os.system("qsub job_get_NM.pbs")
os.system("touch /home/user/run/RUN/running.run_evc_mol2_elec")
os.chdir("/home/user/run/evc/mol2/elec")
os.system("qsub job_get_NM.pbs")
os.system("touch /home/user/run/RUN/running.run_evc_mol2_hole")
os.chdir("/home/user/run/evc/mol2/hole")
os.system("qsub job_get_NM.pbs")
