// The converters: each reads tests/data/golden/structure/twomol_p1.cif, a CO
// and an N2 molecule in a 10 x 12 x 14 angstrom P1 cell, the N2 split by the a
// face; made whole it lies at fractional x -0.02 and 0.06, Cartesian -0.2 and
// 0.6 angstrom. The expected files were worked out by hand from that.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "fileio.h"
#include "test_support.h"

// Defined in cif_writers_test.cpp.
namespace structure_writer_fixtures {
std::string golden(const std::string& name);
using Writer = std::function<void(FileIO&, const char* path)>;
void expect_quoted_open_failure(const Writer& write, const std::string& expected_stdout);
}  // namespace structure_writer_fixtures

namespace {

using structure_writer_fixtures::expect_quoted_open_failure;
using structure_writer_fixtures::golden;

std::string twomol_input() { return txtest::data_path("golden/structure/twomol_p1.cif"); }

class ConverterTest : public ::testing::Test {
 protected:
  txtest::TempDir dir;
  FileIO io;
};
class Cif2Gjf : public ConverterTest {};
class Cif2Gro : public ConverterTest {};
class Cif2Mol : public ConverterTest {};
class Cif2Poscar : public ConverterTest {};
class Cif2Xyz : public ConverterTest {};
class CifExpand : public ConverterTest {};
class CifUnwrap : public ConverterTest {};
class Converters : public ConverterTest {};
class PrinMomentInertia : public ConverterTest {};

TEST_F(CifUnwrap, WritesTheCellWithItsMoleculesMadeWhole) {
  const std::string out = txtest::capture_stdout(
      [&] { io.write_cif_unwrap(twomol_input().c_str(), "unwrapped.cif", false, false); });
  EXPECT_EQ(out, "Writting crystal file \"unwrapped.cif\"\n");
  EXPECT_EQ(txtest::read_file("unwrapped.cif"), golden("twomol_unwrap.cif"));
}

TEST_F(Converters, ReadTheCrystalInCrystalMode) {
  txtest::capture_stdout([&] { io.write_cif_unwrap(twomol_input().c_str(), "unwrapped.cif", false, false); });
  EXPECT_EQ(io.mol_input_mode, 2);
  EXPECT_EQ(io.nmols_uc, 2);
}

TEST(ConvertersCellvec, WrittenOnlyWhenAsked) {
  txtest::TempDir dir;
  {
    FileIO io;
    io.write_cif2xyz(twomol_input().c_str(), "a-%d.xyz", false, false);
  }
  EXPECT_FALSE(txtest::path_exists("data/cellvec.dat"));
  {
    FileIO io;
    io.write_cif2xyz(twomol_input().c_str(), "a-%d.xyz", false, true);
  }
  EXPECT_TRUE(txtest::path_exists("data/cellvec.dat"));
}

TEST_F(Cif2Mol, WritesOneMolfilePerMoleculeNamedByThePattern) {
  const std::string out =
      txtest::capture_stdout([&] { io.write_cif2mol(twomol_input().c_str(), "twomol-%d.mol", false, false); });
  EXPECT_EQ(out, "");
  EXPECT_EQ(txtest::read_file("twomol-1.mol"), golden("twomol-1.mol"));
  EXPECT_EQ(txtest::read_file("twomol-2.mol"), golden("twomol-2.mol"));
}

TEST_F(Cif2Mol, VerboseLineKeepsTheUndecimalMiddleFieldAndTheTrailingMass) {
  const std::string out =
      txtest::capture_stdout([&] { io.write_cif2mol(twomol_input().c_str(), "twomol-%d.mol", true, false); });
  // N2: 2 x 14.0067; centre (0.2, 3, 7) angstrom. CO: 12.011 + 15.9994; centre x =
  // 10 (12.011 0.1 + 15.9994 0.2) / 28.0104 = 1.571195 (python3).
  EXPECT_NE(out.find("1: Mass =    28.013400, COM =     0.200000            3     7.000000, Mass\n"),
            std::string::npos)
      << out;
  EXPECT_NE(out.find("2: Mass =    28.010400, COM =     1.571195            6     3.500000, Mass\n"),
            std::string::npos)
      << out;
}

TEST_F(Cif2Xyz, WritesOneXyzPerMoleculeFromMolX) {
  io.write_cif2xyz(twomol_input().c_str(), "twomol-%d.xyz", false, false);
  EXPECT_EQ(txtest::read_file("twomol-1.xyz"), golden("twomol-1.xyz"));
  EXPECT_EQ(txtest::read_file("twomol-2.xyz"), golden("twomol-2.xyz"));
}

TEST_F(Cif2Gjf, HandsChargeSpinAndKeywordsOnInPlaceOfNprocsMemoryAndRoute) {
  io.write_cif2gjf(twomol_input().c_str(), "twomol-%d.gjf", false, false, 4, 800, "b3lyp/6-31g(d)");
  EXPECT_EQ(txtest::read_file("twomol-1.gjf"), golden("twomol-1.gjf"));
  EXPECT_EQ(txtest::read_file("twomol-2.gjf"), golden("twomol-2.gjf"));
}

TEST_F(Cif2Gro, WritesOneGroPerMoleculeInNanometres) {
  io.write_cif2gro(twomol_input().c_str(), "twomol-%d.gro", false, false);
  EXPECT_EQ(txtest::read_file("twomol-1.gro"), golden("twomol-1.gro"));
  EXPECT_EQ(txtest::read_file("twomol-2.gro"), golden("twomol-2.gro"));
}

TEST_F(Cif2Gro, AlwaysWritesTheFourNanometreBox) {
  io.write_cif2gro(twomol_input().c_str(), "twomol-%d.gro", false, false);
  // The cell is 1.0 x 1.2 x 1.4 nm; the box line does not follow it.
  for (const char* name : {"twomol-1.gro", "twomol-2.gro"}) {
    const std::string text = txtest::read_file(name);
    const std::string box = "     4.00000      4.00000      4.00000\n";
    ASSERT_GE(text.size(), box.size());
    EXPECT_EQ(text.substr(text.size() - box.size()), box) << name;
  }
}

TEST(Cif2GroOpenFailure, IsReportedPerMoleculeAndTheRunGoesOn) {
  txtest::TempDir dir;
  const std::string pattern = dir.file("missing/twomol-%d.gro");
  txtest::RunResult r = txtest::run_forked([&] {
    FileIO io;
    io.write_cif2gro(twomol_input().c_str(), pattern.c_str(), false, false);
  });
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, "Failed to create tavix data file " + dir.file("missing/twomol-1.gro") + "\n" +
                       "Failed to create tavix data file " + dir.file("missing/twomol-2.gro") + "\n");
}

TEST_F(Cif2Poscar, WritesTypesInDescendingAtomicNumberAndTheIonFileInTheWorkingDirectory) {
  ASSERT_EQ(txtest::run_command("mkdir out").status, 0);
  const std::string out =
      txtest::capture_stdout([&] { io.write_cif2poscar(twomol_input().c_str(), "out/POSCAR", false, false); });
  EXPECT_EQ(out, "  Found ntypes = 3\n");
  EXPECT_EQ(txtest::read_file("out/POSCAR"), golden("twomol.POSCAR"));
  EXPECT_EQ(txtest::read_file("POSCARION"), golden("twomol.POSCARION"));
  EXPECT_FALSE(txtest::path_exists("out/POSCARION"));
}

TEST(Cif2PoscarOpenFailure, PrintsQuotedPathOnStderrAndExitsMinusOne) {
  expect_quoted_open_failure(
      [](FileIO& io, const char* path) { io.write_cif2poscar(twomol_input().c_str(), path, false, false); },
      "  Found ntypes = 3\n");
}

TEST(Cif2PoscarUnknownElement, EndsTheRunInsteadOfCountingOutOfRange) {
  txtest::TempDir dir;
  txtest::write_file("unknown.cif",
                     "data_unknown\n"
                     "_symmetry_space_group_name_H-M 'P1'\n"
                     "_cell_length_a 10.0\n_cell_length_b 10.0\n_cell_length_c 10.0\n"
                     "_cell_angle_alpha 90\n_cell_angle_beta 90\n_cell_angle_gamma 90\n"
                     "loop_\n_atom_site_label\n_atom_site_type_symbol\n"
                     "_atom_site_fract_x\n_atom_site_fract_y\n_atom_site_fract_z\n"
                     "C1 C 0.1 0.1 0.1\nQ1 Q 0.6 0.6 0.6\n");
  const std::string input = dir.file("unknown.cif");
  txtest::RunResult r = txtest::run_forked([&] {
    FileIO io;
    io.write_cif2poscar(input.c_str(), "POSCAR", false, false);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : fileio : line # : \n");
  EXPECT_EQ(r.err, "Atom 2 of \"" + input + "\" has no known element; a POSCAR cannot list it\n");
  EXPECT_FALSE(txtest::path_exists("POSCAR"));
}

TEST_F(CifExpand, WritesTheSupercellAndThePdbBesideIt) {
  const std::string out = txtest::capture_stdout(
      [&] { io.write_cif_expand(twomol_input().c_str(), "twomol_2x1x1.cif", false, false, 2, 1, 1, true); });
  EXPECT_EQ(out, "Output to file: twomol_2x1x1.cif\n");
  EXPECT_EQ(txtest::read_file("twomol_2x1x1.cif"), golden("twomol_expand_2x1x1.cif"));
  EXPECT_EQ(txtest::read_file("twomol_2x1x1.pdb"), golden("twomol_expand_2x1x1.pdb"));
}

TEST_F(CifExpand, WithoutThePdbSwitchWritesOnlyTheCif) {
  txtest::capture_stdout(
      [&] { io.write_cif_expand(twomol_input().c_str(), "twomol_2x1x1.cif", false, false, 2, 1, 1, false); });
  EXPECT_TRUE(txtest::path_exists("twomol_2x1x1.cif"));
  EXPECT_FALSE(txtest::path_exists("twomol_2x1x1.pdb"));
}

TEST_F(CifExpand, PdbNameReplacesOnlyAnExtensionOfTheFileName) {
  ASSERT_EQ(txtest::run_command("mkdir cells.d").status, 0);
  txtest::capture_stdout(
      [&] { io.write_cif_expand(twomol_input().c_str(), "cells.d/expanded", false, false, 1, 1, 1, true); });
  EXPECT_TRUE(txtest::path_exists("cells.d/expanded"));
  EXPECT_TRUE(txtest::path_exists("cells.d/expanded.pdb"));
}

TEST_F(PrinMomentInertia, WritesHeadAndOneRowOfValuesAndVectors) {
  double eigval[3] = {1.5, 22.25, 333.125};
  double eigvec[9] = {0.5, -0.25, 0.75, 0.125, 1.0, -1.0, 0.0, 0.0625, -0.5};
  io.output_prin_moment_inertia("moments.dat", eigval, eigvec);
  EXPECT_EQ(txtest::read_file("moments.dat"), golden("prin_moment_inertia.dat"));
}

TEST(PrinMomentInertiaOpenFailure, IsSilent) {
  txtest::TempDir dir;
  const std::string path = dir.file("missing/moments.dat");
  txtest::RunResult r = txtest::run_forked([&] {
    FileIO io;
    double eigval[3] = {1.0, 2.0, 3.0};
    double eigvec[9] = {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0};
    io.output_prin_moment_inertia(path.c_str(), eigval, eigvec);
  });
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, "");
}

}  // namespace
