%chk=uc_mol-2.chk
%mem=2000MB
%nprocs=4
#P B3LYP/6-31G(d) IOp(3/33=1,5/33=2) Pop=full nosymm

uc_mol

0 1
O     2.0000    4.5000    2.0000
H     3.0000    4.5000    2.0000
H     2.0000    5.2500    2.0000

-- appended --
