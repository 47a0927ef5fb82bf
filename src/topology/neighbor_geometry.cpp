// Transport: the geometric tests behind the neighbor list, the report of minimum
// atomic distances, and small helpers of the cluster builders.
#include <cmath>
#include <cstdio>
#include <vector>

#include "transport.h"

namespace {

inline double norm2(const double* v) { return v[0] * v[0] + v[1] * v[1] + v[2] * v[2]; }

}  // namespace

// Atoms of i in the outer loop, atoms of j (shifted by `cell`) in the inner one.
// The first pair closer than the cutoff ends the search, so *rsq is that pair's
// squared distance, not the minimum: the early exit is what keeps the brute-force
// search affordable.
int Transport::check_if_molecule_within_rcut(int i, int j, int cell[3], double rcut2, double* rsq) {
  const double* xi = mol_x_s[i];
  const double* xj = mol_x_s[j];
  for (int a = 0; a < mol_natoms[i]; ++a) {
    for (int b = 0; b < mol_natoms[j]; ++b) {
      double df[3], dc[3];
      for (int k = 0; k < 3; ++k) df[k] = xj[3 * b + k] - xi[3 * a + k] + cell[k];
      mat_vec_mul(latt_f2c, df, dc);
      const double d2 = norm2(dc);
      if (rcut2 > d2) {
        *rsq = d2;
        return 1;
      }
    }
  }
  return 0;
}

int Transport::check_if_molecule_within_rcut_x(int i, int j, int cell[3], double rcut2, double* rsq) {
  double shift[3];
  for (int k = 0; k < 3; ++k) shift[k] = cell[0] * vector_a[k] + cell[1] * vector_b[k] + cell[2] * vector_c[k];
  const double* xi = mol_x[i];
  const double* xj = mol_x[j];
  for (int a = 0; a < mol_natoms[i]; ++a) {
    for (int b = 0; b < mol_natoms[j]; ++b) {
      double d[3];
      for (int k = 0; k < 3; ++k) d[k] = xj[3 * b + k] + shift[k] - xi[3 * a + k];
      const double d2 = norm2(d);
      if (rcut2 > d2) {
        *rsq = d2;
        return 1;
      }
    }
  }
  return 0;
}

int Transport::check_if_molecule_within_rcut_cell2(int i, int cell_i[3], int j, int cell_j[3], double rcut2) {
  if (i == j && cell_i[0] == cell_j[0] && cell_i[1] == cell_j[1] && cell_i[2] == cell_j[2]) return 0;
  const double* xi = mol_x_s[i];
  const double* xj = mol_x_s[j];
  for (int a = 0; a < mol_natoms[i]; ++a) {
    for (int b = 0; b < mol_natoms[j]; ++b) {
      double df[3], dc[3];
      for (int k = 0; k < 3; ++k) df[k] = (xj[3 * b + k] + cell_j[k]) - (xi[3 * a + k] + cell_i[k]);
      coord_f2c(df, dc);
      if (rcut2 > norm2(dc)) return 1;
    }
  }
  return 0;
}

// Centres of mass closer than the cutoff but not on top of each other (0.1
// angstrom); prints one trace line for each accepted pair.
int Transport::check_if_molecule_within_rcut_com(int i, int cell_i[3], int j, int cell_j[3], double rcut2) {
  double fi[3], fj[3], ci[3], cj[3], d[3];
  for (int k = 0; k < 3; ++k) {
    fi[k] = mol_x_s_com[i][k] + cell_i[k];
    fj[k] = mol_x_s_com[j][k] + cell_j[k];
  }
  coord_f2c(fi, ci);
  coord_f2c(fj, cj);
  for (int k = 0; k < 3; ++k) d[k] = cj[k] - ci[k];
  const double d2 = norm2(d);
  if (d2 > 0.01 && rcut2 > d2) {
    std::printf(" %9.3f %9.3f %9.3f - %9.3f %9.3f %9.3f : ", ci[0], ci[1], ci[2], cj[0], cj[1], cj[2]);
    std::printf(" %2d %2d %d  -  %2d %2d %2d : %d %d : ", cell_i[0], cell_i[1], cell_i[2], cell_j[0], cell_j[1],
                cell_j[2], i, j);
    std::printf(" r = %12.3f, rcut = %12.3f\n", std::sqrt(d2), std::sqrt(rcut2));
    return 1;
  }
  return 0;
}

// Angstrom. 1e15 (the root of the start value) when either molecule has no atoms.
double Transport::found_two_molecules_min_distance(int i, int j, int cell[3]) {
  double min2 = 1e30;
  const double* xi = mol_x_s[i];
  const double* xj = mol_x_s[j];
  for (int a = 0; a < mol_natoms[i]; ++a) {
    for (int b = 0; b < mol_natoms[j]; ++b) {
      double df[3], dc[3];
      for (int k = 0; k < 3; ++k) df[k] = xj[3 * b + k] - xi[3 * a + k] + cell[k];
      mat_vec_mul(latt_f2c, df, dc);
      const double d2 = norm2(dc);
      if (d2 < min2) min2 = d2;
    }
  }
  return std::sqrt(min2);
}

// Angstrom squared.
double Transport::calc_neighbor_com_rsq(int i, int j, int cell[3]) {
  double df[3], dc[3];
  for (int k = 0; k < 3; ++k) df[k] = mol_x_s_com[j][k] - mol_x_s_com[i][k] + cell[k];
  mat_vec_mul(latt_f2c, df, dc);
  return norm2(dc);
}

// The report runs the loops of the search, but keeps a partner on its true minimum
// atomic distance. The scratch lists grow with what is kept, so any cell range fits.
void Transport::find_neighbor_molecules_min_distance(bool /*verbose*/) {
  std::printf("**** Calculate minimum atomic distance with neighbors ****\n");
  std::vector<double> dist;
  std::vector<int> id, cx, cy, cz, order;
  for (int i = 0; i < nmols_uc; ++i) {
    dist.clear();
    id.clear();
    cx.clear();
    cy.clear();
    cz.clear();
    int cell[3];
    for (cell[2] = -neighbor_scell[2]; cell[2] <= neighbor_scell[2]; ++cell[2]) {
      for (cell[1] = -neighbor_scell[1]; cell[1] <= neighbor_scell[1]; ++cell[1]) {
        for (cell[0] = -neighbor_scell[0]; cell[0] <= neighbor_scell[0]; ++cell[0]) {
          for (int j = 0; j < nmols_uc; ++j) {
            if (j == i && cell[0] == 0 && cell[1] == 0 && cell[2] == 0) continue;
            const double d = found_two_molecules_min_distance(i, j, cell);
            if (!(lat_cutoff > d)) continue;
            dist.push_back(d);
            id.push_back(j);
            cx.push_back(cell[0]);
            cy.push_back(cell[1]);
            cz.push_back(cell[2]);
          }
        }
      }
    }
    const int count = static_cast<int>(dist.size());
    order.resize(count);
    for (int k = 0; k < count; ++k) order[k] = k;
    quickSort_d(dist.data(), order.data(), count);
    std::printf("  molecule %d\n", i + 1);
    for (int k = 0; k < count; ++k) {
      const int e = order[k];
      std::printf("    neighbor %d [%2d %2d %2d]: %8.3f\n", id[e] + 1, cx[e], cy[e], cz[e], dist[e]);
    }
  }
  std::printf("**** End of Calculate minimum atomic distance with neighbors ****\n\n");
}

// Offsets 0, -1, 1, -2, 2, ... per axis: nearest images first.
void Transport::create_neighbor_cell_array(int n[3], int* out[3]) {
  for (int axis = 0; axis < 3; ++axis)
    for (int k = 1; k <= n[axis]; ++k) out[axis][k - 1] = (k % 2 == 1) ? k / 2 : -(k / 2);
}

int Transport::found_dup_mol(const std::vector<double>& x, const std::vector<double>& y, const std::vector<double>& z,
                             const std::vector<int>& id, double x0, double y0, double z0, int id0) {
  size_t n = x.size();
  if (y.size() < n) n = y.size();
  if (z.size() < n) n = z.size();
  if (id.size() < n) n = id.size();
  for (size_t e = 0; e < n; ++e)
    if (std::fabs(x[e] - x0) < 1e-6 && std::fabs(y[e] - y0) < 1e-6 && std::fabs(z[e] - z0) < 1e-6 && id[e] == id0)
      return 1;
  return 0;
}

// Only the first entry (the cluster's centre) is ever consulted, deliberately: the
// cluster builder measures every candidate from its centre. With no entry there
// is nothing to measure from, and the point counts as inside.
bool Transport::mol_com_out_of_cutoff(const std::vector<double>& x, const std::vector<double>& y,
                                      const std::vector<double>& z, double x0, double y0, double z0, double rcut2) {
  if (x.empty() || y.empty() || z.empty()) return false;
  double d[3] = {x0 - x[0], y0 - y[0], z0 - z[0]};
  double c[3];
  coord_f2c(d, c);
  return norm2(c) > rcut2;
}
