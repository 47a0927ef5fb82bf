%mem=2000MB
%nprocs=4
%chk=re-mol2-neutral.chk
#P opt freq b3lyp/6-31g(d) Pop=full nosymm
scf=(maxcycle=100,xqc)

mol2

0 1
Cl    2.5000   -1.7500    3.0000
H     2.5000   -1.7500    4.2500

extra-append
