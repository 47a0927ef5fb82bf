#!/usr/bin/env python
import os

os.system('touch running.re_es')
os.system('sh jobs/re-es.local')

