#!/usr/bin/env python
import os, sys

mu = []
mu.append([])
with open("elec/300/exp_data.dat") as f:
    for i in range(4):
        line = f.readline()
        items = line.split()
        mu[0].append(float(items[2]))

mu.append([])
with open("elec/310/exp_data.dat") as f:
    for i in range(4):
        line = f.readline()
        items = line.split()
        mu[1].append(float(items[2]))

sys.stdout.write("  Writing file mob_elec.dat...\n")

with open("mob_elec.dat", "w") as n:
    n.write("dir_a:\n")
    n.write("300  %12.6e  cm^{2}/Vs\n" % (mu[0][0]))
    n.write("310  %12.6e  cm^{2}/Vs\n" % (mu[1][0]))
    n.write("dir_b:\n")
    n.write("300  %12.6e  cm^{2}/Vs\n" % (mu[0][1]))
    n.write("310  %12.6e  cm^{2}/Vs\n" % (mu[1][1]))
    n.write("dir_c:\n")
    n.write("300  %12.6e  cm^{2}/Vs\n" % (mu[0][2]))
    n.write("310  %12.6e  cm^{2}/Vs\n" % (mu[1][2]))
    n.write("dir_av:\n")
    n.write("300  %12.6e  cm^{2}/Vs\n" % (mu[0][3]))
    n.write("310  %12.6e  cm^{2}/Vs\n" % (mu[1][3]))
mu = []
mu.append([])
with open("hole/300/exp_data.dat") as f:
    for i in range(4):
        line = f.readline()
        items = line.split()
        mu[0].append(float(items[2]))

mu.append([])
with open("hole/310/exp_data.dat") as f:
    for i in range(4):
        line = f.readline()
        items = line.split()
        mu[1].append(float(items[2]))

sys.stdout.write("  Writing file mob_hole.dat...\n")

with open("mob_hole.dat", "w") as n:
    n.write("dir_a:\n")
    n.write("300  %12.6e  cm^{2}/Vs\n" % (mu[0][0]))
    n.write("310  %12.6e  cm^{2}/Vs\n" % (mu[1][0]))
    n.write("dir_b:\n")
    n.write("300  %12.6e  cm^{2}/Vs\n" % (mu[0][1]))
    n.write("310  %12.6e  cm^{2}/Vs\n" % (mu[1][1]))
    n.write("dir_c:\n")
    n.write("300  %12.6e  cm^{2}/Vs\n" % (mu[0][2]))
    n.write("310  %12.6e  cm^{2}/Vs\n" % (mu[1][2]))
    n.write("dir_av:\n")
    n.write("300  %12.6e  cm^{2}/Vs\n" % (mu[0][3]))
    n.write("310  %12.6e  cm^{2}/Vs\n" % (mu[1][3]))
