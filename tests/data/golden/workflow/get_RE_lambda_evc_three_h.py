import os

cwd = os.getcwd()
os.chdir('data')
# Lump mol*_lambda_h.dat
if os.path.isfile('mol1_lambda-h.dat'):
    with open('mol_lambda_evc-h.dat', 'w') as outfile:
        outfile.write('3\n')
        for m in [0,0,2]:
            fnmstr = 'mol' + str(m+1) + '_lambda-h.dat'
            with open(fnmstr, 'r') as infile:
                outfile.write('%s' % infile.readline())
        outfile.write('# reorganization energies: lam lam1 lam2 [meV]\n')

# Remove mol*_lambda_h.dat
for m in [0,2]:
    fnmstr = 'mol' + str(m+1) + '_lambda-h.dat'
    if os.path.isfile(fnmstr):
        os.remove(fnmstr)

os.chdir(cwd)

