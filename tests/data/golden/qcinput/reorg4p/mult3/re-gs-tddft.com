%chk=re-gs-tddft.chk
%mem=54096MB
%nprocs=20
#P TD(triplet) b3lyp 6-31g(d) nosymm Geom=Check Guess=Read

ground state tddft

0 1

