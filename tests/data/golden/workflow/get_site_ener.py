#!/usr/bin/env python
import os
import sys

os.system("touch /home/user/run/RUN/running.get_site_ener")
os.system("qsub jobs/get_site_ener.pbs")

