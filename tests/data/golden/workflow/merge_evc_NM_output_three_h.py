import os, sys

cwd = os.getcwd()
os.chdir('data')
sys.stdout.write('  Lumping NM*-h.dat...\n')
if os.path.isfile('NM1-h.dat'):
    with open('NM-h.dat', 'w') as outfile:
        outfile.write('3\n')
        for m in [0,0,2]:
            fnmstr = 'NM' + str(m+1) + '-h.dat'
            with open(fnmstr, 'r') as infile:
                for line in infile:
                    outfile.write(line)

# remove NM*-h.dat
for m in [0,2]:
    fnmstr = 'NM' + str(m+1) + '-h.dat'
    if os.path.isfile(fnmstr):
        os.remove(fnmstr)

os.chdir(cwd)

