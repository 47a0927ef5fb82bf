// Least-squares line and the Runge-Kutta steps.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "txutil.h"

namespace {

double grow(double, double u) { return u; }
double ramp(double t, double) { return t; }

int g_calls = 0;
// u0' = u0, u1' = t; a fresh new[] array each call, as rk4_vec expects.
double* grow_and_ramp(double t, int m, const double* u) {
  ++g_calls;
  double* du = new double[m];
  du[0] = u[0];
  du[1] = t;
  return du;
}

}  // namespace

TEST(LinearRegression, ExactLineGivesItsCoefficientsAndZeroError) {
  // y = 1 + 2x: Sx 6, Sy 16, Sxx 14, Sxy 34, Syy 84, D = 4*14 - 36 = 20,
  // b = (136 - 96)/20 = 2, a = (16 - 12)/4 = 1, radicand (84 - 64) - 2 (34 - 24) = 0.
  const double x[] = {0.0, 1.0, 2.0, 3.0};
  const double y[] = {1.0, 3.0, 5.0, 7.0};
  double a = -9, b = -9, s = -9;
  EXPECT_EQ(LinearRegression(x, y, 4, &a, &b, &s), 0);
  EXPECT_EQ(a, 1.0);
  EXPECT_EQ(b, 2.0);
  EXPECT_EQ(s, 0.0);
}

TEST(LinearRegression, ScatteredPointsGiveTheResidualStandardError) {
  // x 0 1 2, y 0 1 1: D = 15 - 9 = 6, b = (9 - 6)/6 = 1/2, a = (2 - 3/2)/3 = 1/6,
  // radicand (2 - 4/3) - (3 - 2)/2 = 1/6 over n - 2 = 1, s = sqrt(1/6).
  const double x[] = {0.0, 1.0, 2.0};
  const double y[] = {0.0, 1.0, 1.0};
  double a, b, s;
  EXPECT_EQ(LinearRegression(x, y, 3, &a, &b, &s), 0);
  EXPECT_DOUBLE_EQ(b, 0.5);
  EXPECT_DOUBLE_EQ(a, 1.0 / 6.0);
  EXPECT_NEAR(s, std::sqrt(1.0 / 6.0), 1e-15);
}

TEST(LinearRegression, SingleAbscissaGivesZerosAndStillSucceeds) {
  const double x[] = {2.0, 2.0, 2.0};
  const double y[] = {1.0, 5.0, 3.0};
  double a = 7, b = 7, s = 7;
  EXPECT_EQ(LinearRegression(x, y, 3, &a, &b, &s), 0);
  EXPECT_EQ(a, 0.0);
  EXPECT_EQ(b, 0.0);
  EXPECT_EQ(s, 0.0);
}

TEST(LinearRegression, FewerThanThreePointsIsRefusedOnStderr) {
  const double x[] = {0.0, 1.0};
  const double y[] = {1.0, 2.0};
  double a = 7, b = 7, s = 7;
  testing::internal::CaptureStderr();
  const int rc = LinearRegression(x, y, 2, &a, &b, &s);
  const std::string err = testing::internal::GetCapturedStderr();
  EXPECT_EQ(rc, -1);
  EXPECT_EQ(err, "Not enough data [2] (at least n > 2)!\n");
  EXPECT_EQ(a, 0.0);
  EXPECT_EQ(b, 0.0);
  EXPECT_EQ(s, 0.0);
  testing::internal::CaptureStderr();
  EXPECT_EQ(LinearRegression(x, y, 0, &a, &b, &s), -1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Not enough data [0] (at least n > 2)!\n");
}

TEST(Rk4One, ExponentialGrowthStep) {
  // k1 = 1, k2 = 1.05, k3 = 1.0525, k4 = 1.10525: 1 + 0.1 * 6.31025 / 6, which is the
  // Taylor series of e^0.1 to fourth order, 1.10517083333...
  const double u = rk4_one(0.0, 1.0, 0.1, grow);
  EXPECT_NEAR(u, 1.0 + 0.1 + 0.005 + 0.1 * 0.1 * 0.1 / 6 + 0.1 * 0.1 * 0.1 * 0.1 / 24, 1e-15);
  EXPECT_NEAR(u, std::exp(0.1), 1e-7);
}

TEST(Rk4One, TimeDependentRightSideIntegratesExactly) {
  // u' = t from t = 1: the step is dt (1 + 4 (1 + dt/2) + (1 + dt)) / 6 = dt + dt^2/2.
  EXPECT_NEAR(rk4_one(1.0, 0.0, 0.5, ramp), 0.625, 1e-15);
}

TEST(Rk4Vec, StepsEveryComponentAndReleasesIntermediates) {
  const double u[2] = {1.0, 3.0};
  g_calls = 0;
  double* next = rk4_vec(0.0, 2, u, 0.1, grow_and_ramp);
  EXPECT_EQ(g_calls, 4);
  EXPECT_EQ(next[0], rk4_one(0.0, 1.0, 0.1, grow));
  EXPECT_NEAR(next[1], 3.0 + 0.005, 1e-15);
  EXPECT_EQ(u[0], 1.0);
  EXPECT_EQ(u[1], 3.0);
  delete[] next;  // owned by the caller; AddressSanitizer checks the rest
}
