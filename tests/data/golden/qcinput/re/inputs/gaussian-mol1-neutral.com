%mem=2000MB
%nprocs=4
%chk=re-mol1-neutral.chk
#P opt freq b3lyp/6-31g(d) Pop=full nosymm
scf=(maxcycle=100,xqc)

mol1

0 1
C     0.0000    0.0000    0.0000
O     0.0000    0.0000    1.1250

extra-append
