import os, sys
import shutil

cwd = os.getcwd()
os.chdir('RE')
sys.stdout.write('  Prepare lambda 4P chk files...\n')
shutil.copy('re-mol1-neutral.chk', 're-mol1-neutral_eN.chk')
shutil.copy('re-mol1-neutral.chk', 're-mol1-neutral_hN.chk')
shutil.copy('re-mol1-anion.chk',   're-mol1-anion_nC.chk'  )
shutil.copy('re-mol1-cation.chk',  're-mol1-cation_nC.chk' )
shutil.copy('re-mol2-neutral.chk', 're-mol2-neutral_eN.chk')
shutil.copy('re-mol2-neutral.chk', 're-mol2-neutral_hN.chk')
shutil.copy('re-mol2-anion.chk',   're-mol2-anion_nC.chk'  )
shutil.copy('re-mol2-cation.chk',  're-mol2-cation_nC.chk' )

os.chdir(cwd)

