%chk=mol2_oniom.chk
%nprocs=16
%mem=80GB
#p opt freq oniom(m062x/6-31g*:uff=qeq)=embedcharge nosymm

mol_oniom

0 1 0 1 0 1
He                0     2.0000000     3.0000000     0.0000000 H
H                -1     0.0000000     0.0000000     0.0000000 L
H                -1     1.0000000     0.0000000     0.0000000 L
He               -1     2.0000000     9.0000000     0.0000000 L

