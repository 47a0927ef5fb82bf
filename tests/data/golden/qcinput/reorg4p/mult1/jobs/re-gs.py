#!/usr/bin/env python
import os

os.system('touch running.re_gs')
os.system('sh jobs/re-gs.local')

