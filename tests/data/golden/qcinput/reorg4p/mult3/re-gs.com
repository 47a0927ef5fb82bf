%chk=re-gs.chk
%mem=54096MB
%nprocs=20
#P opt b3lyp 6-31g(d) nosymm

ground state opt.

0 1
O   0.000000   0.000000   0.117300
H   0.000000   0.757200  -0.469200
H   0.000000  -0.757200  -0.469200

