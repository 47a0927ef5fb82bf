%mem=2000MB
%nprocs=4
%chk=re-mol2-anion_nC.chk
#P SP b3lyp/6-31g(d) Pop=full nosymm
Geom=Check Guess=Read scf=(maxcycle=100,xqc)

mol2

0 1

