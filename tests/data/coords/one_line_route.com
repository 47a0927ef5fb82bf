%chk=water.chk
# b3lyp/6-31g(d) opt

water, one-line route

0 1
O 0.0 0.0 0.1173
H 0.0 0.7572 -0.4692
H 0.0 -0.7572 -0.4692

