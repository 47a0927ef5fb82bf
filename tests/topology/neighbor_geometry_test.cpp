// The geometric tests of the neighbor search and the helpers beside them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_support.h"
#include "topology_fixtures.h"

namespace {

// Root: atoms at x = 0 and 1 angstrom; partner: atoms at 3.5 and 1.5 angstrom,
// all on one line in a 64 angstrom cell (exact fractions); molecule 2 is empty.
void two_pairs_on_a_line(Transport& t) {
  topo::set_orthorhombic(t, 64.0, 64.0, 64.0);
  topo::set_molecules(t, {{{topo::C, 0.0, 0.5, 0.5}, {topo::C, 1.0 / 64, 0.5, 0.5}},
                          {{topo::C, 3.5 / 64, 0.5, 0.5}, {topo::C, 1.5 / 64, 0.5, 0.5}},
                          {}});
}

TEST(WithinCutoff, FirstClosePairEndsTheSearchNotTheMinimum) {
  Transport t;
  two_pairs_on_a_line(t);
  int cell[3] = {0, 0, 0};
  double rsq = -1.0;
  EXPECT_EQ(t.check_if_molecule_within_rcut(0, 1, cell, 16.0, &rsq), 1);
  // Atom 0 of the root against atom 0 of the partner comes first: 3.5 angstrom,
  // though atoms 1 and 1 are only 0.5 apart.
  EXPECT_DOUBLE_EQ(rsq, 3.5 * 3.5);
  EXPECT_EQ(t.check_if_molecule_within_rcut_x(0, 1, cell, 16.0, &rsq), 1);
  EXPECT_DOUBLE_EQ(rsq, 3.5 * 3.5);
}

TEST(WithinCutoff, DistanceEqualToTheCutoffIsNotAccepted) {
  Transport t;
  topo::set_orthorhombic(t, 8.0, 8.0, 8.0);
  topo::set_molecules(t, {{{topo::C, 0.0, 0.0, 0.0}}, {{topo::C, 0.5, 0.0, 0.0}}});
  int cell[3] = {0, 0, 0};
  double rsq = -1.0;
  EXPECT_EQ(t.check_if_molecule_within_rcut(0, 1, cell, 16.0, &rsq), 0);
  EXPECT_EQ(rsq, -1.0);
  EXPECT_EQ(t.check_if_molecule_within_rcut_x(0, 1, cell, 16.0, &rsq), 0);
  EXPECT_EQ(t.check_if_molecule_within_rcut(0, 1, cell, 16.0 + 1e-9, &rsq), 1);
  EXPECT_EQ(rsq, 16.0);
}

TEST(WithinCutoff, MoleculeWithoutAtomsIsNeverWithin) {
  Transport t;
  two_pairs_on_a_line(t);
  int cell[3] = {0, 0, 0};
  double rsq = -1.0;
  EXPECT_EQ(t.check_if_molecule_within_rcut(2, 0, cell, 1e6, &rsq), 0);
  EXPECT_EQ(t.check_if_molecule_within_rcut(0, 2, cell, 1e6, &rsq), 0);
  int zero[3] = {0, 0, 0};
  EXPECT_EQ(t.check_if_molecule_within_rcut_cell2(0, zero, 2, zero, 1e6), 0);
}

TEST(WithinCutoff, CellShiftsThePartner) {
  Transport t;
  topo::set_orthorhombic(t, 8.0, 8.0, 8.0);
  // Partner at x = 7 angstrom; in cell -1 it sits at -1, 1 angstrom from the root.
  topo::set_molecules(t, {{{topo::C, 0.0, 0.0, 0.0}}, {{topo::C, 0.875, 0.0, 0.0}}});
  int here[3] = {0, 0, 0};
  int left[3] = {-1, 0, 0};
  double rsq = 0.0;
  EXPECT_EQ(t.check_if_molecule_within_rcut(0, 1, here, 4.0, &rsq), 0);
  EXPECT_EQ(t.check_if_molecule_within_rcut(0, 1, left, 4.0, &rsq), 1);
  EXPECT_DOUBLE_EQ(rsq, 1.0);
  EXPECT_EQ(t.check_if_molecule_within_rcut_x(0, 1, left, 4.0, &rsq), 1);
  EXPECT_DOUBLE_EQ(rsq, 1.0);
  // Both sides shifted: root in cell +1 (x = 8) and partner in cell 0 (x = 7).
  int right[3] = {1, 0, 0};
  EXPECT_EQ(t.check_if_molecule_within_rcut_cell2(0, right, 1, here, 4.0), 1);
  EXPECT_EQ(t.check_if_molecule_within_rcut_cell2(0, here, 1, here, 4.0), 0);
}

TEST(WithinCutoff, Cell2RejectsAMoleculeAgainstItselfInTheSameCell) {
  Transport t;
  topo::set_orthorhombic(t, 2.0, 2.0, 2.0);
  topo::set_molecules(t, {{{topo::C, 0.0, 0.0, 0.0}}});
  int a[3] = {1, 0, 0};
  int b[3] = {1, 0, 0};
  int c[3] = {0, 0, 0};
  EXPECT_EQ(t.check_if_molecule_within_rcut_cell2(0, a, 0, b, 100.0), 0);
  EXPECT_EQ(t.check_if_molecule_within_rcut_cell2(0, a, 0, c, 100.0), 1);
}

TEST(WithinCutoff, CentreCriterionPrintsATraceLineOnAcceptance) {
  Transport t;
  topo::set_orthorhombic(t, 8.0, 8.0, 8.0);
  topo::set_molecules(t, {{{topo::C, 0.125, 0.25, 0.375}}, {{topo::C, 0.375, 0.25, 0.375}}});
  t.calc_x_com();
  int ci[3] = {0, 0, 0};
  int cj[3] = {0, 0, 0};
  int ret = -1;
  std::string out = txtest::capture_stdout([&] { ret = t.check_if_molecule_within_rcut_com(0, ci, 1, cj, 16.0); });
  EXPECT_EQ(ret, 1);
  EXPECT_EQ(out,
            "     1.000     2.000     3.000 -     3.000     2.000     3.000 :   0  0 0  -   0  0  0 : 0 1 :  r =        "
            "2.000, rcut =        4.000\n");
  // The same centre (closer than 0.1 angstrom) is not a neighbor, nor is one past the cutoff.
  out = txtest::capture_stdout([&] { ret = t.check_if_molecule_within_rcut_com(0, ci, 0, cj, 16.0); });
  EXPECT_EQ(ret, 0);
  EXPECT_EQ(out, "");
  int far[3] = {0, 0, 1};
  out = txtest::capture_stdout([&] { ret = t.check_if_molecule_within_rcut_com(0, ci, 1, far, 16.0); });
  EXPECT_EQ(ret, 0);
  EXPECT_EQ(out, "");
}

TEST(MinimumDistance, SmallestAtomPairInAngstrom) {
  Transport t;
  two_pairs_on_a_line(t);
  int cell[3] = {0, 0, 0};
  EXPECT_DOUBLE_EQ(t.found_two_molecules_min_distance(0, 1, cell), 0.5);
  // Without atoms the start value 1e30 survives: its root is 1e15.
  EXPECT_EQ(t.found_two_molecules_min_distance(2, 0, cell), 1e15);
  EXPECT_EQ(t.found_two_molecules_min_distance(0, 2, cell), 1e15);
}

TEST(MinimumDistance, CentreDistanceSquaredWithCell) {
  Transport t;
  topo::set_orthorhombic(t, 8.0, 8.0, 8.0);
  topo::set_molecules(t, {{{topo::C, 0.0, 0.0, 0.0}}, {{topo::C, 0.875, 0.0, 0.0}}});
  t.calc_x_com();
  int left[3] = {-1, 0, 0};
  int up[3] = {0, 0, 1};
  EXPECT_DOUBLE_EQ(t.calc_neighbor_com_rsq(0, 1, left), 1.0);
  EXPECT_DOUBLE_EQ(t.calc_neighbor_com_rsq(0, 1, up), 49.0 + 64.0);
}

// With neighbor_scell 1 0 0 the plain product of the search range is 0: the
// report must not depend on it for its scratch space.
TEST(MinimumDistance, ReportListsKeptPartnersSortedPerRoot) {
  Transport t;
  topo::set_orthorhombic(t, 5.0, 20.0, 20.0);
  topo::set_molecules(t, {{{topo::C, 0.0, 0.5, 0.5}}, {{topo::C, 0.8, 0.5, 0.5}}});
  topo::set_search(t, 5.5, 1, 0, 0);
  const std::string out = txtest::capture_stdout([&] { t.find_neighbor_molecules_min_distance(false); });
  // Entries in loop order, root 1: 5.0 (1, cell -1), 1.0 (2, -1), 4.0 (2, 0), 5.0 (1, +1);
  // root 2: 5.0 (2, -1), 4.0 (1, 0), 1.0 (1, +1), 5.0 (2, +1). The order of the two
  // ties at 5.0 is the one quickSort_d's middle-pivot partition leaves, traced by hand.
  EXPECT_EQ(out,
            "**** Calculate minimum atomic distance with neighbors ****\n"
            "  molecule 1\n"
            "    neighbor 2 [-1  0  0]:    1.000\n"
            "    neighbor 2 [ 0  0  0]:    4.000\n"
            "    neighbor 1 [ 1  0  0]:    5.000\n"
            "    neighbor 1 [-1  0  0]:    5.000\n"
            "  molecule 2\n"
            "    neighbor 1 [ 1  0  0]:    1.000\n"
            "    neighbor 1 [ 0  0  0]:    4.000\n"
            "    neighbor 2 [ 1  0  0]:    5.000\n"
            "    neighbor 2 [-1  0  0]:    5.000\n"
            "**** End of Calculate minimum atomic distance with neighbors ****\n\n");
}

TEST(MinimumDistance, LargeSearchRangeFitsTheScratchRows) {
  Transport t;
  topo::set_orthorhombic(t, 1.0, 1.0, 1.0);
  topo::set_molecules(t, {{{topo::H, 0.0, 0.0, 0.0}}});
  // 2.5 angstrom around a point of a 1 angstrom lattice: 80 images, far more than
  // the plain product 3*3*3*1 = 27.
  topo::set_search(t, 2.5, 3, 3, 3);
  const std::string out = txtest::capture_stdout([&] { t.find_neighbor_molecules_min_distance(true); });
  size_t lines = 0;
  for (size_t p = out.find("    neighbor "); p != std::string::npos; p = out.find("    neighbor ", p + 1)) ++lines;
  // python3: sum(1 for x in range(-3,4) for y in range(-3,4) for z in range(-3,4)
  //              if 0 < x*x+y*y+z*z < 6.25) == 80
  EXPECT_EQ(lines, 80u);
}

TEST(CellArray, OffsetsAlternateAroundZeroPerAxis) {
  Transport t;
  int n[3] = {5, 0, 2};
  int a[5] = {9, 9, 9, 9, 9};
  int b[2] = {9, 9};
  int c[3] = {9, 9, 9};
  int* out[3] = {a, b, c};
  t.create_neighbor_cell_array(n, out);
  EXPECT_EQ(std::vector<int>(a, a + 5), (std::vector<int>{0, -1, 1, -2, 2}));
  EXPECT_EQ(std::vector<int>(b, b + 2), (std::vector<int>{9, 9}));
  EXPECT_EQ(std::vector<int>(c, c + 3), (std::vector<int>{0, -1, 9}));
  int neg[3] = {-1, 1, 0};
  t.create_neighbor_cell_array(neg, out);
  EXPECT_EQ(a[0], 0);
  EXPECT_EQ(b[0], 0);
}

TEST(DuplicatePlacement, MatchesWithinOneMillionthAndEqualId) {
  Transport t;
  const std::vector<double> x = {0.0, 1.0}, y = {0.0, 2.0}, z = {0.0, 3.0};
  const std::vector<int> id = {1, 2};
  EXPECT_EQ(t.found_dup_mol(x, y, z, id, 1.0 + 5e-7, 2.0 - 5e-7, 3.0, 2), 1);
  EXPECT_EQ(t.found_dup_mol(x, y, z, id, 1.0, 2.0, 3.0, 1), 0);
  EXPECT_EQ(t.found_dup_mol(x, y, z, id, 1.0 + 2e-6, 2.0, 3.0, 2), 0);
  EXPECT_EQ(t.found_dup_mol({}, {}, {}, {}, 0.0, 0.0, 0.0, 0), 0);
}

TEST(CentreCutoff, OnlyTheFirstEntryIsConsulted) {
  Transport t;
  topo::set_orthorhombic(t, 10.0, 10.0, 10.0);
  const std::vector<double> x = {0.0, 0.5}, y = {0.0, 0.0}, z = {0.0, 0.0};
  // 3 angstrom from the first entry: inside 3.5, outside 2.5; the second entry
  // (2 angstrom away) plays no part.
  EXPECT_FALSE(t.mol_com_out_of_cutoff(x, y, z, 0.3, 0.0, 0.0, 3.5 * 3.5));
  EXPECT_TRUE(t.mol_com_out_of_cutoff(x, y, z, 0.3, 0.0, 0.0, 2.5 * 2.5));
  EXPECT_FALSE(t.mol_com_out_of_cutoff({}, {}, {}, 0.3, 0.0, 0.0, 1.0));
}

}  // namespace
