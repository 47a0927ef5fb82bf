import os
import shutil

cwd = os.getcwd()
os.chdir('RE')
shutil.copy('re-mol1-neutral.chk', 're-mol1-anion.chk')
shutil.copy('re-mol1-neutral.chk', 're-mol1-cation.chk')
shutil.copy('re-mol2-neutral.chk', 're-mol2-anion.chk')
shutil.copy('re-mol2-neutral.chk', 're-mol2-cation.chk')

os.chdir(cwd)

