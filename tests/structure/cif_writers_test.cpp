// The CIF writers: shared head, the three row forms, supercell order and the
// thin-film cut, and the fatal open failure. Expected files are in
// tests/data/golden/structure, worked out by hand from the format strings.
// This file also holds the helpers of all structure-writer tests.
#include <gtest/gtest.h>

#include <cstdio>
#include <ctime>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "fileio.h"
#include "test_support.h"

// Helpers of the structure-writer tests, declared again in the other
// *_writers_test.cpp files and in structure_converters_test.cpp.
namespace structure_writer_fixtures {
std::string today();
std::string golden(const std::string& name);
std::vector<std::string> lines_of(const std::string& text);
void load_three_atoms(FileIO& io);
void load_two_molecules(FileIO& io);
using Writer = std::function<void(FileIO&, const char* path)>;
void expect_fatal_open_failure(const Writer& write);
void expect_quoted_open_failure(const Writer& write, const std::string& expected_stdout);
}  // namespace structure_writer_fixtures

namespace structure_writer_fixtures {

// Today's local date, made independently of the writers' own format.
std::string today() {
  const std::time_t now = std::time(nullptr);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%d", std::localtime(&now));
  return text;
}

// A golden file with its YYYY-MM-DD placeholder set to today.
std::string golden(const std::string& name) {
  std::string text = txtest::read_file(txtest::data_path("golden/structure/" + name));
  EXPECT_FALSE(text.empty()) << "missing golden file " << name;
  const std::string date = today();
  for (size_t at = text.find("YYYY-MM-DD"); at != std::string::npos; at = text.find("YYYY-MM-DD", at))
    text.replace(at, 10, date);
  return text;
}

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// C, Cl and H: one- and two-letter symbols, negative and wide numbers. The
// Cartesian and fractional sets are independent of each other on purpose.
void load_three_atoms(FileIO& io) {
  io.identifier = "writer_test";
  const double cell[6] = {10.5, 12.25, 7.125, 90.0, 101.5, 120.0};
  for (int k = 0; k < 6; ++k) io.cell_latt[k] = cell[k];
  io.release_crystal_arrays();
  io.cif_natoms = 3;
  io.cif_atypes = new int[3]{6, 17, 1};
  io.cif_x = new double[9]{1.5, -2.25, 0.125, -10.0625, 3.0, 12.5, 0.0, 0.75, -0.5};
  io.cif_x_s = new double[9]{0.125, 0.25, 0.5, 0.75, -0.0625, 1.5, 0.0, 0.375, 0.875};
  io.cif_radii = new double[3]{0.77, 0.99, 0.35};
}

// CO and NH2 in the same cell; mol_x is set apart from mol_x_s so that each
// writer shows which one it takes. The lattice is exact in binary.
void load_two_molecules(FileIO& io) {
  io.identifier = "writer_test";
  const double cell[6] = {10.5, 12.25, 7.125, 90.0, 101.5, 120.0};
  for (int k = 0; k < 6; ++k) io.cell_latt[k] = cell[k];
  const double latt[3][3] = {{10.0, 0.0, 2.0}, {0.0, 12.0, 0.0}, {0.0, 0.0, 8.0}};
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) io.latt_f2c[r][c] = latt[r][c];
  io.release_molecule_arrays();
  io.nmols_uc = 2;
  io.mol_natoms = new int[2]{2, 3};
  io.mol_elem = new int*[2]{new int[2]{6, 8}, new int[3]{7, 1, 1}};
  io.mol_x_s = new double*[2]{new double[6]{0.125, 0.25, 0.5, 0.25, 0.25, 0.5},
                              new double[9]{0.5, 0.75, -0.125, 0.625, 0.75, -0.125, 0.5, 0.875, -0.125}};
  io.mol_x = new double*[2]{new double[6]{1.25, 3.0, 3.5, 2.5, 3.0, 3.5},
                            new double[9]{5.0, 9.0, -1.0, 6.25, 9.0, -1.0, 5.0, 10.5, -1.0}};
  io.mol_rows_allocated = 2;
  io.mol_files = new char*[2];
  for (int i = 0; i < 2; ++i) {
    io.mol_files[i] = new char[20];
    std::snprintf(io.mol_files[i], 20, "mol%d.mol", i + 1);
  }
  io.mol_files_allocated = 2;
  io.super_cell[0] = 2;
  io.super_cell[1] = 1;
  io.super_cell[2] = 2;
}

namespace {
// Runs `write` in a forked child, on a fresh object, with a path in a
// directory that does not exist.
txtest::RunResult run_open_failure(const Writer& write, std::string& path) {
  txtest::TempDir dir(false);
  path = dir.file("missing/out");
  return txtest::run_forked([&] {
    FileIO io;
    write(io, path.c_str());
  });
}
}  // namespace

// The CIF and supercell PDB form: position line and message on stdout, status -1.
void expect_fatal_open_failure(const Writer& write) {
  std::string path;
  const txtest::RunResult r = run_open_failure(write, path);
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out),
            "\nERROR  transport : fileio : line # : \nFailed to open output file " + path + "\n");
  EXPECT_EQ(r.err, "");
}

// The XYZ, molfile, cif2pdb and POSCAR form: the quoted path alone on stderr, status -1.
void expect_quoted_open_failure(const Writer& write, const std::string& expected_stdout) {
  std::string path;
  const txtest::RunResult r = run_open_failure(write, path);
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(r.out, expected_stdout);
  EXPECT_EQ(r.err, "Failed to open output file \"" + path + "\"\n");
}

}  // namespace structure_writer_fixtures

namespace {

using structure_writer_fixtures::expect_fatal_open_failure;
using structure_writer_fixtures::golden;
using structure_writer_fixtures::lines_of;
using structure_writer_fixtures::load_three_atoms;
using structure_writer_fixtures::load_two_molecules;

class CifWriters : public ::testing::Test {
 protected:
  std::string written(const char* path) { return txtest::read_file(path); }
  txtest::TempDir dir;
  FileIO io;
};

TEST_F(CifWriters, DataCifOfGivenAtomsHasTheSharedHeadAndUisoRows) {
  load_three_atoms(io);
  io.write_data_cif("given.cif", io.cif_natoms, io.cif_atypes, io.cif_x_s);
  EXPECT_EQ(written("given.cif"), golden("data_fract.cif"));
}

TEST_F(CifWriters, DataCifOfCrystalFractionalTakesCifXS) {
  load_three_atoms(io);
  io.write_data_cif("fract.cif", true);
  EXPECT_EQ(written("fract.cif"), golden("data_fract.cif"));
}

TEST_F(CifWriters, DataCifOfCrystalCartesianTakesCifXUnderCartnHeaders) {
  load_three_atoms(io);
  io.write_data_cif("cartn.cif", false);
  EXPECT_EQ(written("cartn.cif"), golden("data_cartn.cif"));
}

TEST_F(CifWriters, DateLineIsTodaysLocalDate) {
  load_three_atoms(io);
  io.write_data_cif("dated.cif", true);
  EXPECT_EQ(lines_of(written("dated.cif"))[1],
            "_audit_creation_date              " + structure_writer_fixtures::today());
}

TEST_F(CifWriters, UnitcellLabelsRunThroughAllMoleculesAndLastColumnIsMoleculeNumber) {
  load_two_molecules(io);
  io.write_unitcell_cif("unitcell.cif", io.nmols_uc, io.mol_natoms, io.mol_elem, io.mol_x_s);
  EXPECT_EQ(written("unitcell.cif"), golden("unitcell.cif"));
}

TEST_F(CifWriters, SupercellLoopsThirdRepeatOutermostAndScalesTheCell) {
  load_two_molecules(io);
  io.write_supercell_cif("super.cif", io.nmols_uc, io.mol_natoms, io.mol_elem, io.mol_x_s, 2, 1, 2);
  EXPECT_EQ(written("super.cif"), golden("supercell_2x1x2.cif"));
}

TEST_F(CifWriters, SupercellOfOneCellWritesTheSameRowsAsUnitcell) {
  load_two_molecules(io);
  io.write_unitcell_cif("unit.cif", io.nmols_uc, io.mol_natoms, io.mol_elem, io.mol_x_s);
  io.write_supercell_cif("super.cif", io.nmols_uc, io.mol_natoms, io.mol_elem, io.mol_x_s, 1, 1, 1);
  EXPECT_EQ(written("super.cif"), written("unit.cif"));
}

TEST_F(CifWriters, ThinFilmSkipsCellsAtOrBeyondNcellAlongItsAxis) {
  load_two_molecules(io);
  io.thinfilm_flag = 1;
  io.thinfilm_dir = 2;
  io.thinfilm_ncell = 1;
  io.write_supercell_cif("film.cif", io.nmols_uc, io.mol_natoms, io.mol_elem, io.mol_x_s, 2, 1, 2);
  // Only the k = 0 layer: the first ten rows of the full supercell, labels 1 to 10.
  std::vector<std::string> full = lines_of(golden("supercell_2x1x2.cif"));
  full.resize(full.size() - 10);
  EXPECT_EQ(lines_of(written("film.cif")), full);
}

TEST_F(CifWriters, ThinFilmOffWritesEveryCell) {
  load_two_molecules(io);
  io.thinfilm_flag = 0;
  io.thinfilm_dir = 2;
  io.thinfilm_ncell = 0;
  io.write_supercell_cif("all.cif", io.nmols_uc, io.mol_natoms, io.mol_elem, io.mol_x_s, 2, 1, 2);
  EXPECT_EQ(written("all.cif"), golden("supercell_2x1x2.cif"));
}

TEST_F(CifWriters, MolOneRowsNumberFromFirstPlusOneAndShiftIntoTheEnlargedCell) {
  load_two_molecules(io);
  FILE* fp = std::fopen("rows.txt", "w");
  ASSERT_NE(fp, nullptr);
  double shift[3] = {-1.0, 0.0, 1.0};
  io.write_cif_mol_one(fp, 4, io.mol_natoms[0], io.mol_elem[0], io.mol_x_s[0], shift, 3.0, 7);
  std::fclose(fp);
  EXPECT_EQ(written("rows.txt"), golden("cif_mol_one_rows.txt"));
}

TEST_F(CifWriters, MolOneWritesNothingForNoAtoms) {
  FILE* fp = std::fopen("rows.txt", "w");
  ASSERT_NE(fp, nullptr);
  double shift[3] = {0.0, 0.0, 0.0};
  io.write_cif_mol_one(fp, 0, 0, nullptr, nullptr, shift, 3.0, 1);
  std::fclose(fp);
  EXPECT_EQ(written("rows.txt"), "");
}

TEST(CifWriterOpenFailure, DataCifOfCrystalIsFatalWithPositionLine) {
  expect_fatal_open_failure([](FileIO& io, const char* path) {
    load_three_atoms(io);
    io.write_data_cif(path, true);
  });
}

TEST(CifWriterOpenFailure, DataCifOfGivenAtomsIsFatalWithPositionLine) {
  expect_fatal_open_failure([](FileIO& io, const char* path) {
    load_three_atoms(io);
    io.write_data_cif(path, io.cif_natoms, io.cif_atypes, io.cif_x_s);
  });
}

TEST(CifWriterOpenFailure, UnitcellIsFatalWithPositionLine) {
  expect_fatal_open_failure([](FileIO& io, const char* path) {
    load_two_molecules(io);
    io.write_unitcell_cif(path, io.nmols_uc, io.mol_natoms, io.mol_elem, io.mol_x_s);
  });
}

TEST(CifWriterOpenFailure, SupercellIsFatalWithPositionLine) {
  expect_fatal_open_failure([](FileIO& io, const char* path) {
    load_two_molecules(io);
    io.write_supercell_cif(path, io.nmols_uc, io.mol_natoms, io.mol_elem, io.mol_x_s, 2, 1, 2);
  });
}

}  // namespace
