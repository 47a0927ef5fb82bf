// 3x3 and 3-vector arithmetic on row-major arrays of doubles, the rotation
// builder, and anint.
#include <cmath>
#include <cstdio>

#include "txutil.h"

double det(const double m[3][3]) {
  return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) - m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
         m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
}

void transpose_matrix(double m[3][3]) {
  for (int i = 0; i < 3; ++i)
    for (int j = i + 1; j < 3; ++j) swap_dbl(&m[i][j], &m[j][i]);
}

void transpose_matrix(double** m, int n) {
  for (int i = 0; i < n; ++i)
    for (int j = i + 1; j < n; ++j) swap_dbl(&m[i][j], &m[j][i]);
}

// Both fatal messages go to standard output, after the position line.
void invert(const double m[3][3], double out[3][3]) {
  if (static_cast<const void*>(m) == static_cast<const void*>(out))
    TX_FATAL(txunit::txutil, -1, stdout, "%s - Result matrix overlaps input\n", "invert");
  const double dm = det(m);
  if (std::fabs(dm) < 1e-30) TX_FATAL(txunit::txutil, -1, stdout, "Determinant of matrix is zero.\n");
  out[0][0] = (m[1][1] * m[2][2] - m[1][2] * m[2][1]) / dm;
  out[0][1] = (m[0][2] * m[2][1] - m[0][1] * m[2][2]) / dm;
  out[0][2] = (m[0][1] * m[1][2] - m[0][2] * m[1][1]) / dm;
  out[1][0] = (m[1][2] * m[2][0] - m[1][0] * m[2][2]) / dm;
  out[1][1] = (m[0][0] * m[2][2] - m[0][2] * m[2][0]) / dm;
  out[1][2] = (m[0][2] * m[1][0] - m[0][0] * m[1][2]) / dm;
  out[2][0] = (m[1][0] * m[2][1] - m[1][1] * m[2][0]) / dm;
  out[2][1] = (m[0][1] * m[2][0] - m[0][0] * m[2][1]) / dm;
  out[2][2] = (m[0][0] * m[1][1] - m[0][1] * m[1][0]) / dm;
}

double get_magnitude(const double* v) { return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]); }

double get_dot(const double* a, const double* b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

// `in` and `out` may be the same vector, hence the temporaries.
void mat_vec_mul(const double m[3][3], const double* in, double* out) {
  const double x = in[0];
  const double y = in[1];
  const double z = in[2];
  out[0] = m[0][0] * x + m[0][1] * y + m[0][2] * z;
  out[1] = m[1][0] * x + m[1][1] * y + m[1][2] * z;
  out[2] = m[2][0] * x + m[2][1] * y + m[2][2] * z;
}

void mat_vec_mul_n(const double m[3][3], const double in[][3], double out[][3], int n) {
  for (int i = 0; i < n; ++i) mat_vec_mul(m, in[i], out[i]);
}

void mat_vec_mul_n(const double m[3][3], const double* in, double* out, int n) {
  for (int i = 0; i < n; ++i) mat_vec_mul(m, in + 3 * i, out + 3 * i);
}

void mat_mat_mul(const double a[3][3], const double b[3][3], double c[3][3]) {
  // Built aside first so that c may be a or b.
  double r[3][3];
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) r[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) c[i][j] = r[i][j];
}

void mat_mat_mul_nxn(double** a, double** b, double** c, int n) {
  if (n < 1) return;
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) c[i][j] = 0.0;
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j)
      for (int k = 0; k < n; ++k) c[i][j] += a[i][k] * b[k][j];
}

void mat_scale(const double m[3][3], double s, double out[3][3]) {
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) out[i][j] = s * m[i][j];
}

void mat_mat_add(const double a[3][3], const double b[3][3], double c[3][3]) {
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) c[i][j] = a[i][j] + b[i][j];
}

// R = I + sin(theta) W + (1 - cos(theta)) W^2 with W the skew matrix of the axis.
// The axis is used as given; a unit vector is the caller's duty.
void rot_matrix_from_dir_vector_and_angle(double r[3][3], const double* axis, double degrees) {
  const double theta = degrees * 3.1415926535898 / 180.0;
  const double w[3][3] = {{0.0, -axis[2], axis[1]}, {axis[2], 0.0, -axis[0]}, {-axis[1], axis[0], 0.0}};
  double w2[3][3];
  mat_mat_mul(w, w, w2);
  const double s = std::sin(theta);
  const double c1 = 1.0 - std::cos(theta);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) r[i][j] = ((i == j ? 1.0 : 0.0) + s * w[i][j]) + c1 * w2[i][j];
}

// Halves away from zero through a 32-bit truncation. Outside the int range (and
// for NaN) the truncation has no value of its own; we return what the x86
// conversion gives there, INT_MIN, so results match the established builds.
double anint(double x) {
  const double t = x > 0.0 ? x + 0.5 : x - 0.5;
  if (!(t > -2147483649.0 && t < 2147483648.0)) return -2147483648.0;
  return static_cast<double>(static_cast<int>(t));
}
