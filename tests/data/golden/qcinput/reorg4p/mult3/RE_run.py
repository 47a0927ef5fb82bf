#!/usr/bin/env python
import os
import sys
import time
from datetime import datetime
import glob

start_time = time.time()
print('  #####     #     #     #  ###  #     #')
print('    #      # #    #     #   #    #   #')
print('    #     #   #    #   #    #      #')
print('    #    #######    # #     #    #   #')
print('    #    #     #     #     ###  #     #   2022B')
print('')
print('  Reorganization energy of one molecule by the four-point method:')
print('  relaxes the ground and the excited state, then evaluates both on each geometry.')
sys.stdout.flush()
TAVIX_ROOT = os.getenv('TAVIX_ROOT')
if not TAVIX_ROOT:
    print('+------------------------------------------------+')
    print('|  Please set environment variable TAVIX_ROOT !  |')
    print('+------------------------------------------------+')
    sys.exit(1)
nerror = len(glob.glob1('.', 'ERROR-*'))
if nerror > 0:
    os.system('rm ERROR-*')
nrun = len(glob.glob1('.', 'running.*'))
if nrun > 0:
    os.system('rm running.*')
os.system('python jobs/re-gs.py')
os.system('python jobs/re-es.py')
def wait_running():
    run_dir_loc = '.'
    nrun = len(glob.glob1(run_dir_loc, 'running.*'))
    while nrun > 0:
        time.sleep(1)
        nrun = len(glob.glob1(run_dir_loc, 'running.*'))
        nerror = len(glob.glob1(run_dir_loc, 'ERROR-*'))
        if nerror > 0:
            sys.stderr.write('\nERROR occurs in running TAVIX calculations.\n')
            sys.stderr.write('Check ERROR-* to locate the problem.\n')
            sys.stderr.write('STOP\n\n')
            sys.exit(1)
wait_running()

os.system('cp re-gs.chk re-gs-tddft.chk')
os.system('python jobs/re-gs-tddft.py')
os.system('cp re-es.chk re-es-tddft.chk')
os.system('python jobs/re-es-tddft.py')
wait_running()

os.system('python $TAVIX_ROOT/scripts/tavix_reorg_4P.py --mult 3 --gs re-gs.log --es re-es.log --gs2 re-gs-tddft.log --es2 re-es-tddft.log')

if os.path.exists('fort.7'):
    os.remove('fort.7')
seconds = time.time() - start_time
seconds_in_day = 86400
seconds_in_hour = 3600
seconds_in_minute = 60
days = seconds // seconds_in_day
seconds = seconds - days * seconds_in_day
hours = seconds // seconds_in_hour
seconds = seconds - hours * seconds_in_hour
minutes = seconds // seconds_in_minute
seconds = seconds - minutes * seconds_in_minute
now = datetime.now()
print('\nSuccessfully done at %s' % str(now))
print('DURATION: {0:.0f} days {1:.0f} hours {2:.0f} minutes {3:.0f} seconds.'.format(days, hours, minutes, seconds))
