%chk=water.chk
%nprocs=8
%mem=2000MB
#P b3lyp/6-31g(d) iop(3/33=1,5/33=2) pop=full nosymm

water

0 1
O     0.0000    0.0000    0.1250
H     0.0000    0.7500   -0.5000
H     0.0000   -0.7500   -0.5000

