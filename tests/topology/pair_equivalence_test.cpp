// Equivalence of unit-cell molecules and of neighbor pairs, and the tables that
// record it.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "test_support.h"
#include "topology_fixtures.h"

namespace {

using topo::Nei;
using txtest::capture_stdout;
using txtest::mask_line_numbers;
using txtest::read_file;
using txtest::run_forked;
using txtest::RunResult;
using txtest::TempDir;
using txtest::write_file;

const std::string kHead = "\nERROR  transport : transport : line # : \n";

// Builds the list from a neighbor.dat written for `rows`, in the current directory.
void read_rows(Transport& t, const std::vector<std::vector<Nei>>& rows) {
  write_file("neighbor.dat", topo::neighbor_dat(rows));
  t.calc_x_com();
  capture_stdout([&] { t.build_neighbor_list(true, false); });
}

void quiet_flags(Transport& t, bool unique, int eigval_output) {
  t.unique_uc_mol_one_calc_flag = unique;
  t.unique_nei_mol_one_calc_flag = unique;
  t.unique_2mol_calc_flag = unique;
  t.eigval_output_flag = eigval_output;
}

// ---- molecule moments and eigval_1mol.dat ---------------------------------------

// Two technetium dimers (mass 98), 2 angstrom long, one along x and one along y,
// in an 8 angstrom cell. Their tensors are diagonal: over 2 atoms (0, 98, 98)
// and (98, 0, 98), axes the identity.
void two_dimers(Transport& t) {
  topo::set_orthorhombic(t, 8.0, 8.0, 8.0);
  topo::set_molecules(t, {{{topo::Tc, 0.125, 0.5, 0.5}, {topo::Tc, 0.375, 0.5, 0.5}},
                          {{topo::Tc, 0.5, 0.125, 0.5}, {topo::Tc, 0.5, 0.375, 0.5}}});
  topo::set_search(t, 1.0, 0, 0, 0);
  t.calc_x_com();
  t.build_neighbor_list(false, false);
}

TEST(MoleculeMoments, WritesTheEigenvalueTable) {
  TempDir dir;
  Transport t;
  two_dimers(t);
  quiet_flags(t, true, 1);
  create_directory("data");
  t.calc_HL_uc_mol_eigval_eigvec();
  EXPECT_EQ(std::vector<double>(t.uc_mol_eigval[1], t.uc_mol_eigval[1] + 3), (std::vector<double>{98.0, 0.0, 98.0}));
  // "   %10.6f %10.6f %10.6f  %10.6f x9" per molecule, worked out by hand.
  EXPECT_EQ(read_file("data/eigval_1mol.dat"),
            "# unitcell mol eigenvalues by principal moment of inertia\n"
            "2\n"
            "     0.000000  98.000000  98.000000    1.000000   0.000000   0.000000   0.000000   1.000000   0.000000"
            "   0.000000   0.000000   1.000000\n"
            "    98.000000   0.000000  98.000000    1.000000   0.000000   0.000000   0.000000   1.000000   0.000000"
            "   0.000000   0.000000   1.000000\n");
}

TEST(MoleculeMoments, TableNeedsBothTheUniqueFlagAndTheOutputFlag) {
  TempDir dir;
  Transport t;
  two_dimers(t);
  create_directory("data");
  quiet_flags(t, false, 1);
  t.calc_HL_uc_mol_eigval_eigvec();
  EXPECT_FALSE(txtest::path_exists("data/eigval_1mol.dat"));
  quiet_flags(t, true, 0);
  t.calc_HL_uc_mol_eigval_eigvec();
  EXPECT_FALSE(txtest::path_exists("data/eigval_1mol.dat"));
  EXPECT_EQ(t.uc_mol_eigval[0][1], 98.0);
}

TEST(MoleculeMoments, TableThatWillNotOpenIsFatalWithMinusOne) {
  TempDir dir;
  const RunResult r = run_forked([] {
    Transport t;
    two_dimers(t);
    quiet_flags(t, true, 1);
    t.calc_HL_uc_mol_eigval_eigvec();  // no data directory
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open output file data/eigval_1mol.dat\n");
}

// ---- pairs: tables, map, report -------------------------------------------------

// Technetium atoms at (1,1,1), (3,1,1) and (3,3,1) angstrom, one per molecule.
// Pairs read from neighbor.dat: root 1 with molecule 2 and root 2 with molecules
// 1 and 3; root 3 has none. Pairs along x give (0, 98, 98), along y (98, 0, 98).
void three_atoms(Transport& t) {
  topo::set_orthorhombic(t, 8.0, 8.0, 8.0);
  topo::set_molecules(t, {{{topo::Tc, 0.125, 0.125, 0.125}},
                          {{topo::Tc, 0.375, 0.125, 0.125}},
                          {{topo::Tc, 0.375, 0.375, 0.125}}});
  read_rows(t, {{{1, 0, 0, 0}}, {{0, 0, 0, 0}, {2, 0, 0, 0}}, {}});
}

TEST(PairEquivalence, WritesTablesMapAndReport) {
  TempDir dir;
  Transport t;
  three_atoms(t);
  quiet_flags(t, true, 1);
  create_directory("data");
  const std::string out = capture_stdout([&] { t.calc_HL_2mol_eigval_eigvec_and_unique_pairs(); });
  EXPECT_EQ(read_file("data/eigval_2mol.dat"),
            "# 2mol eigenvalues by principal moment of inertia\n"
            "3\n"
            "  1\n"
            "     1:   0.000000  98.000000  98.000000    1.000000   0.000000   0.000000   0.000000   1.000000"
            "   0.000000   0.000000   0.000000   1.000000\n"
            "  2\n"
            "     1:   0.000000  98.000000  98.000000    1.000000   0.000000   0.000000   0.000000   1.000000"
            "   0.000000   0.000000   0.000000   1.000000\n"
            "     2:  98.000000   0.000000  98.000000    1.000000   0.000000   0.000000   0.000000   1.000000"
            "   0.000000   0.000000   0.000000   1.000000\n"
            "  3\n");
  // Root, column and the key itself (not its representative), one-based.
  EXPECT_EQ(read_file("data/unique_id_map.dat"),
            "# Unique ID mapping\n"
            "3\n"
            "  1\n"
            "      1   1    1\n"
            "  2\n"
            "      2   1    2\n"
            "      2   2    3\n"
            "  0\n");
  EXPECT_EQ(out,
            "**** Check Duplicate 2mol pairs ****\n"
            "  Unique 2mol pairs: 2 out of 3\n"
            "      1   1   <=>    1\n"
            "      2   2   <=>    3\n"
            "**** End of Check Duplicate 2mol pairs ****\n\n");
  EXPECT_EQ(t.neighbor_nkeys, 3);
  EXPECT_EQ(std::vector<int>(t.pair_key_map, t.pair_key_map + 3), (std::vector<int>{0, 0, 2}));
  EXPECT_EQ(std::vector<int>(t.pair_keylist, t.pair_keylist + t.pair_keylist_count), (std::vector<int>{1, 3}));
  EXPECT_TRUE(t.pairs_checked);
  // The rotated pair stays: molecule 2 then 3, centre (3,2,1), axes the identity.
  ASSERT_NE(t.pair_x[1][1], nullptr);
  EXPECT_EQ(std::vector<double>(t.pair_x[1][1], t.pair_x[1][1] + 6),
            (std::vector<double>{0.0, -1.0, 0.0, 0.0, 1.0, 0.0}));
}

TEST(PairEquivalence, WithoutTheUniqueFlagNothingIsWrittenOrReported) {
  TempDir dir;
  Transport t;
  three_atoms(t);
  quiet_flags(t, false, 1);
  create_directory("data");
  const std::string out = capture_stdout([&] { t.calc_HL_2mol_eigval_eigvec_and_unique_pairs(); });
  EXPECT_EQ(out, "");
  EXPECT_FALSE(txtest::path_exists("data/eigval_2mol.dat"));
  EXPECT_FALSE(txtest::path_exists("data/unique_id_map.dat"));
  EXPECT_EQ(t.pair_keylist_count, 2);
  EXPECT_TRUE(t.pairs_checked);
}

TEST(PairEquivalence, MapFileWithoutEigenvalueTable) {
  TempDir dir;
  Transport t;
  three_atoms(t);
  quiet_flags(t, true, 0);
  create_directory("data");
  capture_stdout([&] { t.calc_HL_2mol_eigval_eigvec_and_unique_pairs(); });
  EXPECT_FALSE(txtest::path_exists("data/eigval_2mol.dat"));
  EXPECT_TRUE(txtest::path_exists("data/unique_id_map.dat"));
}

TEST(PairEquivalence, MapFileThatWillNotOpenIsFatalWithMinusOne) {
  TempDir dir;
  const RunResult r = run_forked([] {
    Transport t;
    three_atoms(t);
    quiet_flags(t, true, 0);
    t.calc_HL_2mol_eigval_eigvec_and_unique_pairs();  // no data directory
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open output file data/unique_id_map.dat\n");
}

TEST(PairEquivalence, PairTableThatWillNotOpenIsFatalWithMinusOne) {
  TempDir dir;
  const RunResult r = run_forked([] {
    Transport t;
    three_atoms(t);
    quiet_flags(t, true, 1);
    t.calc_HL_2mol_eigval_eigvec_and_unique_pairs();  // no data directory
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open output file data/eigval_2mol.dat\n");
}

// Pairs of technetium atoms at -h and +h on x (identity lattice, so coordinates
// are exact and the centre is exactly 0): eigenvalues (0, 98 h^2, 98 h^2) with no
// Jacobi rotation. The h were found with python3 so that 98*(h*h) gives
// 0.019999999999999997 and 0.009999999999999997, whose difference is exactly the
// double 0.01; the third gives a difference of 0.0099.
const double kH_020 = 0.014285714285714285;
const double kH_010 = 0.010101525445522105;
const double kH_0101 = 0.010151907431108494;

void symmetric_pairs(Transport& t, double h1, double h2) {
  topo::set_orthorhombic(t, 1.0, 1.0, 1.0);
  topo::set_molecules(t, {{{topo::Tc, -h1, 0.0, 0.0}},
                          {{topo::Tc, h1, 0.0, 0.0}},
                          {{topo::Tc, -h2, 0.0, 0.0}},
                          {{topo::Tc, h2, 0.0, 0.0}}});
  read_rows(t, {{{1, 0, 0, 0}}, {}, {{3, 0, 0, 0}}, {}});
  quiet_flags(t, false, 0);
  t.calc_HL_2mol_eigval_eigvec_and_unique_pairs();
}

TEST(PairEquivalence, PairsExactlyOneHundredthApartAreDistinct) {
  TempDir dir;
  Transport t;
  symmetric_pairs(t, kH_020, kH_010);
  ASSERT_EQ(t.pair_eigval[0][0][1] - t.pair_eigval[2][0][1], 0.01);
  EXPECT_EQ(std::vector<int>(t.pair_keylist, t.pair_keylist + t.pair_keylist_count), (std::vector<int>{1, 2}));
}

TEST(PairEquivalence, PairsJustUnderOneHundredthApartAreTheSame) {
  TempDir dir;
  Transport t;
  symmetric_pairs(t, kH_020, kH_0101);
  EXPECT_LT(t.pair_eigval[0][0][1] - t.pair_eigval[2][0][1], 0.01);
  EXPECT_EQ(std::vector<int>(t.pair_key_map, t.pair_key_map + 2), (std::vector<int>{0, 0}));
  EXPECT_EQ(t.pair_keylist_count, 1);
}

// Root 0, a technetium atom at the origin, paired with three technetium atoms on
// x at distances d; each pair has eigenvalues near (0, 24.5 d^2, 24.5 d^2).
void fan_of_three(Transport& t, const double e[3]) {
  topo::set_orthorhombic(t, 1.0, 1.0, 1.0);
  std::vector<topo::Molecule> mols = {{{topo::Tc, 0.0, 0.0, 0.0}}};
  for (int k = 0; k < 3; ++k) mols.push_back({{topo::Tc, std::sqrt(e[k] / 24.5), 0.0, 0.0}});
  topo::set_molecules(t, mols);
  read_rows(t, {{{1, 0, 0, 0}, {2, 0, 0, 0}, {3, 0, 0, 0}}, {}, {}, {}});
  quiet_flags(t, false, 0);
  t.calc_HL_2mol_eigval_eigvec_and_unique_pairs();
}

TEST(PairEquivalence, LaterMatchOverwritesAnEarlierRepresentative) {
  TempDir dir;
  Transport t;
  // Key 2 matches key 0 (0.008) and then key 1 (0.008); keys 0 and 1 differ (0.016).
  const double e[3] = {1.000, 1.016, 1.008};
  fan_of_three(t, e);
  EXPECT_NEAR(t.pair_eigval[0][1][1], 1.016, 1e-9);
  EXPECT_EQ(std::vector<int>(t.pair_key_map, t.pair_key_map + 3), (std::vector<int>{0, 1, 1}));
  EXPECT_EQ(std::vector<int>(t.pair_keylist, t.pair_keylist + t.pair_keylist_count), (std::vector<int>{1, 2}));
}

TEST(PairEquivalence, ChainIsFollowedWithoutClosure) {
  TempDir dir;
  Transport t;
  // 0 ~ 1 and 1 ~ 2 but not 0 ~ 2: key 2 copies key 1's representative, key 0.
  const double e[3] = {1.000, 1.008, 1.016};
  fan_of_three(t, e);
  EXPECT_EQ(std::vector<int>(t.pair_key_map, t.pair_key_map + 3), (std::vector<int>{0, 0, 0}));
  EXPECT_EQ(t.pair_keylist_count, 1);
}

TEST(PairEquivalence, DynamicDisorderVariantReportsWithoutFiles) {
  TempDir dir;
  Transport t;
  three_atoms(t);
  quiet_flags(t, true, 1);
  create_directory("data");
  const std::string out = capture_stdout([&] { t.dyn_disorder_build_unique_pairs(); });
  EXPECT_EQ(out, "Building dynamic disorder unique pairs...\n  Unique pairs: 1 3\n");
  EXPECT_FALSE(txtest::path_exists("data/eigval_2mol.dat"));
  EXPECT_FALSE(txtest::path_exists("data/unique_id_map.dat"));
  EXPECT_EQ(std::vector<int>(t.pair_key_map, t.pair_key_map + 3), (std::vector<int>{0, 0, 2}));
  EXPECT_FALSE(t.pairs_checked);
}

TEST(PairEquivalence, RepeatedCheckReplacesItsArrays) {
  TempDir dir;
  Transport t;
  three_atoms(t);
  quiet_flags(t, false, 0);
  t.calc_HL_2mol_eigval_eigvec_and_unique_pairs();
  t.calc_HL_2mol_eigval_eigvec_and_unique_pairs();
  EXPECT_EQ(t.pair_keylist_count, 2);
}

// ---- molecule classes ---------------------------------------------------------------

// Two single-atom molecules after the neighbor list, with masses and moments set
// by hand.
void two_molecules(Transport& t, double m0, double m1) {
  topo::set_orthorhombic(t, 8.0, 8.0, 8.0);
  topo::set_molecules(t, {{{topo::C, 0.125, 0.125, 0.125}}, {{topo::C, 0.625, 0.125, 0.125}}});
  topo::set_search(t, 1.0, 0, 0, 0);
  t.calc_x_com();
  t.build_neighbor_list(false, false);
  t.mol_mass[0] = m0;
  t.mol_mass[1] = m1;
  quiet_flags(t, false, 0);
}

TEST(MoleculeClasses, AllDistinctReturnsOneAndClearsTheDuplicateFlag) {
  Transport t;
  two_molecules(t, 12.0, 14.0);
  ASSERT_TRUE(t.uc_mol_has_dups);
  int ret = -1;
  const std::string out = capture_stdout([&] { ret = t.HL_check_unitcell_unique_mols(true); });
  EXPECT_EQ(ret, 1);
  EXPECT_FALSE(t.uc_mol_has_dups);
  EXPECT_EQ(t.uc_mol_unique_count, 2);
  // The report ends with the unique indexes: both branches return before the
  // closing banner.
  EXPECT_EQ(out,
            "**** Check HL Duplicate Molecules in Unit Cell ****\n"
            "  Unit cell molecular indexes:  1 2\n"
            "  Unit cell unique molecular indexes: 1 2\n");
}

TEST(MoleculeClasses, MassesOneHundredthApartAreTheSame) {
  Transport t;
  // 12.01 - 12.0 is 0.009999999999999787 in doubles; 0.02 - 0.01 is exactly 0.01.
  two_molecules(t, 12.0, 12.01);
  EXPECT_EQ(t.HL_check_unitcell_unique_mols(false), 0);
  EXPECT_EQ(t.uc_mol_id[1], 1);
  EXPECT_EQ(t.uc_mol_unique_count, 1);
  EXPECT_EQ(t.uc_mol_unique_list[0], 1);
  EXPECT_TRUE(t.uc_mol_has_dups);
  Transport u;
  two_molecules(u, 0.01, 0.02);
  EXPECT_EQ(u.HL_check_unitcell_unique_mols(false), 0);
  EXPECT_EQ(u.uc_mol_unique_count, 1);
}

TEST(MoleculeClasses, MomentsExactlyOneHundredthApartAreTheSame) {
  Transport t;
  two_molecules(t, 12.0, 12.0);
  for (int k = 0; k < 3; ++k) t.uc_mol_eigval[1][k] = 0.01;
  EXPECT_EQ(t.HL_check_unitcell_unique_mols(false), 0);
  EXPECT_EQ(t.uc_mol_unique_count, 1);
  Transport u;
  two_molecules(u, 12.0, 12.0);
  u.uc_mol_eigval[1][2] = 0.0101;
  EXPECT_EQ(u.HL_check_unitcell_unique_mols(false), 1);
}

TEST(MoleculeClasses, WithPairCheckCandidatesAreTheRootsOfUniquePairs) {
  Transport t;
  topo::set_orthorhombic(t, 8.0, 8.0, 8.0);
  topo::set_molecules(t, {{{topo::C, 0.1, 0.1, 0.1}}, {{topo::H, 0.3, 0.1, 0.1}}, {{topo::C, 0.5, 0.1, 0.1}}});
  topo::set_search(t, 1.0, 0, 0, 0);
  t.calc_x_com();
  t.build_neighbor_list(false, false);
  // Neighbor counts 2, 0, 3 by hand: keys 1-2 belong to root 1, keys 3-5 to root 3.
  t.nneighbors[0] = 2;
  t.nneighbors[2] = 3;
  quiet_flags(t, true, 0);
  t.pair_keylist = new int[3]{1, 3, 5};
  t.pair_keylist_count = 3;
  EXPECT_EQ(t.HL_check_unitcell_unique_mols(false), 0);
  EXPECT_EQ(std::vector<int>(t.uc_mol_unique_list, t.uc_mol_unique_list + t.uc_mol_unique_count),
            (std::vector<int>{1, 3}));
  // A key past every running sum goes to root 1.
  t.pair_keylist[0] = 9;
  t.pair_keylist_count = 1;
  t.HL_check_unitcell_unique_mols(false);
  EXPECT_EQ(t.uc_mol_unique_count, 1);
  EXPECT_EQ(t.uc_mol_unique_list[0], 1);
  // Restore the counts the rows were allocated with, for the release.
  t.nneighbors[0] = 0;
  t.nneighbors[2] = 0;
}

// The gather path: list built, no moments computed (they stay zero), no pair check.
TEST(MoleculeClasses, GatherPathComparesTheZeroMomentsSoMassDecides) {
  Transport t;
  topo::set_orthorhombic(t, 10.0, 10.0, 10.0);
  // Same atoms and mass, different shapes: a bent and a straight C-H-C.
  topo::set_molecules(t, {{{topo::C, 0.1, 0.1, 0.1}, {topo::H, 0.2, 0.1, 0.1}, {topo::C, 0.3, 0.1, 0.1}},
                          {{topo::C, 0.6, 0.6, 0.6}, {topo::H, 0.7, 0.6, 0.6}, {topo::C, 0.7, 0.7, 0.6}}});
  topo::set_search(t, 4.0, 1, 1, 1);
  t.build_neighbor_list(false, false);
  t.unique_2mol_calc_flag = false;
  EXPECT_EQ(t.HL_check_unitcell_unique_mols(false), 0);
  EXPECT_EQ(t.uc_mol_id[1], 1);
  EXPECT_EQ(t.uc_mol_unique_count, 1);
  // With the pair flag on, as the gather's defaults have it, there are no pair
  // keys yet and so no candidates.
  Transport u;
  topo::set_orthorhombic(u, 10.0, 10.0, 10.0);
  topo::set_molecules(u, {{{topo::C, 0.1, 0.1, 0.1}}, {{topo::C, 0.6, 0.6, 0.6}}});
  topo::set_search(u, 4.0, 1, 1, 1);
  u.build_neighbor_list(false, false);
  ASSERT_TRUE(u.unique_2mol_calc_flag);
  EXPECT_EQ(u.HL_check_unitcell_unique_mols(false), 0);
  EXPECT_EQ(u.uc_mol_unique_count, 0);
}

TEST(MoleculeClasses, SingleMoleculeGivesOneClassAndOneCandidate) {
  TempDir dir;
  Transport t;
  topo::set_orthorhombic(t, 3.0, 3.0, 3.0);
  topo::set_molecules(t, {{{topo::C, 0.0, 0.0, 0.0}}});
  topo::set_search(t, 4.0, 1, 1, 1);
  t.calc_x_com();
  t.build_neighbor_list(false, false);
  quiet_flags(t, true, 0);
  create_directory("data");
  capture_stdout([&] {
    t.calc_HL_uc_mol_eigval_eigvec();
    t.calc_HL_2mol_eigval_eigvec_and_unique_pairs();
  });
  // Six face images: pairs along x, y and z have their zero moment on different
  // axes, so three pair classes, all of root 1.
  EXPECT_EQ(t.pair_keylist_count, 3);
  EXPECT_EQ(t.HL_check_unitcell_unique_mols(false), 1);
  EXPECT_EQ(t.uc_mol_unique_count, 1);
  EXPECT_EQ(t.uc_mol_unique_list[0], 1);
}

// ---- neighbors onto classes, and the stub script ---------------------------------

TEST(NeighborClasses, LastMatchingCellMoleculeGivesTheClass) {
  TempDir dir;
  Transport t;
  three_atoms(t);
  // Molecule 1 made lighter; molecules 2 and 3 have equal mass and (zero)
  // moments, so a neighbor that is either matches both, and the last, 3, stands.
  t.mol_mass[0] = 1.0;
  capture_stdout([&] { t.find_HL_mol_neighbor_index_unique(); });
  EXPECT_EQ(t.nei_mol_id[0][0], 3);  // molecule 2
  EXPECT_EQ(t.nei_mol_id[1][0], 1);  // molecule 1
  EXPECT_EQ(t.nei_mol_id[1][1], 3);  // molecule 3
  const std::string expected =
      "#!/usr/bin/env python\n"
      "import sys\n"
      "\n"
      "sys.stdout.write(\">> Use results from mol_one_uc.py\\n\")\n"
      "\n";
  EXPECT_EQ(read_file("scr/mol_one_nei.py"), expected);
  const txtest::RunResult r = txtest::run_command("python3 -m py_compile scr/mol_one_nei.py", dir.path());
  EXPECT_EQ(r.status, 0) << r.err;
  const txtest::RunResult run = txtest::run_command("python3 scr/mol_one_nei.py", dir.path());
  EXPECT_EQ(run.out, ">> Use results from mol_one_uc.py\n");
}

TEST(NeighborClasses, StubGoesToTheScriptDirectory) {
  TempDir dir;
  Transport t;
  three_atoms(t);
  t.set_job_scripts_SCRdir("helpers");
  t.find_HL_mol_neighbor_index_unique();
  EXPECT_TRUE(txtest::path_exists("helpers/mol_one_nei.py"));
  EXPECT_FALSE(txtest::path_exists("scr"));
}

TEST(NeighborClasses, StubThatWillNotOpenIsFatalWithOne) {
  TempDir dir;
  const RunResult r = run_forked([] {
    Transport t;
    three_atoms(t);
    t.set_job_scripts_SCRdir("missing/scr");
    t.find_HL_mol_neighbor_index_unique();
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open output file missing/scr/mol_one_nei.py\n");
}

TEST(NeighborClasses, ChecksBeforeTheNeighborListAreRejected) {
  const RunResult r = run_forked([] {
    Transport t;
    topo::set_orthorhombic(t, 8.0, 8.0, 8.0);
    topo::set_molecules(t, {{{topo::C, 0.1, 0.1, 0.1}}});
    t.HL_check_unitcell_unique_mols(false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "HL_check_unitcell_unique_mols: the neighbor list is not built; build the neighbor list first\n");
}

TEST(NeighborClasses, RotatedMoleculesAndPairsGoToTheCheckDirectoryWhenAsked) {
  TempDir dir;
  Transport t;
  three_atoms(t);
  quiet_flags(t, false, 0);
  t.write_rot_mol_flag = true;
  capture_stdout([&] {
    t.calc_HL_uc_mol_eigval_eigvec();
    t.calc_HL_2mol_eigval_eigvec_and_unique_pairs();
  });
  EXPECT_TRUE(txtest::path_exists("check/uc_mol_1_rot.mol"));
  EXPECT_TRUE(txtest::path_exists("check/uc_mol_3_rot.mol"));
  EXPECT_TRUE(txtest::path_exists("check/2mol_1_1_rot.mol"));
  EXPECT_TRUE(txtest::path_exists("check/2mol_2_2_rot.mol"));
  EXPECT_FALSE(txtest::path_exists("check/2mol_3_1_rot.mol"));
}

}  // namespace
