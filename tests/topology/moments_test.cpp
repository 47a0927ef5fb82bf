// Moment tensors and the rotation onto principal axes.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "test_support.h"
#include "topology_fixtures.h"

namespace {

TEST(MomentOfInertia, OffDiagonalElementsArePositiveSums) {
  Transport t;
  // Two masses of 2 at (6,6,5) and (4,4,5): centre (5,5,5), d = +-(1,1,0).
  double x[6] = {6.0, 6.0, 5.0, 4.0, 4.0, 5.0};
  double m[2] = {2.0, 2.0};
  double I[3][3];
  t.calc_moment_of_inertia(2, x, m, I);
  // By hand: I00 = sum m (dy^2+dz^2) = 4, I11 = 4, I22 = sum m (dx^2+dy^2) = 8,
  // I01 = sum m dx dy = +4 (the textbook tensor would have -4), I02 = I12 = 0.
  const double expected[3][3] = {{4.0, 4.0, 0.0}, {4.0, 4.0, 0.0}, {0.0, 0.0, 8.0}};
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) EXPECT_DOUBLE_EQ(I[r][c], expected[r][c]) << r << c;
}

TEST(MomentOfInertia, MassWeightedCentre) {
  Transport t;
  // Masses 3 at x = 0 and 1 at x = 4: centre 1, d = -1 and 3.
  double x[6] = {0.0, 0.0, 0.0, 4.0, 0.0, 0.0};
  double m[2] = {3.0, 1.0};
  double I[3][3];
  t.calc_moment_of_inertia(2, x, m, I);
  EXPECT_DOUBLE_EQ(I[0][0], 0.0);
  EXPECT_DOUBLE_EQ(I[1][1], 3.0 * 1.0 + 1.0 * 9.0);
  EXPECT_DOUBLE_EQ(I[2][2], 12.0);
}

TEST(MomentOfInertia, NoAtomsGiveAZeroTensor) {
  Transport t;
  double I[3][3];
  for (auto& row : I)
    for (double& v : row) v = 7.0;
  t.calc_moment_of_inertia(0, nullptr, nullptr, I);
  for (auto& row : I)
    for (double v : row) EXPECT_EQ(v, 0.0);
}

// Two technetium atoms (mass 98) 2 angstrom apart along x, in an 8 angstrom cell.
struct OneDimer : ::testing::Test {
  Transport t;
  void SetUp() override {
    topo::set_orthorhombic(t, 8.0, 8.0, 8.0);
    topo::set_molecules(t, {{{topo::Tc, 0.125, 0.5, 0.5}, {topo::Tc, 0.375, 0.5, 0.5}}});
    topo::set_search(t, 1.0, 0, 0, 0);
    t.build_neighbor_list(false, false);
  }
};

TEST_F(OneDimer, MoleculeTensorIsDividedByTheAtomCount) {
  int types[2] = {topo::Tc, topo::Tc};
  double x[6] = {1.0, 4.0, 4.0, 3.0, 4.0, 4.0};
  double out[6];
  t.calc_uc_mol_moment_and_rotate_x_one(2, types, x, out, 0);
  // d = -+1 along x: I11 = I22 = 98 + 98 = 196, over 2 atoms 98; diagonal, so the
  // axes are the identity and the eigenvalues stay in diagonal order.
  EXPECT_EQ(std::vector<double>(t.uc_mol_eigval[0], t.uc_mol_eigval[0] + 3), (std::vector<double>{0.0, 98.0, 98.0}));
  EXPECT_EQ(std::vector<double>(t.uc_mol_eigvec[0], t.uc_mol_eigvec[0] + 9),
            (std::vector<double>{1, 0, 0, 0, 1, 0, 0, 0, 1}));
  EXPECT_EQ(std::vector<double>(out, out + 6), (std::vector<double>{-1.0, 0.0, 0.0, 1.0, 0.0, 0.0}));
  // The input stays as it was.
  EXPECT_EQ(x[0], 1.0);
}

TEST_F(OneDimer, RotationFollowsTheJacobiAxesByColumnsInPlace) {
  int types[2] = {topo::Tc, topo::Tc};
  // d = +-(1,1,0): tensor over 2 atoms [[98,98,0],[98,98,0],[0,0,196]].
  double x[6] = {6.0, 6.0, 5.0, 4.0, 4.0, 5.0};
  t.calc_uc_mol_moment_and_rotate_x_one(2, types, x, x, 0);
  // One Jacobi rotation on (0,1) by hand: h = 0, theta = 0, t = 1,
  // c = s = 1/sqrt(2); d0 = 98 - 98 = 0, d1 = 98 + 98 = 196; V = [[c, s, 0],
  // [-s, c, 0], [0, 0, 1]]; the next sweep finds nothing and returns unsorted.
  const double c = 1.0 / std::sqrt(2.0);
  const double e[3] = {0.0, 196.0, 196.0};
  const double v[9] = {c, -c, 0.0, c, c, 0.0, 0.0, 0.0, 1.0};
  for (int k = 0; k < 3; ++k) EXPECT_NEAR(t.uc_mol_eigval[0][k], e[k], 1e-12) << k;
  for (int k = 0; k < 9; ++k) EXPECT_NEAR(t.uc_mol_eigvec[0][k], v[k], 1e-15) << k;
  // x_out = V^T (x - centre): (1,1,0) goes to (0, sqrt 2, 0), (-1,-1,0) to (0, -sqrt 2, 0).
  const double r[6] = {0.0, std::sqrt(2.0), 0.0, 0.0, -std::sqrt(2.0), 0.0};
  for (int k = 0; k < 6; ++k) EXPECT_NEAR(x[k], r[k], 1e-14) << k;
}

TEST(PairMoments, PairVariantFillsThePairBlocks) {
  // Root 0 with its two images 2 angstrom away as neighbors.
  Transport p;
  topo::set_orthorhombic(p, 2.0, 8.0, 8.0);
  topo::set_molecules(p, {{{topo::Tc, 0.5, 0.5, 0.5}}});
  topo::set_search(p, 2.5, 1, 0, 0);
  p.build_neighbor_list(false, false);
  ASSERT_EQ(p.nneighbors[0], 2);
  int types[2] = {topo::Tc, topo::Tc};
  double x[6] = {0.0, 1.0, 0.0, 0.0, -1.0, 0.0};
  p.calc_2mol_moment_and_rotate_x_one(2, types, x, x, 0, 1);
  EXPECT_EQ(std::vector<double>(p.pair_eigval[0][1], p.pair_eigval[0][1] + 3), (std::vector<double>{98.0, 0.0, 98.0}));
  EXPECT_EQ(std::vector<double>(p.pair_eigvec[0][1], p.pair_eigvec[0][1] + 9),
            (std::vector<double>{1, 0, 0, 0, 1, 0, 0, 0, 1}));
  // The other pair and the molecule blocks are untouched.
  EXPECT_EQ(p.pair_eigval[0][0][1], 0.0);
  EXPECT_EQ(p.uc_mol_eigval[0][0], 0.0);
}

TEST_F(OneDimer, NoAtomsLeaveZeroMomentsAndIdentityAxes) {
  t.calc_uc_mol_moment_and_rotate_x_one(0, nullptr, nullptr, nullptr, 0);
  EXPECT_EQ(std::vector<double>(t.uc_mol_eigval[0], t.uc_mol_eigval[0] + 3), (std::vector<double>{0.0, 0.0, 0.0}));
  EXPECT_EQ(std::vector<double>(t.uc_mol_eigvec[0], t.uc_mol_eigvec[0] + 9),
            (std::vector<double>{1, 0, 0, 0, 1, 0, 0, 0, 1}));
}

TEST(MomentBlocks, MoleculeOutsideTheTablesIsRejected) {
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    double x[3] = {0.0, 0.0, 0.0};
    int types[1] = {topo::C};
    t.calc_uc_mol_moment_and_rotate_x_one(1, types, x, x, 0);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : transport : line # : \n");
  EXPECT_EQ(r.err,
            "calc_uc_mol_moment_and_rotate_x_one: molecule 0 has no moment block; build the neighbor list first\n");
}

TEST(MomentBlocks, PairPastTheRowIsRejected) {
  const txtest::RunResult r = txtest::run_forked([] {
    Transport p;
    topo::set_orthorhombic(p, 2.0, 8.0, 8.0);
    topo::set_molecules(p, {{{topo::Tc, 0.5, 0.5, 0.5}}});
    topo::set_search(p, 2.5, 1, 0, 0);
    p.build_neighbor_list(false, false);
    double x[6] = {0.0};
    int types[2] = {topo::Tc, topo::Tc};
    p.calc_2mol_moment_and_rotate_x_one(2, types, x, x, 0, 2);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "calc_2mol_moment_and_rotate_x_one: pair 0 2 has no moment block; build the neighbor list first\n");
}

}  // namespace
