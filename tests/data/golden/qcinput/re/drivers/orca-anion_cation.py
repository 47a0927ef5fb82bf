#!/usr/bin/env python
import os

cwd = os.getcwd()
os.chdir("RE")

# ----

os.system("touch /work/run/RUN/running.RE-mol1-anion")
os.system("qsub ../jobs/job_re_mol1-anion.pbs")

# ----

os.system("touch /work/run/RUN/running.RE-mol2-anion")
os.system("qsub ../jobs/job_re_mol2-anion.pbs")

# ----

os.system("touch /work/run/RUN/running.RE-mol1-cation")
os.system("qsub ../jobs/job_re_mol1-cation.pbs")

# ----

os.system("touch /work/run/RUN/running.RE-mol2-cation")
os.system("qsub ../jobs/job_re_mol2-cation.pbs")

os.chdir(cwd)

