%chk=water.chk

# hf/sto-3g

title # with a hash

0 1
O 0.0 0.0 0.1173

