%chk=re-es-tddft.chk
%mem=54096MB
%nprocs=20
#P TD(triplet) b3lyp 6-31g(d) nosymm Geom=Check

excited state tddft

0 3

