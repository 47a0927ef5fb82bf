%chk=mol1_oniom.chk
%nprocs=16
%mem=80GB
#p opt freq oniom(m062x/6-31g*:uff=qeq)=embedcharge nosymm

mol_oniom

0 1 0 1 0 1
H                 0     0.0000000     0.0000000     0.0000000 H
H                 0     1.0000000     0.0000000     0.0000000 H
H                -1     4.0000000     0.0000000     0.0000000 L
H                -1     5.0000000     0.0000000     0.0000000 L
He               -1     2.0000000     3.0000000     0.0000000 L

