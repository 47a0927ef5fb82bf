// Least-squares line and classical fourth-order Runge-Kutta steps.
#include <cmath>
#include <cstdio>
#include <memory>
#include <vector>

#include "txutil.h"

int LinearRegression(const double* x, const double* y, int n, double* a, double* b, double* s) {
  *a = 0.0;
  *b = 0.0;
  *s = 0.0;
  if (n < 3) {
    std::fprintf(stderr, "Not enough data [%d] (at least n > 2)!\n", n);
    return -1;
  }
  double sx = 0.0, sy = 0.0, sxx = 0.0, sxy = 0.0, syy = 0.0;
  for (int i = 0; i < n; ++i) {
    sx += x[i];
    sy += y[i];
    sxx += x[i] * x[i];
    sxy += x[i] * y[i];
    syy += y[i] * y[i];
  }
  const double dn = n;
  const double d = dn * sxx - sx * sx;
  // A vertical (or single-x) data set has no slope; the fit then reports zeros
  // and still succeeds.
  if (std::fabs(d) > 1.11022302e-16) {
    *b = (dn * sxy - sx * sy) / d;
    *a = (sy - *b * sx) / dn;
    // Rounding can make the radicand slightly negative for exact data; s is NaN then.
    *s = std::sqrt(((syy - sy * sy / dn) - *b * (sxy - sx * sy / dn)) / (dn - 2));
  }
  return 0;
}

double rk4_one(double t, double u, double dt, double (*f)(double, double)) {
  const double k1 = f(t, u);
  const double k2 = f(t + dt / 2, u + dt * k1 / 2);
  const double k3 = f(t + dt / 2, u + dt * k2 / 2);
  const double k4 = f(t + dt, u + dt * k3);
  return u + dt * (k1 + 2 * k2 + 2 * k3 + k4) / 6;
}

// f hands over a new[] array each call; rk4_vec releases them. The result is a
// new[] array of m doubles owned by the caller. A negative count is taken as 0.
double* rk4_vec(double t, int m, const double* u, double dt, double* (*f)(double, int, const double*)) {
  const int len = m > 0 ? m : 0;
  std::vector<double> tmp(len);
  std::unique_ptr<double[]> k1(f(t, len, u));
  for (int i = 0; i < len; ++i) tmp[i] = u[i] + dt * k1[i] / 2;
  std::unique_ptr<double[]> k2(f(t + dt / 2, len, tmp.data()));
  for (int i = 0; i < len; ++i) tmp[i] = u[i] + dt * k2[i] / 2;
  std::unique_ptr<double[]> k3(f(t + dt / 2, len, tmp.data()));
  for (int i = 0; i < len; ++i) tmp[i] = u[i] + dt * k3[i];
  std::unique_ptr<double[]> k4(f(t + dt, len, tmp.data()));
  double* result = new double[len];
  for (int i = 0; i < len; ++i) result[i] = u[i] + dt * (k1[i] + 2 * k2[i] + 2 * k3[i] + k4[i]) / 6;
  return result;
}
