// Hand-built crystals for the neighbor and equivalence tests: an orthorhombic
// cell and molecules given atom by atom, stored the way the molecule separation
// stores them (centres and masses zero until calc_x_com).
#ifndef TAVIX_TESTS_TOPOLOGY_FIXTURES_H
#define TAVIX_TESTS_TOPOLOGY_FIXTURES_H

#include <string>
#include <vector>

#include "transport.h"

namespace topo {

struct Atom {
  int type;          // element index
  double x, y, z;    // fractional
};
using Molecule = std::vector<Atom>;

// Element indices used below.
constexpr int H = 1;
constexpr int C = 6;
constexpr int Tc = 43;  // mass 98 exactly, handy for hand-worked moments
constexpr int I = 53;

// latt_f2c = diag(a, b, c): exact products, so hand-worked distances are exact.
inline void set_orthorhombic(Transport& t, double a, double b, double c) {
  const double d[3] = {a, b, c};
  for (int r = 0; r < 3; ++r)
    for (int k = 0; k < 3; ++k) {
      t.latt_f2c[r][k] = r == k ? d[r] : 0.0;
      t.latt_c2f[r][k] = r == k ? 1.0 / d[r] : 0.0;
    }
  for (int k = 0; k < 3; ++k) {
    t.vector_a[k] = t.latt_f2c[k][0];
    t.vector_b[k] = t.latt_f2c[k][1];
    t.vector_c[k] = t.latt_f2c[k][2];
  }
  t.cell_latt[0] = a;
  t.cell_latt[1] = b;
  t.cell_latt[2] = c;
  t.cell_latt[3] = t.cell_latt[4] = t.cell_latt[5] = 90.0;
}

inline void set_molecules(Transport& t, const std::vector<Molecule>& mols) {
  const int n = static_cast<int>(mols.size());
  t.nmols_uc = n;
  t.mol_natoms = new int[n]();
  t.mol_elem = new int*[n]();
  t.mol_x = new double*[n]();
  t.mol_x_s = new double*[n]();
  t.mol_x_com = new double*[n]();
  t.mol_x_s_com = new double*[n]();
  t.mol_rows_allocated = n;
  t.mol_mass = new double[n]();
  t.mol_index = new int[n]();
  for (int i = 0; i < n; ++i) {
    const int na = static_cast<int>(mols[i].size());
    t.mol_natoms[i] = na;
    t.mol_index[i] = i + 1;
    t.mol_elem[i] = new int[na];
    t.mol_x[i] = new double[3 * na];
    t.mol_x_s[i] = new double[3 * na];
    t.mol_x_com[i] = new double[3]();
    t.mol_x_s_com[i] = new double[3]();
    for (int a = 0; a < na; ++a) {
      t.mol_elem[i][a] = mols[i][a].type;
      t.mol_x_s[i][3 * a] = mols[i][a].x;
      t.mol_x_s[i][3 * a + 1] = mols[i][a].y;
      t.mol_x_s[i][3 * a + 2] = mols[i][a].z;
      t.coord_f2c(&t.mol_x_s[i][3 * a], &t.mol_x[i][3 * a]);
    }
  }
}

inline void set_search(Transport& t, double cutoff, int na, int nb, int nc) {
  t.lat_cutoff = cutoff;
  t.neighbor_scell[0] = na;
  t.neighbor_scell[1] = nb;
  t.neighbor_scell[2] = nc;
}

// One neighbor of a row as (id, cell), id zero-based.
struct Nei {
  int id;
  int cx, cy, cz;
  bool operator<(const Nei& o) const {
    if (id != o.id) return id < o.id;
    if (cx != o.cx) return cx < o.cx;
    if (cy != o.cy) return cy < o.cy;
    return cz < o.cz;
  }
  bool operator==(const Nei& o) const { return id == o.id && cx == o.cx && cy == o.cy && cz == o.cz; }
};

inline std::vector<Nei> row_of(const Transport& t, int i) {
  std::vector<Nei> row;
  for (int j = 0; j < t.nneighbors[i]; ++j)
    row.push_back({t.neighbor_id[i][j], t.neighbor_cx[i][j], t.neighbor_cy[i][j], t.neighbor_cz[i][j]});
  return row;
}

// The plain search, kept as the reference of the list builder: every molecule
// pair in every cell goes through check_if_molecule_within_rcut, accepted ones are
// keyed on the squared centre distance in loop order and sorted by quickSort_d.
// Needs the centres computed. Returns the rows, one per root.
inline std::vector<std::vector<Nei>> plain_search_rows(Transport& t) {
  std::vector<std::vector<Nei>> rows(t.nmols_uc);
  const double rcut2 = t.lat_cutoff * t.lat_cutoff;
  const int* n = t.neighbor_scell;
  for (int i = 0; i < t.nmols_uc; ++i) {
    std::vector<Nei> found;
    std::vector<double> keys;
    int cell[3];
    for (cell[2] = -n[2]; cell[2] <= n[2]; ++cell[2])
      for (cell[1] = -n[1]; cell[1] <= n[1]; ++cell[1])
        for (cell[0] = -n[0]; cell[0] <= n[0]; ++cell[0])
          for (int j = 0; j < t.nmols_uc; ++j) {
            if (j == i && cell[0] == 0 && cell[1] == 0 && cell[2] == 0) continue;
            double rsq;
            if (!t.check_if_molecule_within_rcut(i, j, cell, rcut2, &rsq)) continue;
            found.push_back({j, cell[0], cell[1], cell[2]});
            keys.push_back(t.calc_neighbor_com_rsq(i, j, cell));
          }
    std::vector<int> order(found.size());
    for (size_t k = 0; k < order.size(); ++k) order[k] = static_cast<int>(k);
    quickSort_d(keys.data(), order.data(), static_cast<int>(order.size()));
    for (int k : order) rows[i].push_back(found[k]);
  }
  return rows;
}

// A neighbor.dat as the writer lays it out; rows[i] lists root i's neighbors.
// dx, dy, dz and r are written as zeros: the reader recomputes them.
inline std::string neighbor_dat(const std::vector<std::vector<Nei>>& rows) {
  std::string s =
      "# nroot, root_mol_info, nnei, neighbors_info\n"
      "# r = molecular COM distance, cindex = neighbor cell index\n" +
      std::to_string(rows.size()) + "\n";
  for (size_t i = 0; i < rows.size(); ++i) {
    s += std::to_string(i + 1) + "   0.0000   0.0000   0.0000  # root\n";
    s += std::to_string(rows[i].size()) + " #      dx        dy        dz         r     cindex\n";
    for (const Nei& n : rows[i])
      s += "   " + std::to_string(n.id + 1) + "    0.0000    0.0000    0.0000    0.0000  " + std::to_string(n.cx) +
           " " + std::to_string(n.cy) + " " + std::to_string(n.cz) + "\n";
  }
  return s;
}

}  // namespace topo

#endif  // TAVIX_TESTS_TOPOLOGY_FIXTURES_H
