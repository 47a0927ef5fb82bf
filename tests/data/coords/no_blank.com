%chk=water.chk
# hf/sto-3g
opt
title
0 1
O 0.0 0.0 0.0
