// 3x3 and vector arithmetic, the rotation builder and anint.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <limits>

#include "txutil.h"

namespace {

void expect_matrix_eq(const double got[3][3], const double want[3][3]) {
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_EQ(got[i][j], want[i][j]) << i << "," << j;
}

void expect_matrix_near(const double got[3][3], const double want[3][3], double tol) {
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_NEAR(got[i][j], want[i][j], tol) << i << "," << j;
}

// Death-test bodies: the fatal report of invert lies on stdout, which the death
// test does not watch, so the child sends stdout to its stderr first.
void invert_in_place_with_stdout_on_stderr() {
  double m[3][3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
  std::fflush(stdout);
  dup2(STDERR_FILENO, STDOUT_FILENO);
  invert(m, m);
}

void invert_matrix_with_stdout_on_stderr(const double m[3][3]) {
  double out[3][3];
  std::fflush(stdout);
  dup2(STDERR_FILENO, STDOUT_FILENO);
  invert(m, out);
}

}  // namespace

TEST(Det, ExpandsAlongTheFirstRow) {
  // 2 (3*0 - 2*0) - 1 (1*0 - 2*1) + 1 (1*0 - 3*1) = 0 + 2 - 3 = -1.
  const double m[3][3] = {{2.0, 1.0, 1.0}, {1.0, 3.0, 2.0}, {1.0, 0.0, 0.0}};
  EXPECT_EQ(det(m), -1.0);
  const double singular[3][3] = {{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {7.0, 8.0, 9.0}};
  EXPECT_EQ(det(singular), 0.0);
  const double diag[3][3] = {{2.0, 0.0, 0.0}, {0.0, 3.0, 0.0}, {0.0, 0.0, 0.5}};
  EXPECT_EQ(det(diag), 3.0);
}

TEST(Invert, MatchesTheHandComputedInverse) {
  // Cofactors by hand give the adjugate [[0,0,-1],[2,-1,-3],[-3,1,5]]; over det -1.
  const double m[3][3] = {{2.0, 1.0, 1.0}, {1.0, 3.0, 2.0}, {1.0, 0.0, 0.0}};
  const double want[3][3] = {{0.0, 0.0, 1.0}, {-2.0, 1.0, 3.0}, {3.0, -1.0, -5.0}};
  double out[3][3];
  invert(m, out);
  expect_matrix_eq(out, want);
}

TEST(Invert, NonIntegerInverse) {
  // [[4,7],[2,6]] has det 10 and inverse [[0.6,-0.7],[-0.2,0.4]]; the third axis 1/10.
  const double m[3][3] = {{4.0, 7.0, 0.0}, {2.0, 6.0, 0.0}, {0.0, 0.0, 10.0}};
  const double want[3][3] = {{0.6, -0.7, 0.0}, {-0.2, 0.4, 0.0}, {0.0, 0.0, 0.1}};
  EXPECT_EQ(det(m), 100.0);
  double out[3][3];
  invert(m, out);
  expect_matrix_near(out, want, 1e-16);
}

TEST(InvertDeathTest, SameArrayForInputAndOutputIsFatal) {
  EXPECT_EXIT(invert_in_place_with_stdout_on_stderr(), ::testing::ExitedWithCode(255),
              "^\nERROR  transport : txutil : line [0-9]+ : \ninvert - Result matrix overlaps input\n$");
}

TEST(InvertDeathTest, ZeroDeterminantIsFatal) {
  const double singular[3][3] = {{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {7.0, 8.0, 9.0}};
  EXPECT_EXIT(invert_matrix_with_stdout_on_stderr(singular), ::testing::ExitedWithCode(255),
              "^\nERROR  transport : txutil : line [0-9]+ : \nDeterminant of matrix is zero.\n$");
  // det 1e-33 lies below the 1e-30 limit.
  const double tiny[3][3] = {{1e-11, 0.0, 0.0}, {0.0, 1e-11, 0.0}, {0.0, 0.0, 1e-11}};
  EXPECT_EXIT(invert_matrix_with_stdout_on_stderr(tiny), ::testing::ExitedWithCode(255),
              "^\nERROR  transport : txutil : line [0-9]+ : \nDeterminant of matrix is zero.\n$");
}

TEST(Transpose, FixedThreeByThreeInPlace) {
  double m[3][3] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
  transpose_matrix(m);
  const double want[3][3] = {{1, 4, 7}, {2, 5, 8}, {3, 6, 9}};
  expect_matrix_eq(m, want);
}

TEST(Transpose, RowPointerMatrixInPlace) {
  double r0[] = {1, 2}, r1[] = {3, 4};
  double* m[] = {r0, r1};
  transpose_matrix(m, 2);
  EXPECT_EQ(r0[1], 3.0);
  EXPECT_EQ(r1[0], 2.0);
  EXPECT_EQ(r0[0], 1.0);
  EXPECT_EQ(r1[1], 4.0);
}

TEST(VectorOps, MagnitudeAndDot) {
  const double v[3] = {2.0, 3.0, 6.0};
  EXPECT_EQ(get_magnitude(v), 7.0);
  const double w[3] = {1.0, -1.0, 0.5};
  EXPECT_EQ(get_dot(v, w), 2.0);
}

TEST(MatVecMul, MultipliesAndAllowsInPlace) {
  const double m[3][3] = {{1, 2, 3}, {0, 1, 0}, {-1, 0, 2}};
  const double in[3] = {1.0, 2.0, 3.0};
  double out[3];
  mat_vec_mul(m, in, out);
  EXPECT_EQ(out[0], 14.0);
  EXPECT_EQ(out[1], 2.0);
  EXPECT_EQ(out[2], 5.0);
  double v[3] = {1.0, 2.0, 3.0};
  mat_vec_mul(m, v, v);
  EXPECT_EQ(v[0], 14.0);
  EXPECT_EQ(v[1], 2.0);
  EXPECT_EQ(v[2], 5.0);
}

TEST(MatVecMulN, BothLayoutsMultiplyEveryVectorAndAllowInPlace) {
  const double m[3][3] = {{0, -1, 0}, {1, 0, 0}, {0, 0, 2}};
  double rows[2][3] = {{1, 0, 0}, {0, 1, 1}};
  mat_vec_mul_n(m, rows, rows, 2);
  EXPECT_EQ(rows[0][0], 0.0);
  EXPECT_EQ(rows[0][1], 1.0);
  EXPECT_EQ(rows[0][2], 0.0);
  EXPECT_EQ(rows[1][0], -1.0);
  EXPECT_EQ(rows[1][1], 0.0);
  EXPECT_EQ(rows[1][2], 2.0);
  double flat[6] = {1, 0, 0, 0, 1, 1};
  double flat_out[6];
  mat_vec_mul_n(m, flat, flat_out, 2);
  mat_vec_mul_n(m, flat, flat, 2);
  const double want[6] = {0, 1, 0, -1, 0, 2};
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(flat_out[i], want[i]);
    EXPECT_EQ(flat[i], want[i]);
  }
}

TEST(MatMatMul, ProductOfThreeByThree) {
  const double a[3][3] = {{1, 2, 0}, {0, 1, 0}, {0, 0, 3}};
  const double b[3][3] = {{1, 0, 1}, {2, 1, 0}, {0, 0, 1}};
  double c[3][3];
  mat_mat_mul(a, b, c);
  const double want[3][3] = {{5, 2, 1}, {2, 1, 0}, {0, 0, 3}};
  expect_matrix_eq(c, want);
}

TEST(MatMatMulNxn, ClearsAndMultipliesRowPointerMatrices) {
  double a0[] = {1, 2}, a1[] = {3, 4};
  double b0[] = {0, 1}, b1[] = {1, 0};
  double c0[] = {9, 9}, c1[] = {9, 9};
  double* a[] = {a0, a1};
  double* b[] = {b0, b1};
  double* c[] = {c0, c1};
  mat_mat_mul_nxn(a, b, c, 2);
  EXPECT_EQ(c0[0], 2.0);
  EXPECT_EQ(c0[1], 1.0);
  EXPECT_EQ(c1[0], 4.0);
  EXPECT_EQ(c1[1], 3.0);
}

TEST(MatMatMulNxn, OrderBelowOneDoesNothing) {
  double c0[] = {9, 9};
  double* c[] = {c0};
  mat_mat_mul_nxn(nullptr, nullptr, c, 0);
  mat_mat_mul_nxn(nullptr, nullptr, c, -3);
  EXPECT_EQ(c0[0], 9.0);
  EXPECT_EQ(c0[1], 9.0);
}

TEST(MatScaleAndAdd, ElementWise) {
  const double a[3][3] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
  double s[3][3];
  mat_scale(a, -0.5, s);
  const double want_s[3][3] = {{-0.5, -1, -1.5}, {-2, -2.5, -3}, {-3.5, -4, -4.5}};
  expect_matrix_eq(s, want_s);
  double c[3][3];
  mat_mat_add(a, s, c);
  const double want_c[3][3] = {{0.5, 1, 1.5}, {2, 2.5, 3}, {3.5, 4, 4.5}};
  expect_matrix_eq(c, want_c);
}

TEST(RotationBuilder, QuarterTurnAboutZ) {
  const double z[3] = {0.0, 0.0, 1.0};
  double r[3][3];
  rot_matrix_from_dir_vector_and_angle(r, z, 90.0);
  const double want[3][3] = {{0, -1, 0}, {1, 0, 0}, {0, 0, 1}};
  // pi is taken as 3.1415926535898, so cos(90 deg) is about 1e-14 off zero.
  expect_matrix_near(r, want, 1e-13);
  EXPECT_EQ(r[2][2], 1.0);
}

TEST(RotationBuilder, ThirdTurnAboutTheBodyDiagonalCyclesTheAxes) {
  const double k = 1.0 / std::sqrt(3.0);
  const double axis[3] = {k, k, k};
  double r[3][3];
  rot_matrix_from_dir_vector_and_angle(r, axis, 120.0);
  // x -> y -> z -> x.
  const double want[3][3] = {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}};
  expect_matrix_near(r, want, 1e-13);
}

TEST(RotationBuilder, AxisIsNotNormalised) {
  const double axis[3] = {0.0, 0.0, 2.0};
  double r[3][3];
  rot_matrix_from_dir_vector_and_angle(r, axis, 90.0);
  // W = 2 Wz, W^2 = 4 diag(-1,-1,0): R = I + 2 Wz - 4 diag(1,1,0) at a quarter turn.
  const double want[3][3] = {{-3, -2, 0}, {2, -3, 0}, {0, 0, 1}};
  expect_matrix_near(r, want, 1e-13);
}

TEST(RotationBuilder, ZeroAngleGivesIdentity) {
  const double axis[3] = {0.3, -0.4, 0.5};
  double r[3][3];
  rot_matrix_from_dir_vector_and_angle(r, axis, 0.0);
  const double want[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  expect_matrix_eq(r, want);
}

TEST(Anint, HalvesRoundAwayFromZero) {
  EXPECT_EQ(anint(2.5), 3.0);
  EXPECT_EQ(anint(-2.5), -3.0);
  EXPECT_EQ(anint(0.0), 0.0);
  EXPECT_EQ(anint(1.49), 1.0);
  EXPECT_EQ(anint(-1.49), -1.0);
  EXPECT_EQ(anint(0.5), 1.0);
  EXPECT_EQ(anint(-0.5), -1.0);
  EXPECT_EQ(anint(2147483646.6), 2147483647.0);
  EXPECT_EQ(anint(-2147483647.6), -2147483648.0);
}

TEST(Anint, OutsideTheIntRangeGivesTheIndefiniteInteger) {
  EXPECT_EQ(anint(3e9), -2147483648.0);
  EXPECT_EQ(anint(-3e9), -2147483648.0);
  EXPECT_EQ(anint(2147483647.5), -2147483648.0);
  EXPECT_EQ(anint(std::numeric_limits<double>::quiet_NaN()), -2147483648.0);
  EXPECT_EQ(anint(std::numeric_limits<double>::infinity()), -2147483648.0);
}
