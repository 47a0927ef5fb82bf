// The PDB writers: the supercell form with its own CRYST1 widths, the
// converter form with standard columns, and the ATOM row both share.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "fileio.h"
#include "test_support.h"

// Defined in cif_writers_test.cpp.
namespace structure_writer_fixtures {
std::string golden(const std::string& name);
std::vector<std::string> lines_of(const std::string& text);
void load_two_molecules(FileIO& io);
using Writer = std::function<void(FileIO&, const char* path)>;
void expect_fatal_open_failure(const Writer& write);
void expect_quoted_open_failure(const Writer& write, const std::string& expected_stdout);
}  // namespace structure_writer_fixtures

namespace {

using structure_writer_fixtures::expect_fatal_open_failure;
using structure_writer_fixtures::expect_quoted_open_failure;
using structure_writer_fixtures::golden;
using structure_writer_fixtures::lines_of;
using structure_writer_fixtures::load_two_molecules;

// One molecule of n hydrogen atoms in a unit cube, for the atom-name column.
std::vector<std::string> atom_rows_of_hydrogen_chain(int n) {
  txtest::TempDir dir;
  FileIO io;
  for (int r = 0; r < 3; ++r) io.latt_f2c[r][r] = 1.0;
  std::vector<int> types(n, 1);
  std::vector<double> x(3 * n, 0.5);
  int natoms[1] = {n};
  int* type_rows[1] = {types.data()};
  double* x_rows[1] = {x.data()};
  io.write_supercell_pdb("chain.pdb", 1, natoms, type_rows, x_rows, 1, 1, 1);
  std::vector<std::string> lines = lines_of(txtest::read_file("chain.pdb"));
  return std::vector<std::string>(lines.begin() + 3, lines.end() - 1);
}

class SupercellPdb : public ::testing::Test {
 protected:
  void SetUp() override { load_two_molecules(io); }
  txtest::TempDir dir;
  FileIO io;
};

TEST_F(SupercellPdb, WritesRemarksWideCryst1CartesianRowsAndTer) {
  io.write_supercell_pdb("super.pdb", io.nmols_uc, io.mol_natoms, io.mol_elem, io.mol_x_s, 2, 1, 1);
  EXPECT_EQ(txtest::read_file("super.pdb"), golden("supercell_2x1x1.pdb"));
}

TEST_F(SupercellPdb, ThinFilmSkipsTheSameCellsAsTheCifWriter) {
  io.thinfilm_flag = 1;
  io.thinfilm_dir = 0;
  io.thinfilm_ncell = 1;
  io.write_supercell_pdb("film.pdb", io.nmols_uc, io.mol_natoms, io.mol_elem, io.mol_x_s, 2, 1, 1);
  std::vector<std::string> expected = lines_of(golden("supercell_2x1x1.pdb"));
  expected.erase(expected.begin() + 8, expected.begin() + 13);  // the rows of cell i = 1
  EXPECT_EQ(lines_of(txtest::read_file("film.pdb")), expected);
}

TEST(PdbAtomRow, AtomNameCarriesPlaceInMoleculeInHexadecimal) {
  const std::vector<std::string> rows = atom_rows_of_hydrogen_chain(11);
  ASSERT_EQ(rows.size(), 11u);
  EXPECT_EQ(rows[0].substr(12, 4), " H1 ");
  EXPECT_EQ(rows[9].substr(12, 4), " HA ");
  EXPECT_EQ(rows[10].substr(12, 4), " HB ");
}

TEST(PdbAtomRow, AtomNameNumberWrapsAt256SoTheNameKeepsFourColumns) {
  const std::vector<std::string> rows = atom_rows_of_hydrogen_chain(257);
  ASSERT_EQ(rows.size(), 257u);
  EXPECT_EQ(rows[254].substr(12, 4), " HFF");
  EXPECT_EQ(rows[255].substr(12, 4), " H0 ");
  EXPECT_EQ(rows[256].substr(12, 4), " H1 ");
  EXPECT_EQ(rows[256].size(), 80u);
}

TEST(PdbAtomRow, RowKeepsStandardColumnsForResidueAndElement) {
  const std::vector<std::string> rows = atom_rows_of_hydrogen_chain(2);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[1].substr(0, 6), "ATOM  ");
  EXPECT_EQ(rows[1].substr(6, 5), "    2");   // serial, columns 7-11
  EXPECT_EQ(rows[1].substr(17, 3), "MOL");    // residue name, 18-20
  EXPECT_EQ(rows[1].substr(21, 1), " ");      // empty chain, 22
  EXPECT_EQ(rows[1].substr(22, 4), "   1");   // residue number, 23-26
  EXPECT_EQ(rows[1].substr(30, 24), "   0.500   0.500   0.500");  // x, y, z, 31-54
  EXPECT_EQ(rows[1].substr(54, 12), "  1.00  0.00");  // occupancy and temperature factor, 55-66
  EXPECT_EQ(rows[1].substr(76, 2), " H");      // element, 77-78
}

TEST(SupercellPdbOpenFailure, IsFatalWithPositionLine) {
  expect_fatal_open_failure([](FileIO& io, const char* path) {
    load_two_molecules(io);
    io.write_supercell_pdb(path, io.nmols_uc, io.mol_natoms, io.mol_elem, io.mol_x_s, 2, 1, 1);
  });
}

TEST(Cif2Pdb, WritesTitleStandardCryst1ModelAndTheWholeMoleculesOfTheCell) {
  txtest::TempDir dir;
  FileIO io;
  const std::string input = txtest::data_path("golden/structure/twomol_p1.cif");
  io.write_cif2pdb(input.c_str(), "cell.pdb", false, false);
  EXPECT_EQ(txtest::read_file("cell.pdb"), golden("twomol_cell.pdb"));
}

TEST(Cif2Pdb, OpenFailurePrintsQuotedPathOnStderrAndExitsMinusOne) {
  expect_quoted_open_failure(
      [](FileIO& io, const char* path) {
        io.write_cif2pdb(txtest::data_path("golden/structure/twomol_p1.cif").c_str(), path, false, false);
      },
      "");
}

}  // namespace
