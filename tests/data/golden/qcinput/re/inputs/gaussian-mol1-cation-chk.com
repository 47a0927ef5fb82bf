%mem=2000MB
%nprocs=4
%chk=re-mol1-cation.chk
#P opt freq b3lyp/6-31g(d) Pop=full nosymm
scf=(maxcycle=100,xqc)
Geom=Check Guess=Read

mol1

1 2

