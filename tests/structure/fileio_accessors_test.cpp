// Construction defaults of the structure state and the simple accessors.
#include <gtest/gtest.h>

#include <cstring>

#include "fileio.h"

TEST(FileIOConstruction, CountsAreZeroAndArraysNull) {
  FileIO io;
  EXPECT_EQ(io.structure_read, 0);
  EXPECT_EQ(io.cif_natoms, 0);
  EXPECT_EQ(io.nmols_uc, 0);
  EXPECT_EQ(io.uc_mol_re_count, 0);
  EXPECT_EQ(io.uc_mol_unique_count, 0);
  EXPECT_EQ(io.cif_atypes, nullptr);
  EXPECT_EQ(io.cif_x_s, nullptr);
  EXPECT_EQ(io.cif_x, nullptr);
  EXPECT_EQ(io.cif_radii, nullptr);
  EXPECT_EQ(io.mol_natoms, nullptr);
  EXPECT_EQ(io.mol_elem, nullptr);
  EXPECT_EQ(io.mol_x, nullptr);
  EXPECT_EQ(io.mol_x_s, nullptr);
  EXPECT_EQ(io.mol_x_com, nullptr);
  EXPECT_EQ(io.mol_x_s_com, nullptr);
  EXPECT_EQ(io.mol_mass, nullptr);
  EXPECT_EQ(io.mol_index, nullptr);
  EXPECT_EQ(io.mol_files, nullptr);
  EXPECT_EQ(io.uc_mol_seq, nullptr);
  EXPECT_EQ(io.uc_mol_re_list, nullptr);
  EXPECT_EQ(io.uc_mol_id, nullptr);
  EXPECT_EQ(io.uc_mol_unique_list, nullptr);
  EXPECT_EQ(io.uc_mol_eigval, nullptr);
}

TEST(FileIOConstruction, NamedDefaults) {
  FileIO io;
  EXPECT_EQ(io.spacegroup_number, -1);
  EXPECT_EQ(io.identifier, "tavix");
  EXPECT_EQ(io.data_dir, "data");
  EXPECT_EQ(io.bond_dis_scale, 1.15);
  EXPECT_EQ(io.data_mol_output_level, 2);
  EXPECT_EQ(io.debug_level, 0);
  EXPECT_TRUE(io.HL_same_mols_flag);
}

TEST(FileIOConstruction, TextsAndColumnsStartEmpty) {
  FileIO io;
  EXPECT_TRUE(io.chemical_name.empty());
  EXPECT_TRUE(io.spacegroup_name.empty());
  EXPECT_TRUE(io.crystal_file.empty());
  EXPECT_TRUE(io.symmetry_ops.empty());
  EXPECT_TRUE(io.uc_mol_natoms.empty());
  EXPECT_TRUE(io.uc_mol_atoms.empty());
  EXPECT_TRUE(io.atoms.label.empty());
  EXPECT_TRUE(io.atoms.type_symbol.empty());
  EXPECT_TRUE(io.atoms.fract_x.empty());
  EXPECT_TRUE(io.atoms.fract_y.empty());
  EXPECT_TRUE(io.atoms.fract_z.empty());
  EXPECT_TRUE(io.bonds.atom_site_label_1.empty());
  EXPECT_TRUE(io.bonds.atom_site_label_2.empty());
  EXPECT_TRUE(io.bonds.distance.empty());
  EXPECT_TRUE(io.bonds.site_symmetry_2.empty());
  EXPECT_TRUE(io.bonds.bond_type.empty());
}

TEST(FileIOAccessors, CrystalArraysAndCountAreTheMembers) {
  FileIO io;
  EXPECT_EQ(io.get_cif_natoms(), 0);
  EXPECT_EQ(io.get_cif_atypes(), nullptr);
  EXPECT_EQ(io.get_cif_x(), nullptr);
  EXPECT_EQ(io.get_cif_x_s(), nullptr);

  io.cif_natoms = 2;
  io.cif_atypes = new int[2]{6, 1};
  io.cif_x = new double[6]{0.0, 0.0, 0.0, 1.0, 0.0, 0.0};
  io.cif_x_s = new double[6]{0.0, 0.0, 0.0, 0.1, 0.0, 0.0};
  EXPECT_EQ(io.get_cif_natoms(), 2);
  EXPECT_EQ(io.get_cif_atypes(), io.cif_atypes);
  EXPECT_EQ(io.get_cif_x(), io.cif_x);
  EXPECT_EQ(io.get_cif_x_s(), io.cif_x_s);
  EXPECT_EQ(io.get_cif_atypes()[1], 1);
  EXPECT_EQ(io.get_cif_x_s()[3], 0.1);
}

TEST(FileIOAccessors, CellLattIsReturnedByPointer) {
  FileIO io;
  double* cell = io.get_cell_latt();
  EXPECT_EQ(cell, io.cell_latt);
  cell[4] = 124.4;
  EXPECT_EQ(io.cell_latt[4], 124.4);
}

TEST(FileIOAccessors, IdentifierCharacters) {
  FileIO io;
  EXPECT_STREQ(io.get_identifier(), "tavix");
  io.identifier = "naphthalene";
  EXPECT_STREQ(io.get_identifier(), "naphthalene");
}

TEST(FileIOAccessors, AtomSymbolIsTheTypeSymbolColumnNotTheLabel) {
  FileIO io;
  io.atoms.label = {"C1", "H1a"};
  io.atoms.type_symbol = {"C", "H"};
  EXPECT_STREQ(io.get_cif_atom_symbol(0), "C");
  EXPECT_STREQ(io.get_cif_atom_symbol(1), "H");
}

TEST(FileIOAccessors, BondScaleAndOutputLevelSetters) {
  FileIO io;
  io.set_bond_dis_scale(1.3);
  EXPECT_EQ(io.bond_dis_scale, 1.3);
  EXPECT_EQ(io.get_data_mol_output_level(), 2);
  io.set_data_mol_output_level(5);
  EXPECT_EQ(io.data_mol_output_level, 5);
  EXPECT_EQ(io.get_data_mol_output_level(), 5);
}

TEST(FileIOAccessors, LatticeVectorsAreTheColumnsOfLattF2c) {
  FileIO io;
  const double m[3][3] = {{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {7.0, 8.0, 9.0}};
  std::memcpy(io.latt_f2c, m, sizeof(m));
  double a[3], b[3], c[3];
  io.get_cif_lattice_vectors(a, b, c);
  EXPECT_EQ(a[0], 1.0);
  EXPECT_EQ(a[1], 4.0);
  EXPECT_EQ(a[2], 7.0);
  EXPECT_EQ(b[0], 2.0);
  EXPECT_EQ(b[1], 5.0);
  EXPECT_EQ(b[2], 8.0);
  EXPECT_EQ(c[0], 3.0);
  EXPECT_EQ(c[1], 6.0);
  EXPECT_EQ(c[2], 9.0);
}

TEST(FileIOAccessors, LatticeVectorsOfABuiltCell) {
  FileIO io;
  const double cell[6] = {8.098, 5.953, 8.652, 90.0, 124.4, 90.0};
  double latt[3][3];
  io.convert_cell6_to_latt3x3(cell, latt);
  double a[3], b[3], c[3];
  io.get_cif_lattice_vectors(a, b, c);
  EXPECT_EQ(a[0], 8.098);
  EXPECT_EQ(a[1], 0.0);
  EXPECT_EQ(a[2], 0.0);
  EXPECT_EQ(b[1], 5.953);
  // c lies in the xz plane, tilted back by beta: x = 8.652 cos(124.4 deg), by python3.
  EXPECT_NEAR(c[0], -4.8880945136325966, 1e-12);
  EXPECT_NEAR(c[2], 7.138881987103785, 1e-12);
}
