#!/usr/bin/env python
import os

cwd = os.getcwd()
os.chdir("RE")

os.chdir(cwd)

