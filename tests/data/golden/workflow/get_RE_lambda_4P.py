import os

cwd = os.getcwd()
os.chdir('data')
os.system('tavix_getLambda_4P.exe -batch re_lambda_4P_files-e.dat')
os.system('tavix_getLambda_4P.exe -batch re_lambda_4P_files-h.dat')

os.chdir(cwd)

