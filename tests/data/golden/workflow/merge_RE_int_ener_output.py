import os, sys

cwd = os.getcwd()
os.chdir('data')
sys.stdout.write('  Lumping SE_einternal*-e.dat...\n')
if os.path.isfile('SE_einternal1-e.dat'):
    with open('SE_einternal-e.dat', 'w') as outfile:
        outfile.write('2\n')
        for m in range(2):
            fnmstr = 'SE_einternal' + str(m+1) + '-e.dat'
            with open(fnmstr, 'r') as infile:
                for line in infile:
                    outfile.write(line)

    for m in range(2):
        fnmstr = 'SE_einternal' + str(m+1) + '-e.dat'
        os.remove(fnmstr)

sys.stdout.write('  Lumping SE_einternal*-h.dat...\n')
if os.path.isfile('SE_einternal1-h.dat'):
    with open('SE_einternal-h.dat', 'w') as outfile:
        outfile.write('2\n')
        for m in range(2):
            fnmstr = 'SE_einternal' + str(m+1) + '-h.dat'
            with open(fnmstr, 'r') as infile:
                for line in infile:
                    outfile.write(line)

    for m in range(2):
        fnmstr = 'SE_einternal' + str(m+1) + '-h.dat'
        os.remove(fnmstr)

os.chdir(cwd)

