// Published crystal structures read end to end: atom count of the full cell,
// molecules and their sizes, and the warnings a user gets for the files this
// reader misreads. Expected outcomes were worked out by hand, following the
// reader's rules line by line on each file, independently of this code; line
// numbers were counted with grep. Provenance: tests/data/cif/SOURCES.md.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <string>
#include <vector>

#include "fileio.h"
#include "test_support.h"

namespace {

using txtest::data_path;
using txtest::mask_line_numbers;
using txtest::run_forked;

const std::string kHead = "\nERROR  transport : fileio : line # : \n";

struct ReadOutcome {
  int natoms = 0;
  std::vector<int> sizes;
  std::vector<int> atoms;
  std::vector<std::string> ops;
  std::string out;
  std::string err;
};

ReadOutcome read_fixture(const std::string& name) {
  ReadOutcome r;
  FileIO io;
  testing::internal::CaptureStderr();
  r.out = txtest::capture_stdout([&] { io.read_data_cif(data_path("cif/" + name).c_str(), false); });
  r.err = testing::internal::GetCapturedStderr();
  r.natoms = io.cif_natoms;
  r.sizes = io.uc_mol_natoms;
  r.atoms = io.uc_mol_atoms;
  r.ops = io.symmetry_ops;
  EXPECT_EQ(io.structure_read, 1);
  return r;
}

// Every atom index occurs exactly once in the molecule lists, and the sizes add up.
void expect_partition(const ReadOutcome& r) {
  EXPECT_EQ(std::accumulate(r.sizes.begin(), r.sizes.end(), 0), r.natoms);
  std::vector<int> sorted = r.atoms;
  std::sort(sorted.begin(), sorted.end());
  std::vector<int> all(r.natoms);
  std::iota(all.begin(), all.end(), 0);
  EXPECT_EQ(sorted, all);
}

std::string loop_warning(const std::string& name, int line) {
  return "WARNING: " + data_path("cif/" + name) + " line " + std::to_string(line) +
         ": 'loop_' read as a symmetry operator; end the symmetry table with a blank line\n";
}

std::string no_atoms_warning(const std::string& name, int line) {
  return "WARNING: " + data_path("cif/" + name) + " line " + std::to_string(line) +
         ": no atoms were read; the file needs one loop with _atom_site_label, _atom_site_type_symbol, "
         "_atom_site_fract_x, _atom_site_fract_y and _atom_site_fract_z\n";
}

std::string skipped_loop_warning(const std::string& name, int line, const std::string& missing) {
  return "WARNING: " + data_path("cif/" + name) + " line " + std::to_string(line) +
         ": atom loop skipped for want of a column; add the column(s) " + missing + "\n";
}

}  // namespace

// ---- files prepared with a blank line after the symmetry table ----------------------

TEST(CifFixtures, BenzeneWithBlankLineGivesFourMoleculesOfTwelve) {
  const ReadOutcome r = read_fixture("benzene_COD2100348_blankline.cif");
  EXPECT_EQ(r.natoms, 48);
  EXPECT_EQ(r.sizes, (std::vector<int>{12, 12, 12, 12}));
  expect_partition(r);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, "");
}

TEST(CifFixtures, ChloroCompoundWithBlankLineGivesFourMoleculesOfTwentyNine) {
  const ReadOutcome r = read_fixture("C13H10ClN2_COD7238658_blankline.cif");
  EXPECT_EQ(r.natoms, 116);
  EXPECT_EQ(r.sizes, (std::vector<int>{29, 29, 29, 29}));
  expect_partition(r);
  EXPECT_EQ(r.err, "");
}

TEST(CifFixtures, CalixdiquinoneWithBlankLineGivesFourMoleculesOfOneHundredTen) {
  const ReadOutcome r = read_fixture("calixdiquinone_COD7052819_blankline.cif");
  EXPECT_EQ(r.natoms, 440);
  EXPECT_EQ(r.sizes, (std::vector<int>{110, 110, 110, 110}));
  expect_partition(r);
  EXPECT_EQ(r.err, "");
}

TEST(CifFixtures, IbuprofenWithBlankLineGivesFourMoleculesOfThirtyThree) {
  const ReadOutcome r = read_fixture("ibuprofen_COD2300214_blankline.cif");
  EXPECT_EQ(r.natoms, 132);
  EXPECT_EQ(r.sizes, (std::vector<int>{33, 33, 33, 33}));
  EXPECT_EQ(r.ops.size(), 4u);
  expect_partition(r);
  EXPECT_EQ(r.err, "");
}

TEST(CifFixtures, TetraazaareneWithBlankLineGivesTwoMoleculesOfSeventySix) {
  const ReadOutcome r = read_fixture("tetraazaarene_COD7052868_blankline.cif");
  EXPECT_EQ(r.natoms, 152);
  EXPECT_EQ(r.sizes, (std::vector<int>{76, 76}));
  expect_partition(r);
  EXPECT_EQ(r.err, "");
}

// ---- files as published: loop_ right behind the symmetry table ----------------------

TEST(CifFixtures, BenzeneAsPublishedLosesItsAtomLoopAndWarns) {
  const std::string name = "benzene_COD2100348.cif";
  const ReadOutcome r = read_fixture(name);
  EXPECT_EQ(r.natoms, 0);
  EXPECT_TRUE(r.sizes.empty());
  ASSERT_EQ(r.ops.size(), 9u);
  EXPECT_EQ(r.ops.back(), "loop_");
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, loop_warning(name, 147) + no_atoms_warning(name, 218));
}

TEST(CifFixtures, ChloroCompoundAsPublishedHasNoAtoms) {
  const std::string name = "C13H10ClN2_COD7238658.cif";
  const ReadOutcome r = read_fixture(name);
  EXPECT_EQ(r.natoms, 0);
  EXPECT_TRUE(r.sizes.empty());
  EXPECT_EQ(r.err, loop_warning(name, 148) + no_atoms_warning(name, 526));
}

TEST(CifFixtures, CalixdiquinoneAsPublishedHasNoAtoms) {
  const std::string name = "calixdiquinone_COD7052819.cif";
  const ReadOutcome r = read_fixture(name);
  EXPECT_EQ(r.natoms, 0);
  EXPECT_TRUE(r.sizes.empty());
  EXPECT_EQ(r.err, loop_warning(name, 152) + no_atoms_warning(name, 715));
}

TEST(CifFixtures, TetraazaareneAsPublishedHasNoAtoms) {
  const std::string name = "tetraazaarene_COD7052868.cif";
  const ReadOutcome r = read_fixture(name);
  EXPECT_EQ(r.natoms, 0);
  EXPECT_TRUE(r.sizes.empty());
  EXPECT_EQ(r.err, loop_warning(name, 140) + no_atoms_warning(name, 529));
}

TEST(CifFixtures, IbuprofenAsPublishedRepeatsItsLastOperatorForTheLoopLine) {
  const std::string name = "ibuprofen_COD2300214.cif";
  const ReadOutcome r = read_fixture(name);
  EXPECT_EQ(r.natoms, 0);
  EXPECT_TRUE(r.sizes.empty());
  ASSERT_EQ(r.ops.size(), 5u);
  EXPECT_EQ(r.ops[4], r.ops[3]);
  EXPECT_EQ(r.err, loop_warning(name, 78) + no_atoms_warning(name, 124));
}

TEST(CifFixtures, DibenzoylbenzeneWithoutTypeColumnHasNoAtoms) {
  const std::string name = "dibenzoylbenzene_COD2000642.cif";
  const ReadOutcome r = read_fixture(name);
  EXPECT_EQ(r.natoms, 0);
  EXPECT_TRUE(r.sizes.empty());
  EXPECT_EQ(r.err, loop_warning(name, 140) + skipped_loop_warning(name, 157, "_atom_site_type_symbol") +
                       no_atoms_warning(name, 248));
}

TEST(CifFixtures, ThioquinacridoneWithoutTypeColumnHasNoAtoms) {
  const std::string name = "thioquinacridone_COD2000724.cif";
  const ReadOutcome r = read_fixture(name);
  EXPECT_EQ(r.natoms, 0);
  EXPECT_TRUE(r.sizes.empty());
  EXPECT_EQ(r.err, skipped_loop_warning(name, 104, "_atom_site_type_symbol") + no_atoms_warning(name, 192));
}

TEST(CifFixtures, DimethylquinacridoneWithWrappedRowsEndsWithTooFewColumns) {
  const txtest::RunResult r = run_forked(
      [] { FileIO().read_data_cif(data_path("cif/dimethylquinacridone_COD2202108.cif").c_str(), false); });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out),
            kHead + "Not enough columns: O1 0.3115(3) 0.73650(10)\nAt least 5 columns are expected!\n");
  EXPECT_EQ(r.err, "");
}
