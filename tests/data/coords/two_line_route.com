%mem=1GB
%chk=water.chk
#p b3lyp/6-31g(d)
 opt freq

water, two-line route

0 1
O 0.0 0.0 0.1173

