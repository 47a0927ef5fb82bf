%chk=water.chk
hf/sto-3g

title

0 1
O 0.0 0.0 0.0

