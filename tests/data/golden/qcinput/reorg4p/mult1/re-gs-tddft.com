%chk=re-gs-tddft.chk
%mem=4000MB
%nprocs=8
#P TD(nstates=3) b3lyp/6-31g(d) nosymm Geom=Check Guess=Read

ground state tddft

0 1

