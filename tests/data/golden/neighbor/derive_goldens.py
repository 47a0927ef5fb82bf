#!/usr/bin/env python3
"""Writes the expected neighbor data files of the tiny crystal of
tests/topology/neighbor_data_files_test.cpp, worked out by hand: every number
below is an exact fraction derived from the crystal's definition, and every line
is the written format string applied to it. No program of the engine is run.

Crystal: orthorhombic a = 8, b = 16, c = 4 angstrom, identifier "tiny",
lat_cutoff 3.0, neighbor_scell 1 1 1.
  molecule 1: C (-1/16, -1/32, 1/2), C (1/16, 1/32, 1/2)       Cartesian (-0.5,-0.5,2), (0.5,0.5,2)
  molecule 2: O (3/8, 0, 1/2), C (17/32, 0, 1/2), O (11/16, 0, 1/2)   x = 3.0, 4.25, 5.5
  molecule 3: N (7/16, 1/2, 1/2), N (9/16, 1/2, 1/2)           x = 3.5, 4.5 at y = 8
Centres of mass (fractional), by symmetry of equal masses about the middle:
  1: (0, 0, 1/2); 2: (17/32, 0, 1/2); 3: (1/2, 1/2, 1/2).
Neighbor rows, by hand (closest atom pairs 2.06 and 2.55 angstrom < 3.0; every
other image is farther than 4 angstrom; molecule 3 is 7.5 angstrom off in y):
  root 1: 2 in cell (-1,0,0) at COM distance 3.75, 2 in cell (0,0,0) at 4.25
  root 2: 1 in cell (1,0,0) at 3.75, 1 in cell (0,0,0) at 4.25
  root 3: none
Frames for the overlap tool: the moment tensor with positive off-diagonal
elements of molecule 1 is m/2 [[1,1,0],[1,1,0],[0,0,2]] (m = carbon mass); one
Jacobi rotation by 45 degrees (theta = 0, t = 1) gives V = [[c,s,0],[-s,c,0],[0,0,1]]
with c = s = 1/sqrt(2); transposed, row-major: c -s 0 s c 0 0 0 1. Molecules 2
and 3 lie on a line along x with y and z exact, so their tensors are diagonal,
no rotation is made, and the frame is the identity.
"""
from fractions import Fraction as F
import math
import os

HERE = os.path.dirname(os.path.abspath(__file__))
CELL = (8, 16, 4)
MOLS = [
    [("C", F(-1, 16), F(-1, 32), F(1, 2)), ("C", F(1, 16), F(1, 32), F(1, 2))],
    [("O", F(3, 8), F(0), F(1, 2)), ("C", F(17, 32), F(0), F(1, 2)), ("O", F(11, 16), F(0), F(1, 2))],
    [("N", F(7, 16), F(1, 2), F(1, 2)), ("N", F(9, 16), F(1, 2), F(1, 2))],
]
COM_S = [(F(0), F(0), F(1, 2)), (F(17, 32), F(0), F(1, 2)), (F(1, 2), F(1, 2), F(1, 2))]
ROWS = [[(1, (-1, 0, 0)), (1, (0, 0, 0))], [(0, (1, 0, 0)), (0, (0, 0, 0))], []]
C = 1 / math.sqrt(2)
FRAMES = [(C, -C, 0, C, C, 0, 0, 0, 1), (1, 0, 0, 0, 1, 0, 0, 0, 1), (1, 0, 0, 0, 1, 0, 0, 0, 1)]
MASS = {"C": 12.011, "O": 15.9994, "N": 14.0067}
Z = {"C": 6, "O": 8, "N": 7}


def cart(s):
    return tuple(float(s[k] * CELL[k]) for k in range(3))


def disp(i, nid, cell):
    return tuple(float((COM_S[nid][k] + cell[k] - COM_S[i][k]) * CELL[k]) for k in range(3))


def table(count_fmt, nei_fmt):
    out = ""
    for i, row in enumerate(ROWS):
        out += "%d %8.4f %8.4f %8.4f  # root\n" % ((i + 1,) + cart(COM_S[i]))
        out += count_fmt % len(row)
        for nid, cell in row:
            d = disp(i, nid, cell)
            r = math.sqrt(sum(v * v for v in d))
            out += nei_fmt % ((nid + 1,) + d + (r,) + cell)
    return out


def write(name, text):
    with open(os.path.join(HERE, name), "w") as f:
        f.write(text)


# neighbor.dat
write("neighbor.dat",
      "# nroot, root_mol_info, nnei, neighbors_info\n"
      "# r = molecular COM distance, cindex = neighbor cell index\n"
      "3\n" + table("%d #      dx        dy        dz         r     cindex\n",
                    " %3d  %8.4f  %8.4f  %8.4f  %8.4f  %2d %2d %2d\n"))

# the report of output_neighbor_info
write("neighbor_info.txt",
      "**** Molecular Neighbor Information\n"
      "# nroot, {root_mol_info, nnei, neighbors_info}\n"
      "3\n" + table("%2d #    dx        dy        dz         r     cindex\n",
                    " %d  %8.4f  %8.4f  %8.4f  %8.4f  %2d %2d %2d\n") +
      "**** End of Molecular Neighbor Information\n\n")

# pictures
HEAD = ("data_tiny\n"
        "_audit_creation_date              2018-09-12\n"
        "_audit_creation_method            'TAVIX'\n"
        "_symmetry_space_group_name_H-M    'P1'\n"
        "_symmetry_Int_Tables_number       1\n"
        "_symmetry_cell_setting            triclinic\n"
        "loop_\n"
        "_symmetry_equiv_pos_as_xyz\n"
        "  x,y,z\n"
        "_cell_length_a                    %.4f\n"
        "_cell_length_b                    %.4f\n"
        "_cell_length_c                    %.4f\n"
        "_cell_angle_alpha                 %.4f\n"
        "_cell_angle_beta                  %.4f\n"
        "_cell_angle_gamma                 %.4f\n"
        "loop_\n"
        "_atom_site_label\n"
        "_atom_site_type_symbol\n"
        "_atom_site_fract_x\n"
        "_atom_site_fract_y\n"
        "_atom_site_fract_z\n"
        "_atom_site_description\n") % (3 * 8.0, 3 * 16.0, 3 * 4.0, 90.0, 90.0, 90.0)
ROW = "%-6s %2s %10.6f %10.6f %10.6f  %d\n"


def molecule_rows(m, cell, first, number):
    out = ""
    for a, (sym, x, y, z) in enumerate(MOLS[m]):
        p = [float((v + cell[k] + 1) / 3) for k, v in enumerate((x, y, z))]
        out += ROW % ("%s%d" % (sym, first + a + 1), sym, p[0], p[1], p[2], number)
    return out


def marker(m, cell, number):
    p = [float((COM_S[m][k] + cell[k] + 1) / 3) for k in range(3)]
    return ROW % (str(number), str(number), p[0], p[1], p[2], number)


for i, row in enumerate(ROWS):
    plain = HEAD + molecule_rows(i, (0, 0, 0), 0, 0)
    mid = HEAD + molecule_rows(i, (0, 0, 0), 0, 0) + marker(i, (0, 0, 0), 0)
    first = len(MOLS[i])
    for j, (nid, cell) in enumerate(row):
        plain += molecule_rows(nid, cell, first, j + 1)
        mid += molecule_rows(nid, cell, first, j + 1) + marker(nid, cell, j + 1)
        first += len(MOLS[nid])
    write("mol%d_neighbors.cif" % (i + 1), plain + "\n")
    write("mol%d_neighbors_mid.cif" % (i + 1), mid + "\n")

# overlap-tool positions: line n of both files is pair n
for i, row in enumerate(ROWS):
    uc = nei = ""
    for nid, cell in row:
        image = tuple(float((COM_S[nid][k] + cell[k]) * CELL[k]) for k in range(3))
        uc += "uc_mol-%d " % (i + 1) + "%11.6f %11.6f %11.6f " % cart(COM_S[i]) + \
            "%9.6f %9.6f %9.6f %9.6f %9.6f %9.6f %9.6f %9.6f %9.6f\n" % FRAMES[i]
        nei += "uc_mol-%d " % (nid + 1) + "%11.6f %11.6f %11.6f " % image + \
            "%9.6f %9.6f %9.6f %9.6f %9.6f %9.6f %9.6f %9.6f %9.6f\n" % FRAMES[nid]
    write("moo_mol%d_uc.pos" % (i + 1), uc)
    write("moo_mol%d_nei.pos" % (i + 1), nei)


# moo_map.xml: HOMO index = half the sum of atomic numbers (6, 11, 7); two cases
def segment(i, homo, hadj, ladj):
    n = len(MOLS[i])
    return ("  <molecule>\n"
            "    <name>uc_mol-%d</name>\n" % (i + 1) +
            "    <coordinates>../HL/uc_mol-%d.xyz</coordinates>\n" % (i + 1) +
            "    <orbitals>../HL/uc_mol-%d.orb</orbitals>\n" % (i + 1) +
            "    <basisset>INDO</basisset>\n"
            "    <torbital>%d %d</torbital>\n" % (homo + hadj, homo + 1 + ladj) +
            "    <map>\n     " + "".join(" %d" % (a + 1) for a in range(n)) + "\n    </map>\n"
            "    <weights>\n     " + "".join(" %.1f" % MASS[s[0]] for s in MOLS[i]) + "\n    </weights>\n"
            "  </molecule>\n")


HOMO = [sum(Z[a[0]] for a in mol) // 2 for mol in MOLS]
write("moo_map.xml", "<molecules>\n" + "".join(segment(i, HOMO[i], 0, 0) for i in range(3)) + "</molecules>\n")
HADJ, LADJ = (1, 0, -1), (0, 2, 0)
write("moo_map_adjusted.xml",
      "<molecules>\n" + "".join(segment(i, HOMO[i], HADJ[i], LADJ[i]) for i in range(3)) + "</molecules>\n")

# bond tables: C-C sqrt(2) < (0.72 + 0.72) * 1.15; O-C 1.25 < (0.68 + 0.72) * 1.15,
# O-O 2.5 is not; N-N 1.0 < (0.68 + 0.68) * 1.15 (covalent radii / 250 angstrom)
write("mol1_bonds.dat", "1\n" + "%3d %3d  0  0\n" % (1, 2))
write("mol2_bonds.dat", "2\n" + "%3d %3d  0  0\n" % (1, 2) + "%3d %3d  0  0\n" % (2, 3))
write("mol3_bonds.dat", "1\n" + "%3d %3d  0  0\n" % (1, 2))
