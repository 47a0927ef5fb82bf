%mem=2000MB
%nprocs=4
%chk=re-mol1-neutral_hN.chk
#P SP b3lyp/6-31g(d) Pop=full nosymm
Geom=Check Guess=Read scf=(maxcycle=100,xqc)

mol1

1 2

