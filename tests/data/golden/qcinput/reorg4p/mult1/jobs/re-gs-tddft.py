#!/usr/bin/env python
import os

os.system('touch running.re_gs-tddft')
os.system('sh jobs/re-gs-tddft.local')

