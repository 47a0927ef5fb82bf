// Duplicate molecules of the unit cell: the two sameness tests with their
// fixed 0.01 limits, and the two cell checks that map molecules to
// representatives in a fixed pair order. Expected tables worked out by hand.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fileio.h"
#include "test_support.h"

namespace {

using txtest::mask_line_numbers;
using txtest::run_forked;

const std::string kHead = "\nERROR  transport : fileio : line # : \n";

// Molecule arrays as reading fills them and the bookkeeping as the neighbor
// list allocates and seeds it (1, 2, ...).
void load_molecules(FileIO& io, const std::vector<int>& natoms, const std::vector<double>& masses) {
  const int n = static_cast<int>(natoms.size());
  io.nmols_uc = n;
  io.mol_natoms = new int[n];
  io.mol_mass = new double[n];
  io.uc_mol_seq = new int[n];
  io.uc_mol_id = new int[n];
  io.uc_mol_re_list = new int[n]();
  io.uc_mol_unique_list = new int[n]();
  for (int i = 0; i < n; ++i) {
    io.mol_natoms[i] = natoms[i];
    io.mol_mass[i] = masses[i];
    io.uc_mol_seq[i] = i + 1;
    io.uc_mol_id[i] = i + 1;
  }
}

void load_moments(FileIO& io, const std::vector<std::vector<double>>& moments) {
  const int n = static_cast<int>(moments.size());
  io.uc_mol_eigval = new double*[n];
  io.eigval_rows_allocated = n;
  for (int i = 0; i < n; ++i) io.uc_mol_eigval[i] = new double[3]{moments[i][0], moments[i][1], moments[i][2]};
}

std::vector<int> first(const int* p, int n) { return std::vector<int>(p, p + n); }

}  // namespace

// ---- RE_mols_if_the_same ----------------------------------------------------------

TEST(REMolsIfTheSame, EqualCountsAndMassesExactlyAHundredthApartAreTheSame) {
  // 0.01 - 0.0 and 0.02 - 0.01 are both exactly the double 0.01 (python3).
  FileIO io;
  load_molecules(io, {12, 12, 12}, {0.0, 0.01, 0.02});
  EXPECT_EQ(io.RE_mols_if_the_same(0, 1), 1);
  EXPECT_EQ(io.RE_mols_if_the_same(1, 2), 1);
  EXPECT_EQ(io.RE_mols_if_the_same(2, 1), 1);
  EXPECT_EQ(io.RE_mols_if_the_same(0, 2), 0);
}

TEST(REMolsIfTheSame, MassesJustMoreThanAHundredthApartDiffer) {
  FileIO io;
  load_molecules(io, {12, 12}, {0.0, 0.0100000001});
  EXPECT_EQ(io.RE_mols_if_the_same(0, 1), 0);
}

TEST(REMolsIfTheSame, HundredthWrittenInDecimalsAtMolecularMassesComputesAboveTheLimit) {
  // 78.12 - 78.11 is 0.010000000000005116 in doubles (python3): not the same.
  FileIO io;
  load_molecules(io, {12, 12}, {78.11, 78.12});
  EXPECT_EQ(io.RE_mols_if_the_same(0, 1), 0);
}

TEST(REMolsIfTheSame, DifferentAtomCountsDiffer) {
  FileIO io;
  load_molecules(io, {12, 13}, {78.11, 78.11});
  EXPECT_EQ(io.RE_mols_if_the_same(0, 1), 0);
}

TEST(REMolsIfTheSame, ReadingWithoutMoleculeArraysEndsTheRun) {
  const txtest::RunResult r = run_forked([] {
    FileIO io;
    io.nmols_uc = 2;
    io.RE_mols_if_the_same(0, 1);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "RE_mols_if_the_same: the molecule arrays are not allocated; read the structure first\n");
}

TEST(REMolsIfTheSame, MoleculeOutsideTheCellEndsTheRun) {
  const txtest::RunResult r = run_forked([] {
    FileIO io;
    load_molecules(io, {12, 12}, {1.0, 1.0});
    io.RE_mols_if_the_same(0, 2);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "RE_mols_if_the_same: molecule 0 or 2 is outside the 2 molecules of the unit cell\n");
}

// ---- HL_mols_if_the_same ----------------------------------------------------------

TEST(HLMolsIfTheSame, WithoutPrincipalMomentsCountsAndMassesDecide) {
  FileIO io;
  load_molecules(io, {12, 12, 12}, {78.11, 78.11, 80.0});
  ASSERT_EQ(io.uc_mol_eigval, nullptr);
  EXPECT_EQ(io.HL_mols_if_the_same(0, 1), 1);
  EXPECT_EQ(io.HL_mols_if_the_same(0, 2), 0);
}

TEST(HLMolsIfTheSame, MomentsExactlyAHundredthApartAreTheSame) {
  FileIO io;
  load_molecules(io, {12, 12, 12}, {78.11, 78.11, 78.11});
  load_moments(io, {{0.0, 5.0, 9.0}, {0.01, 5.0, 9.0}, {0.02, 5.0, 9.0}});
  EXPECT_EQ(io.HL_mols_if_the_same(0, 1), 1);
  EXPECT_EQ(io.HL_mols_if_the_same(1, 2), 1);
  EXPECT_EQ(io.HL_mols_if_the_same(0, 2), 0);
}

TEST(HLMolsIfTheSame, EachOfTheThreeMomentsCounts) {
  FileIO io;
  load_molecules(io, {12, 12, 12, 12}, {78.11, 78.11, 78.11, 78.11});
  load_moments(io, {{1.0, 5.0, 9.0}, {1.0, 5.5, 9.0}, {1.0, 5.0, 9.5}, {1.5, 5.0, 9.0}});
  EXPECT_EQ(io.HL_mols_if_the_same(0, 1), 0);
  EXPECT_EQ(io.HL_mols_if_the_same(0, 2), 0);
  EXPECT_EQ(io.HL_mols_if_the_same(0, 3), 0);
}

TEST(HLMolsIfTheSame, EqualMomentsDoNotMakeDifferentMassesTheSame) {
  FileIO io;
  load_molecules(io, {12, 12}, {78.11, 79.11});
  load_moments(io, {{1.0, 5.0, 9.0}, {1.0, 5.0, 9.0}});
  EXPECT_EQ(io.HL_mols_if_the_same(0, 1), 0);
}

TEST(HLMolsIfTheSame, ReadingWithoutMoleculeArraysEndsTheRun) {
  const txtest::RunResult r = run_forked([] {
    FileIO io;
    io.nmols_uc = 2;
    io.HL_mols_if_the_same(0, 1);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "HL_mols_if_the_same: the molecule arrays are not allocated; read the structure first\n");
}

TEST(HLMolsIfTheSame, MomentRowsMissingForAMoleculeEndTheRun) {
  const txtest::RunResult r = run_forked([] {
    FileIO io;
    load_molecules(io, {12, 12}, {1.0, 1.0});
    load_moments(io, {{1.0, 5.0, 9.0}});
    io.HL_mols_if_the_same(0, 1);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "HL_mols_if_the_same: no principal moments for molecule 0 or 1; build the neighbor list first\n");
}

// ---- RE_check_unitcell_same_mols ---------------------------------------------------

TEST(RECheckUnitcellSameMols, LaterPairsOverwriteAndChainsAreNotCollapsed) {
  // Masses 0.0, 0.02, 0.01: (0,1) differ, (0,2) same gives seq[2] = 1, then
  // (1,2) same overwrites seq[2] = seq[1] = 2.
  FileIO io;
  load_molecules(io, {3, 3, 3}, {0.0, 0.02, 0.01});
  io.RE_check_unitcell_same_mols(false);
  EXPECT_EQ(first(io.uc_mol_seq, 3), (std::vector<int>{1, 2, 2}));
  EXPECT_EQ(io.uc_mol_re_count, 2);
  EXPECT_EQ(first(io.uc_mol_re_list, 2), (std::vector<int>{1, 2}));
}

TEST(RECheckUnitcellSameMols, VerboseFramesTheTables) {
  FileIO io;
  load_molecules(io, {3, 3, 3, 4}, {0.0, 0.02, 0.01, 0.0});
  const std::string out = txtest::capture_stdout([&] { io.RE_check_unitcell_same_mols(true); });
  EXPECT_EQ(out,
            "**** Check RE Duplicate Molecules in Unit Cell ****\n"
            "  Unit cell molecular indexes:  1 2 2 4\n"
            "  Unit cell unique molecular indexes: 1 2 4\n"
            "**** End of Check RE Duplicate Molecules in Unit Cell ****\n"
            "\n");
  EXPECT_EQ(io.uc_mol_re_count, 3);
}

TEST(RECheckUnitcellSameMols, QuietCheckPrintsNothing) {
  FileIO io;
  load_molecules(io, {3, 3}, {1.0, 1.0});
  const std::string out = txtest::capture_stdout([&] { io.RE_check_unitcell_same_mols(false); });
  EXPECT_EQ(out, "");
  EXPECT_EQ(first(io.uc_mol_seq, 2), (std::vector<int>{1, 1}));
  EXPECT_EQ(io.uc_mol_re_count, 1);
}

TEST(RECheckUnitcellSameMols, NoMoleculesGiveAnEmptyList) {
  FileIO io;
  io.uc_mol_re_count = 5;
  const std::string out = txtest::capture_stdout([&] { io.RE_check_unitcell_same_mols(true); });
  EXPECT_EQ(io.uc_mol_re_count, 0);
  EXPECT_EQ(out,
            "**** Check RE Duplicate Molecules in Unit Cell ****\n"
            "  Unit cell molecular indexes: \n"
            "  Unit cell unique molecular indexes:\n"
            "**** End of Check RE Duplicate Molecules in Unit Cell ****\n"
            "\n");
}

TEST(RECheckUnitcellSameMols, WithoutTheSequenceArrayEndsTheRun) {
  const txtest::RunResult r = run_forked([] {
    FileIO io;
    load_molecules(io, {3, 3}, {1.0, 1.0});
    delete[] io.uc_mol_seq;
    io.uc_mol_seq = nullptr;
    io.RE_check_unitcell_same_mols(false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "RE_check_unitcell_same_mols: uc_mol_seq is not allocated; build the neighbor list first\n");
}

TEST(RECheckUnitcellSameMols, WithoutTheListArrayEndsTheRun) {
  const txtest::RunResult r = run_forked([] {
    FileIO io;
    load_molecules(io, {3, 3}, {1.0, 1.0});
    delete[] io.uc_mol_re_list;
    io.uc_mol_re_list = nullptr;
    io.RE_check_unitcell_same_mols(false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "RE_check_unitcell_same_mols: uc_mol_re_list is not allocated; build the neighbor list first\n");
}

// ---- HL_check_unitcell_same_mols ---------------------------------------------------

TEST(HLCheckUnitcellSameMols, AllUniqueReturnsTrueAndClearsTheFlag) {
  FileIO io;
  load_molecules(io, {3, 3, 4}, {1.0, 2.0, 1.0});
  ASSERT_TRUE(io.HL_same_mols_flag);
  EXPECT_TRUE(io.HL_check_unitcell_same_mols(false));
  EXPECT_FALSE(io.HL_same_mols_flag);
  EXPECT_EQ(io.uc_mol_unique_count, 3);
  EXPECT_EQ(first(io.uc_mol_unique_list, 3), (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(first(io.uc_mol_id, 3), (std::vector<int>{1, 2, 3}));
}

TEST(HLCheckUnitcellSameMols, DuplicatesReturnFalseAndKeepTheFlag) {
  FileIO io;
  load_molecules(io, {3, 3, 3, 3}, {1.0, 2.0, 1.0, 2.0});
  load_moments(io, {{1.0, 2.0, 3.0}, {1.0, 2.0, 3.0}, {1.0, 2.0, 3.0}, {1.0, 2.5, 3.0}});
  const std::string out = txtest::capture_stdout([&] { EXPECT_FALSE(io.HL_check_unitcell_same_mols(true)); });
  EXPECT_TRUE(io.HL_same_mols_flag);
  EXPECT_EQ(first(io.uc_mol_id, 4), (std::vector<int>{1, 2, 1, 4}));
  EXPECT_EQ(io.uc_mol_unique_count, 3);
  EXPECT_EQ(first(io.uc_mol_unique_list, 3), (std::vector<int>{1, 2, 4}));
  EXPECT_EQ(out,
            "**** Check HL Duplicate Molecules in Unit Cell ****\n"
            "  Unit cell molecular indexes:  1 2 1 4\n"
            "  Unit cell unique molecular indexes: 1 2 4\n"
            "**** End of Check HL Duplicate Molecules in Unit Cell ****\n"
            "\n");
}

TEST(HLCheckUnitcellSameMols, OneMoleculeIsUnique) {
  FileIO io;
  load_molecules(io, {3}, {1.0});
  const std::string out = txtest::capture_stdout([&] { EXPECT_TRUE(io.HL_check_unitcell_same_mols(false)); });
  EXPECT_EQ(out, "");
  EXPECT_EQ(io.uc_mol_unique_count, 1);
  EXPECT_EQ(io.uc_mol_unique_list[0], 1);
}

TEST(HLCheckUnitcellSameMols, NoMoleculesNeedNoArrays) {
  FileIO io;
  EXPECT_TRUE(io.HL_check_unitcell_same_mols(false));
  EXPECT_EQ(io.uc_mol_unique_count, 0);
}

TEST(HLCheckUnitcellSameMols, WithoutTheIdArrayEndsTheRun) {
  const txtest::RunResult r = run_forked([] {
    FileIO io;
    load_molecules(io, {3, 3}, {1.0, 1.0});
    delete[] io.uc_mol_id;
    io.uc_mol_id = nullptr;
    io.HL_check_unitcell_same_mols(false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "HL_check_unitcell_same_mols: uc_mol_id is not allocated; build the neighbor list first\n");
}

TEST(HLCheckUnitcellSameMols, WithoutTheListArrayEndsTheRun) {
  const txtest::RunResult r = run_forked([] {
    FileIO io;
    load_molecules(io, {3, 3}, {1.0, 1.0});
    delete[] io.uc_mol_unique_list;
    io.uc_mol_unique_list = nullptr;
    io.HL_check_unitcell_same_mols(false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "HL_check_unitcell_same_mols: uc_mol_unique_list is not allocated; build the neighbor list first\n");
}
