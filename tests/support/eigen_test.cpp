// The Jacobi eigensolver and the descending eigenvalue sort.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "test_support.h"
#include "txutil.h"

namespace {

double column_dot(const double v[3][3], int col, const double* w) {
  return v[0][col] * w[0] + v[1][col] * w[1] + v[2][col] * w[2];
}

}  // namespace

// The second-difference matrix tridiag(-1, 2, -1) of order 3 has eigenvalues
// 2 - sqrt2, 2, 2 + sqrt2 with eigenvectors (1, sqrt2, 1)/2, (1, 0, -1)/sqrt2 and
// (1, -sqrt2, 1)/2 (worked out by hand from the characteristic polynomial).
TEST(JacobiNr, FindsEigenpairsOfTheSecondDifferenceMatrix) {
  double a[3][3] = {{2.0, -1.0, 0.0}, {-1.0, 2.0, -1.0}, {0.0, -1.0, 2.0}};
  double d[3], v[3][3];
  int nrot = -1;
  jacobi_nr(a, 3, d, v, &nrot);
  EXPECT_GT(nrot, 0);
  eigsrt_nr(d, v, 3);
  const double r2 = std::sqrt(2.0);
  EXPECT_NEAR(d[0], 2.0 + r2, 1e-14);
  EXPECT_NEAR(d[1], 2.0, 1e-14);
  EXPECT_NEAR(d[2], 2.0 - r2, 1e-14);
  const double e0[3] = {0.5, -r2 / 2, 0.5};
  const double e1[3] = {1 / r2, 0.0, -1 / r2};
  const double e2[3] = {0.5, r2 / 2, 0.5};
  // Eigenvectors are fixed up to sign.
  EXPECT_NEAR(std::fabs(column_dot(v, 0, e0)), 1.0, 1e-14);
  EXPECT_NEAR(std::fabs(column_dot(v, 1, e1)), 1.0, 1e-14);
  EXPECT_NEAR(std::fabs(column_dot(v, 2, e2)), 1.0, 1e-14);
}

// Block matrix: [[2,1],[1,2]] has 1 with (1,-1)/sqrt2 and 3 with (1,1)/sqrt2; the
// third axis is already an eigenvector with 5. One rotation clears the block.
TEST(JacobiNr, BlockMatrixNeedsOneRotation) {
  double a[3][3] = {{2.0, 1.0, 0.0}, {1.0, 2.0, 0.0}, {0.0, 0.0, 5.0}};
  double d[3], v[3][3];
  int nrot = 0;
  jacobi_nr(a, 3, d, v, nrot);
  EXPECT_EQ(nrot, 1);
  EXPECT_NEAR(d[0], 1.0, 1e-15);
  EXPECT_NEAR(d[1], 3.0, 1e-15);
  EXPECT_EQ(d[2], 5.0);
  const double s = 1 / std::sqrt(2.0);
  const double e0[3] = {s, -s, 0.0};
  const double e1[3] = {s, s, 0.0};
  const double e2[3] = {0.0, 0.0, 1.0};
  EXPECT_NEAR(std::fabs(column_dot(v, 0, e0)), 1.0, 1e-15);
  EXPECT_NEAR(std::fabs(column_dot(v, 1, e1)), 1.0, 1e-15);
  EXPECT_EQ(column_dot(v, 2, e2), 1.0);
}

TEST(JacobiNr, KeepsDiagonalAndLowerTriangleAndClearsTheUpperOne) {
  const double in[3][3] = {{4.0, 1.0, -2.0}, {1.0, 3.0, 0.5}, {-2.0, 0.5, 6.0}};
  double a[3][3];
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) a[i][j] = in[i][j];
  double d[3], v[3][3];
  int nrot = 0;
  jacobi_nr(a, 3, d, v, &nrot);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) {
      if (j <= i)
        EXPECT_EQ(a[i][j], in[i][j]) << i << "," << j;
      else
        EXPECT_EQ(a[i][j], 0.0) << i << "," << j;
    }
  // A v_k = d_k v_k and V orthonormal.
  for (int k = 0; k < 3; ++k) {
    for (int i = 0; i < 3; ++i) {
      const double av = in[i][0] * v[0][k] + in[i][1] * v[1][k] + in[i][2] * v[2][k];
      EXPECT_NEAR(av, d[k] * v[i][k], 1e-13);
    }
    for (int l = 0; l < 3; ++l) {
      const double dot = v[0][k] * v[0][l] + v[1][k] * v[1][l] + v[2][k] * v[2][l];
      EXPECT_NEAR(dot, k == l ? 1.0 : 0.0, 1e-14);
    }
  }
  EXPECT_NEAR(d[0] + d[1] + d[2], 13.0, 1e-13);
}

TEST(JacobiNr, DiagonalMatrixReturnsInTheFirstSweepWithoutRotations) {
  double a[3][3] = {{3.0, 0.0, 0.0}, {0.0, -1.0, 0.0}, {0.0, 0.0, 7.5}};
  double d[3], v[3][3];
  int nrot = 99;
  const std::string out = txtest::capture_stdout([&] { jacobi_nr(a, 3, d, v, &nrot); });
  EXPECT_EQ(out, "");
  EXPECT_EQ(nrot, 0);
  EXPECT_EQ(d[0], 3.0);
  EXPECT_EQ(d[1], -1.0);
  EXPECT_EQ(d[2], 7.5);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_EQ(v[i][j], i == j ? 1.0 : 0.0);
}

TEST(JacobiNr, NonConvergenceIsReportedOnStdoutAndTheCallReturns) {
  // A NaN off-diagonal never sums to zero and never passes a threshold, so all 50
  // sweeps run without a rotation.
  const double nan = std::numeric_limits<double>::quiet_NaN();
  double a[3][3] = {{1.0, nan, 0.0}, {nan, 2.0, 0.0}, {0.0, 0.0, 3.0}};
  double d[3], v[3][3];
  int nrot = 5;
  const std::string out = txtest::capture_stdout([&] { jacobi_nr(a, 3, d, v, &nrot); });
  EXPECT_EQ(out, "ERROR: Too many iterations in routine jacobi\n");
  EXPECT_EQ(nrot, 0);
  EXPECT_EQ(d[0], 1.0);
  EXPECT_EQ(d[1], 2.0);
  EXPECT_EQ(d[2], 3.0);
}

TEST(JacobiNr, SmallerOrderUsesTheLeadingBlock) {
  double a[3][3] = {{2.0, 1.0, 9.0}, {1.0, 2.0, 9.0}, {9.0, 9.0, 9.0}};
  double d[3] = {0.0, 0.0, -4.0};
  double v[3][3] = {{0.0, 0.0, 8.0}, {0.0, 0.0, 8.0}, {8.0, 8.0, 8.0}};
  int nrot = 0;
  jacobi_nr(a, 2, d, v, &nrot);
  EXPECT_NEAR(d[0], 1.0, 1e-15);
  EXPECT_NEAR(d[1], 3.0, 1e-15);
  EXPECT_EQ(d[2], -4.0);
  EXPECT_EQ(v[2][2], 8.0);
  EXPECT_EQ(a[0][2], 9.0);
}

TEST(JacobiNrDeathTest, OrderAboveThreeIsRefused) {
  double a[3][3] = {};
  double d[3], v[3][3];
  int nrot = 0;
  EXPECT_EXIT(jacobi_nr(a, 4, d, v, &nrot), ::testing::ExitedWithCode(255),
              "^jacobi_nr - matrix order 4 exceeds 3\n$");
  EXPECT_EXIT(eigsrt_nr(d, v, 4), ::testing::ExitedWithCode(255), "^eigsrt_nr - matrix order 4 exceeds 3\n$");
}

TEST(EigsrtNr, SortsDescendingAndSwapsColumnsAlong) {
  double d[3] = {1.0, 3.0, 2.0};
  double v[3][3] = {{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {7.0, 8.0, 9.0}};
  eigsrt_nr(d, v, 3);
  EXPECT_EQ(d[0], 3.0);
  EXPECT_EQ(d[1], 2.0);
  EXPECT_EQ(d[2], 1.0);
  // Columns were (c0, c1, c2); now (c1, c2, c0).
  const double want[3][3] = {{2.0, 3.0, 1.0}, {5.0, 6.0, 4.0}, {8.0, 9.0, 7.0}};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_EQ(v[i][j], want[i][j]);
}

TEST(EigsrtNr, EqualEigenvaluesSwapInTheLaterOneFirst) {
  double d[3] = {1.0, 2.0, 2.0};
  double v[3][3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
  eigsrt_nr(d, v, 3);
  EXPECT_EQ(d[0], 2.0);
  EXPECT_EQ(d[1], 2.0);
  EXPECT_EQ(d[2], 1.0);
  // Slot 0 takes the later 2 (column 2); slot 1 keeps column 1; column 0 ends last.
  const double want[3][3] = {{0.0, 0.0, 1.0}, {0.0, 1.0, 0.0}, {1.0, 0.0, 0.0}};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_EQ(v[i][j], want[i][j]) << i << "," << j;
}

TEST(EigsrtNr, TwoEqualValuesStillSwapTheirColumns) {
  double d[3] = {5.0, 5.0, 0.0};
  double v[3][3] = {{1.0, 2.0, 0.0}, {3.0, 4.0, 0.0}, {0.0, 0.0, 0.0}};
  eigsrt_nr(d, v, 2);
  EXPECT_EQ(v[0][0], 2.0);
  EXPECT_EQ(v[0][1], 1.0);
  EXPECT_EQ(v[1][0], 4.0);
  EXPECT_EQ(v[1][1], 3.0);
}

TEST(EigsrtNr, NullVectorsSortOnlyTheValues) {
  double d[3] = {-1.0, 4.0, 0.5};
  eigsrt_nr(d, nullptr, 3);
  EXPECT_EQ(d[0], 4.0);
  EXPECT_EQ(d[1], 0.5);
  EXPECT_EQ(d[2], -1.0);
}
