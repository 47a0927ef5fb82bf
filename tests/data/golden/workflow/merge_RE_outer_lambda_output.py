import os, sys

cwd = os.getcwd()
os.chdir('data')
sys.stdout.write('  Lumping reorg_lambda_outer*-e.dat...\n')
if os.path.isfile('reorg_lambda_outer1-e.dat'):
    with open('reorg_lambda_outer-e.dat', 'w') as outfile:
        outfile.write('2\n')
        for m in range(2):
            fnmstr = 'reorg_lambda_outer' + str(m+1) + '-e.dat'
            with open(fnmstr, 'r') as infile:
                for line in infile:
                    outfile.write(line)

    for m in range(2):
        fnmstr = 'reorg_lambda_outer' + str(m+1) + '-e.dat'
        os.remove(fnmstr)

sys.stdout.write('  Lumping reorg_lambda_outer*-h.dat...\n')
if os.path.isfile('reorg_lambda_outer1-h.dat'):
    with open('reorg_lambda_outer-h.dat', 'w') as outfile:
        outfile.write('2\n')
        for m in range(2):
            fnmstr = 'reorg_lambda_outer' + str(m+1) + '-h.dat'
            with open(fnmstr, 'r') as infile:
                for line in infile:
                    outfile.write(line)

    for m in range(2):
        fnmstr = 'reorg_lambda_outer' + str(m+1) + '-h.dat'
        os.remove(fnmstr)

os.chdir(cwd)

