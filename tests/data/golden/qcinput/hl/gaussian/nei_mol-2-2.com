%chk=nei_mol-2-2.chk
%mem=2000MB
%nprocs=4
#P B3LYP/6-31G(d) IOp(3/33=1,5/33=2) Pop=full nosymm

nei_mol

0 1
O    -2.0000    4.5000   10.0000
H    -1.0000    4.5000   10.0000
H    -2.0000    5.2500   10.0000

-- appended --
