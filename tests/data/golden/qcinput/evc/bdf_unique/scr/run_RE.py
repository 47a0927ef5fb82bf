#!/usr/bin/env python
import os
import sys

os.system("touch /home/user/run/RUN/running.run_evc_mol2_elec")
os.chdir("/home/user/run/evc/mol2/elec")
os.system("sbatch job_get_NM.slurm")
os.system("touch /home/user/run/RUN/running.run_evc_mol2_hole")
os.chdir("/home/user/run/evc/mol2/hole")
os.system("sbatch job_get_NM.slurm")
