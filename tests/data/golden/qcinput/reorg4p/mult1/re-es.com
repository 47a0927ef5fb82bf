%chk=re-es.chk
%mem=4000MB
%nprocs=8
#P opt TD(nstates=3) b3lyp/6-31g(d) nosymm

excited state opt.

0 1
O   0.000000   0.000000   0.117300
H   0.000000   0.757200  -0.469200
H   0.000000  -0.757200  -0.469200

