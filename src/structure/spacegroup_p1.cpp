// FileIO: expansion of the asymmetric unit to the full cell (space group P1)
// and removal of the copies that land on each other.
#include <climits>
#include <cstdio>
#include <string>
#include <vector>

#include "fileio.h"

namespace {

// Copies closer than this, in squared fractional units, are the same atom: a
// distance of 0.01 of the cell edges, whatever the elements.
constexpr double kOverlapFract2 = 0.0001;

void wrap_position(double* x) {
  for (int k = 0; k < 3; ++k) {
    if (x[k] < 0.0) {
      x[k] += 1.0;
    } else if (x[k] >= 1.0) {
      x[k] -= 1.0;
    }
  }
}

void wrap_displacement(double* d) {
  for (int k = 0; k < 3; ++k) {
    if (d[k] > 0.5) {
      d[k] -= 1.0;
    } else if (d[k] < -0.5) {
      d[k] += 1.0;
    }
  }
}

void print_operator_trace(const std::string& op, const double rot[3][3], const double* trans) {
  std::printf(">> operations: %s\n", op.c_str());
  std::printf("matrix:\n");
  for (int r = 0; r < 3; ++r) std::printf("%4g%4g%4g\n", rot[r][0], rot[r][1], rot[r][2]);
  std::printf("vector: \n");
  std::printf("  %g  %g  %g\n", trans[0], trans[1], trans[2]);
  std::printf("-------------------\n");
}

}  // namespace

// The atoms come out operator-major: copy a of operator s sits at
// s * cif_natoms + a. Of overlapping copies the earliest stays. A P1 cell is
// left exactly as read, coordinates outside [0, 1) included.
void FileIO::make_spacegroup_P1(int fractional) {
  sg_trim(spacegroup_name);  // stays trimmed: later readers see "P1", not "'P 1'"
  if (iequals(spacegroup_name, "P1")) return;

  const long long total = static_cast<long long>(symmetry_ops.size()) * cif_natoms;
  if (total > INT_MAX / 3)
    TX_FATAL(txunit::fileio, -1, stderr, "Too many atoms in the full cell: %zu operators times %d atoms\n",
             symmetry_ops.size(), cif_natoms);
  const int n = static_cast<int>(total);

  int* atypes = new int[n];
  double* radii = new double[n];
  double* x_s = new double[3 * static_cast<size_t>(n)];
  double* x = new double[3 * static_cast<size_t>(n)];

  for (size_t s = 0; s < symmetry_ops.size(); ++s) {
    double rot[3][3] = {{0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}};
    double trans[3] = {0.0, 0.0, 0.0};
    ParseTransformString(symmetry_ops[s], rot, trans);
    if (debug_level) print_operator_trace(symmetry_ops[s], rot, trans);

    for (int a = 0; a < cif_natoms; ++a) {
      const size_t m = s * static_cast<size_t>(cif_natoms) + a;
      atypes[m] = cif_atypes[a];
      radii[m] = cif_radii[a];
      const double* src = fractional ? &cif_x_s[3 * a] : &cif_x[3 * a];
      double p[3];
      for (int r = 0; r < 3; ++r) p[r] = rot[r][0] * src[0] + rot[r][1] * src[1] + rot[r][2] * src[2] + trans[r];
      wrap_position(p);
      // The image goes where its source came from, and the other array is
      // derived, so that neither holds unset values. The Cartesian way
      // (fractional == 0) is not reached from a file.
      if (fractional) {
        for (int k = 0; k < 3; ++k) x_s[3 * m + k] = p[k];
        coord_f2c(&x_s[3 * m], &x[3 * m]);
      } else {
        for (int k = 0; k < 3; ++k) x[3 * m + k] = p[k];
        coord_c2f(&x[3 * m], &x_s[3 * m]);
      }
    }
  }

  // Overlap search on the fractional copies; quadratic in the full cell.
  std::vector<char> overlapped(n, 0);
  int noverlapped = 0;
  for (int i = 0; i < n; ++i) {
    if (overlapped[i]) continue;
    const double* xi = &x_s[3 * static_cast<size_t>(i)];
    for (int j = i + 1; j < n; ++j) {
      if (overlapped[j]) continue;
      const double* xj = &x_s[3 * static_cast<size_t>(j)];
      double d[3] = {xj[0] - xi[0], xj[1] - xi[1], xj[2] - xi[2]};
      wrap_displacement(d);
      if (d[0] * d[0] + d[1] * d[1] + d[2] * d[2] < kOverlapFract2) {
        overlapped[j] = 1;
        ++noverlapped;
        if (debug_level)
          std::printf(" overlapped atoms: %3d %.4f %.4f %.4f  |  %3d %.4f %.4f %.4f\n", i, xi[0], xi[1], xi[2], j,
                      xj[0], xj[1], xj[2]);
      }
    }
  }

  int nkept = n;
  if (noverlapped > 0) {
    std::printf("WARNING: Overlapped atoms detected and to be removed\n");
    std::printf("         Number of overlapped atoms is %d\n", noverlapped);
    std::printf("         Number of remaining atoms is %d\n", n - noverlapped);
    // Keep the unflagged copies in order, at the front of the full-size arrays.
    nkept = 0;
    for (int m = 0; m < n; ++m) {
      if (overlapped[m]) continue;
      atypes[nkept] = atypes[m];
      radii[nkept] = radii[m];
      for (int k = 0; k < 3; ++k) {
        x_s[3 * static_cast<size_t>(nkept) + k] = x_s[3 * static_cast<size_t>(m) + k];
        x[3 * static_cast<size_t>(nkept) + k] = x[3 * static_cast<size_t>(m) + k];
      }
      ++nkept;
    }
  }

  release_crystal_arrays();
  cif_atypes = atypes;
  cif_radii = radii;
  cif_x_s = x_s;
  cif_x = x;
  cif_natoms = nkept;
}
