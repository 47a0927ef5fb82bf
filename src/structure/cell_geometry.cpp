// FileIO: cell parameters <-> lattice matrix, fractional <-> Cartesian
// coordinates, and the one-step periodic wraps.
#include <cmath>
#include <cstdio>

#include "fileio.h"

namespace {

// Degrees to radians on the way in uses this shortened pi on purpose: lattice
// matrices, and every coordinate derived from them, depend on its last digits
// (a right angle leaves off-diagonal terms near 1e-14 rather than zero).
constexpr double kPiCellToMatrix = 3.1415926535898;
// The way back uses the full double value.
constexpr double kPiMatrixToCell = 3.141592653589793;

// Inverse by Gauss-Jordan elimination without pivoting, starting from the
// identity. A zero pivot is not an error: it yields infinities and NaNs.
void invert_gauss_jordan_3x3(const double m[3][3], double inv[3][3]) {
  double a[3][3];
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      a[i][j] = m[i][j];
      inv[i][j] = i == j ? 1.0 : 0.0;
    }
  }
  for (int p = 0; p < 3; ++p) {
    const double pivot = a[p][p];
    for (int j = 0; j < 3; ++j) {
      a[p][j] /= pivot;
      inv[p][j] /= pivot;
    }
    for (int r = 0; r < 3; ++r) {
      if (r == p) continue;
      const double factor = a[r][p];
      for (int j = 0; j < 3; ++j) {
        a[r][j] -= factor * a[p][j];
        inv[r][j] -= factor * inv[p][j];
      }
    }
  }
}

double column_length(const double m[3][3], int k) {
  return std::sqrt(m[0][k] * m[0][k] + m[1][k] * m[1][k] + m[2][k] * m[2][k]);
}

double column_dot(const double m[3][3], int k, int l) {
  return m[0][k] * m[0][l] + m[1][k] * m[1][l] + m[2][k] * m[2][l];
}

}  // namespace

// a along x, b in the xy plane: the matrix is upper triangular. An impossible
// set of angles makes the radicand negative and the last element NaN; that is
// left to show in the coordinates rather than reported.
void FileIO::convert_cell6_to_latt3x3(const double* cell6, double latt[3][3]) {
  const double a = cell6[0];
  const double b = cell6[1];
  const double c = cell6[2];
  const double alpha = cell6[3] * kPiCellToMatrix / 180.0;
  const double beta = cell6[4] * kPiCellToMatrix / 180.0;
  const double gamma = cell6[5] * kPiCellToMatrix / 180.0;
  const double ca = std::cos(alpha);
  const double cb = std::cos(beta);
  const double cg = std::cos(gamma);
  const double sg = std::sin(gamma);

  // Built apart first: `latt` may be latt_f2c itself, and cell6 may be cell_latt.
  double m[3][3];
  m[0][0] = a;
  m[0][1] = b * cg;
  m[0][2] = c * cb;
  m[1][0] = 0.0;
  m[1][1] = b * sg;
  m[1][2] = (ca - cb * cg) * c / sg;
  m[2][0] = 0.0;
  m[2][1] = 0.0;
  m[2][2] = (c / sg) * std::sqrt(1.0 - ca * ca - cb * cb - cg * cg + 2.0 * ca * cb * cg);

  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      latt[i][j] = m[i][j];
      latt_f2c[i][j] = m[i][j];
    }
  }
  invert_gauss_jordan_3x3(m, latt_c2f);
}

// Deliberately reads the object's latt_f2c and never `latt`: the readers that
// fill latt_f2c element by element then ask here for the cell of it.
void FileIO::convert_latt3x3_to_cell6(const double latt[3][3], double* cell6) {
  (void)latt;
  const double a = column_length(latt_f2c, 0);
  const double b = column_length(latt_f2c, 1);
  const double c = column_length(latt_f2c, 2);
  cell6[0] = a;
  cell6[1] = b;
  cell6[2] = c;
  cell6[3] = std::acos(column_dot(latt_f2c, 1, 2) / (b * c)) * 180.0 / kPiMatrixToCell;
  cell6[4] = std::acos(column_dot(latt_f2c, 0, 2) / (a * c)) * 180.0 / kPiMatrixToCell;
  cell6[5] = std::acos(column_dot(latt_f2c, 0, 1) / (a * b)) * 180.0 / kPiMatrixToCell;
}

// Only the six numbers: the matrices are rebuilt by whoever needs them.
void FileIO::set_cell_lattice(const double* abc, double alpha, double beta, double gamma) {
  cell_latt[0] = abc[0];
  cell_latt[1] = abc[1];
  cell_latt[2] = abc[2];
  cell_latt[3] = alpha;
  cell_latt[4] = beta;
  cell_latt[5] = gamma;
}

void FileIO::coord_f2c(double& x, double& y, double& z) {
  const double in[3] = {x, y, z};
  double out[3];
  coord_f2c(in, out);
  x = out[0];
  y = out[1];
  z = out[2];
}

// `in` and `out` may be the same array.
void FileIO::coord_f2c(const double* in, double* out) {
  double r[3];
  for (int i = 0; i < 3; ++i) r[i] = latt_f2c[i][0] * in[0] + latt_f2c[i][1] * in[1] + latt_f2c[i][2] * in[2];
  out[0] = r[0];
  out[1] = r[1];
  out[2] = r[2];
}

void FileIO::coord_c2f(double& x, double& y, double& z) {
  const double in[3] = {x, y, z};
  double out[3];
  coord_c2f(in, out);
  x = out[0];
  y = out[1];
  z = out[2];
}

// `in` and `out` may be the same array.
void FileIO::coord_c2f(const double* in, double* out) {
  double r[3];
  for (int i = 0; i < 3; ++i) r[i] = latt_c2f[i][0] * in[0] + latt_c2f[i][1] * in[1] + latt_c2f[i][2] * in[2];
  out[0] = r[0];
  out[1] = r[1];
  out[2] = r[2];
}

// One step towards [0, 1), no loop: callers pass positions at most one cell
// away, and -1.5 stays outside as -0.5 by design.
void FileIO::PBC_scaled_x_wrap(double* x) {
  for (int k = 0; k < 3; ++k) {
    if (x[k] < 0.0) {
      x[k] += 1.0;
    } else if (x[k] >= 1.0) {
      x[k] -= 1.0;
    }
  }
}

// One step towards [-0.5, 0.5], no loop; both ends stay as they are, so a
// displacement of exactly half a cell keeps its sign.
void FileIO::PBC_scaled_disp_wrap(double* dx) {
  for (int k = 0; k < 3; ++k) {
    if (dx[k] > 0.5) {
      dx[k] -= 1.0;
    } else if (dx[k] < -0.5) {
      dx[k] += 1.0;
    }
  }
}

void FileIO::print_cell_latt() {
  std::printf("  Cell lattice a = %g\n", cell_latt[0]);
  std::printf("  Cell lattice b = %g\n", cell_latt[1]);
  std::printf("  Cell lattice c = %g\n", cell_latt[2]);
  std::printf("  Cell lattice alpha = %g\n", cell_latt[3]);
  std::printf("  Cell lattice beta  = %g\n", cell_latt[4]);
  std::printf("  Cell lattice gamma = %g\n", cell_latt[5]);
}
