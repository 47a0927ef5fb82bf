// Transport: moment tensors and the rotation of a molecule or a pair onto its
// principal axes, which gives a pose independent of the crystal frame.
#include <vector>

#include "transport.h"

namespace {

// Mass-weighted mean of n atoms (3 coordinates each); the origin for no mass.
void mass_centre(int n, const double* x, const double* mass, double centre[3]) {
  double total = 0.0;
  double sum[3] = {0.0, 0.0, 0.0};
  for (int a = 0; a < n; ++a) {
    total += mass[a];
    for (int k = 0; k < 3; ++k) sum[k] += mass[a] * x[3 * a + k];
  }
  for (int k = 0; k < 3; ++k) centre[k] = total != 0.0 ? sum[k] / total : 0.0;
}

}  // namespace

// The off-diagonal elements carry a positive sign, not the minus of the textbook
// tensor. The principal axes of the engine, and so the pair classes and the
// molecular frames written for the overlap tool, rest on this matrix: keep it.
void Transport::calc_moment_of_inertia(int n, double* x, double* mass, double I[3][3]) {
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) I[r][c] = 0.0;
  if (n < 1) return;
  double centre[3];
  mass_centre(n, x, mass, centre);
  for (int a = 0; a < n; ++a) {
    const double m = mass[a];
    const double dx = x[3 * a] - centre[0];
    const double dy = x[3 * a + 1] - centre[1];
    const double dz = x[3 * a + 2] - centre[2];
    I[0][0] += m * (dy * dy + dz * dz);
    I[1][1] += m * (dz * dz + dx * dx);
    I[2][2] += m * (dx * dx + dy * dy);
    I[0][1] += m * dx * dy;
    I[0][2] += m * dx * dz;
    I[1][2] += m * dy * dz;
  }
  I[1][0] = I[0][1];
  I[2][0] = I[0][2];
  I[2][1] = I[1][2];
}

namespace {

// Tensor per atom, its eigenpairs in the order jacobi_nr leaves them (unsorted),
// the axes by columns into eigvec, and x_out = V^T (x_in - centre) atom by atom;
// x_in and x_out may be the same array.
void principal_frame(Transport& t, int n, const int* types, const double* x_in, double* x_out, double* eigval,
                     double* eigvec) {
  std::vector<double> mass(n > 0 ? n : 0);
  for (int a = 0; a < n; ++a) mass[a] = t.find_element_mass_from_index(types[a]);
  double I[3][3];
  t.calc_moment_of_inertia(n, const_cast<double*>(x_in), mass.data(), I);
  if (n > 0)
    for (int r = 0; r < 3; ++r)
      for (int c = 0; c < 3; ++c) I[r][c] /= n;
  double e[3], V[3][3];
  int nrot = 0;
  jacobi_nr(I, 3, e, V, &nrot);
  for (int k = 0; k < 3; ++k) eigval[k] = e[k];
  for (int c = 0; c < 3; ++c)
    for (int r = 0; r < 3; ++r) eigvec[3 * c + r] = V[r][c];
  double centre[3];
  mass_centre(n, x_in, mass.data(), centre);
  transpose_matrix(V);
  for (int a = 0; a < n; ++a)
    for (int k = 0; k < 3; ++k) x_out[3 * a + k] = x_in[3 * a + k] - centre[k];
  mat_vec_mul_n(V, x_out, x_out, n);
}

}  // namespace

void Transport::calc_uc_mol_moment_and_rotate_x_one(int n, int* types, double* x_in, double* x_out, int i) {
  if (uc_mol_eigval == nullptr || uc_mol_eigvec == nullptr || i < 0 || i >= eigval_rows_allocated ||
      i >= pair_rows_allocated)
    TX_FATAL(txunit::transport, 1, stderr,
             "calc_uc_mol_moment_and_rotate_x_one: molecule %d has no moment block; build the neighbor list first\n",
             i);
  principal_frame(*this, n, types, x_in, x_out, uc_mol_eigval[i], uc_mol_eigvec[i]);
}

void Transport::calc_2mol_moment_and_rotate_x_one(int n, int* types, double* x_in, double* x_out, int i, int j) {
  if (pair_eigval == nullptr || pair_eigvec == nullptr || i < 0 || i >= pair_rows_allocated || j < 0 ||
      j >= nneighbors[i])
    TX_FATAL(txunit::transport, 1, stderr,
             "calc_2mol_moment_and_rotate_x_one: pair %d %d has no moment block; build the neighbor list first\n", i,
             j);
  principal_frame(*this, n, types, x_in, x_out, pair_eigval[i][j], pair_eigvec[i][j]);
}
