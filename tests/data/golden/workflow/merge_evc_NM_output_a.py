import os, sys

cwd = os.getcwd()
os.chdir('data')
sys.stdout.write('  Lumping NM*-e.dat...\n')
if os.path.isfile('NM1-e.dat'):
    with open('NM-e.dat', 'w') as outfile:
        outfile.write('2\n')
        for m in range(2):
            fnmstr = 'NM' + str(m+1) + '-e.dat'
            with open(fnmstr, 'r') as infile:
                for line in infile:
                    outfile.write(line)

# remove NM*-e.dat
for m in range(2):
    fnmstr = 'NM' + str(m+1) + '-e.dat'
    if os.path.isfile(fnmstr):
        os.remove(fnmstr)

sys.stdout.write('  Lumping NM*-h.dat...\n')
if os.path.isfile('NM1-h.dat'):
    with open('NM-h.dat', 'w') as outfile:
        outfile.write('2\n')
        for m in range(2):
            fnmstr = 'NM' + str(m+1) + '-h.dat'
            with open(fnmstr, 'r') as infile:
                for line in infile:
                    outfile.write(line)

# remove NM*-h.dat
for m in range(2):
    fnmstr = 'NM' + str(m+1) + '-h.dat'
    if os.path.isfile(fnmstr):
        os.remove(fnmstr)

os.chdir(cwd)

