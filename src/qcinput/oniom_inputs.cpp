// Transport: Gaussian ONIOM inputs. Each molecule of the cell becomes the high layer
// of a cluster cut from the crystal: its neighbors, and up to two further shells of
// their neighbors within a centre-of-mass cutoff, form the frozen low layer.
#include <cstdio>
#include <string>
#include <vector>

#include "transport.h"
#include "txutil.h"

namespace {

struct ClusterAtom {
  int elem;
  double x_s[3];  // fractional, cell shift included
  int layer;      // 0 the centre, 1 to 3 the shells
  int mol;        // one-based number in the cell
  int index;      // position in the parent's neighbor row
};

// A cluster with its placements (cell shift and one-based molecule number), which
// keep a molecule from being added twice.
struct Cluster {
  std::vector<ClusterAtom> atoms;
  std::vector<double> sx, sy, sz;
  std::vector<int> mol;

  void add(const Transport& t, int m, const int shift[3], int layer, int index) {
    const double* xs = t.mol_x_s[m];
    for (int a = 0; a < t.mol_natoms[m]; ++a)
      atoms.push_back({t.mol_elem[m][a],
                       {xs[3 * a] + shift[0], xs[3 * a + 1] + shift[1], xs[3 * a + 2] + shift[2]},
                       layer,
                       m + 1,
                       index});
    sx.push_back(shift[0]);
    sy.push_back(shift[1]);
    sz.push_back(shift[2]);
    mol.push_back(m + 1);
  }
};

// Adds, as `layer`, the neighbors of the placements `parents` whose centre lies
// within the cutoff of the cluster centre and that the cluster does not hold yet.
// Returns the placements added.
std::vector<size_t> add_shell(Transport& t, Cluster& c, const std::vector<size_t>& parents, int layer, int centre,
                              double rcut2) {
  const std::vector<double> cx = {t.mol_x_s_com[centre][0]};
  const std::vector<double> cy = {t.mol_x_s_com[centre][1]};
  const std::vector<double> cz = {t.mol_x_s_com[centre][2]};
  std::vector<size_t> added;
  for (size_t p : parents) {
    const int m = c.mol[p] - 1;
    const int base[3] = {static_cast<int>(c.sx[p]), static_cast<int>(c.sy[p]), static_cast<int>(c.sz[p])};
    for (int k = 0; k < t.nneighbors[m]; ++k) {
      const int n = t.neighbor_id[m][k];
      const int shift[3] = {base[0] + t.neighbor_cx[m][k], base[1] + t.neighbor_cy[m][k],
                            base[2] + t.neighbor_cz[m][k]};
      const double* f_com = t.mol_x_s_com[n];
      if (t.mol_com_out_of_cutoff(cx, cy, cz, f_com[0] + shift[0], f_com[1] + shift[1], f_com[2] + shift[2], rcut2))
        continue;
      if (t.found_dup_mol(c.sx, c.sy, c.sz, c.mol, shift[0], shift[1], shift[2], n + 1)) continue;
      c.add(t, n, shift, layer, k + 1);
      added.push_back(c.mol.size() - 1);
    }
  }
  return added;
}

Cluster build_cluster(Transport& t, int i) {
  Cluster c;
  const int none[3] = {0, 0, 0};
  c.add(t, i, none, 0, 0);
  std::vector<size_t> shell;
  for (int j = 0; j < t.nneighbors[i]; ++j) {
    const int shift[3] = {t.neighbor_cx[i][j], t.neighbor_cy[i][j], t.neighbor_cz[i][j]};
    c.add(t, t.neighbor_id[i][j], shift, 1, j);
    shell.push_back(c.mol.size() - 1);
  }
  const double rcut2 = t.oniom_com_cutoff * t.oniom_com_cutoff;
  for (int layer = 2; layer <= 3 && layer <= t.oniom_nlayers; ++layer) shell = add_shell(t, c, shell, layer, i, rcut2);
  return c;
}

FILE* open_output(const std::string& path) {
  FILE* fp = std::fopen(path.c_str(), "wt");
  if (fp == nullptr) TX_FATAL(txunit::transport, -1, stderr, "Failed to open output file %s\n", path.c_str());
  return fp;
}

// The processors, memory and method are fixed on purpose, whatever the control
// file's quantum-chemistry settings say.
void write_oniom_com(Transport& t, int number, const Cluster& c) {
  FILE* fp = open_output(format_string("%s/mol%d_oniom.com", t.data_dir.c_str(), number));
  std::fprintf(fp, "%%chk=mol%d_oniom.chk\n", number);
  std::fprintf(fp, "%%nprocs=16\n");
  std::fprintf(fp, "%%mem=80GB\n");
  std::fprintf(fp, "#p opt freq oniom(m062x/6-31g*:uff=qeq)=embedcharge nosymm\n");
  std::fprintf(fp, "\n");
  std::fprintf(fp, "mol_oniom\n");
  std::fprintf(fp, "\n");
  std::fprintf(fp, "0 1 0 1 0 1\n");
  for (const ClusterAtom& a : c.atoms) {
    char symbol[4] = "";
    t.find_element_name_from_index(a.elem, symbol);
    double x[3];
    t.coord_f2c(a.x_s, x);
    const bool high = a.layer == 0;  // the centre moves, every shell stays frozen
    std::fprintf(fp, "%-2s%14s %2d %13.7f %13.7f %13.7f %s\n", symbol, "", high ? 0 : -1, x[0], x[1], x[2],
                 high ? "H" : "L");
  }
  std::fprintf(fp, "\n");
  std::fclose(fp);
}

void write_oniom_xyz(Transport& t, int number, const Cluster& c) {
  FILE* fp = open_output(format_string("%s/mol%d_oniom.xyz", t.data_dir.c_str(), number));
  std::fprintf(fp, "%d\n", static_cast<int>(c.atoms.size()));
  std::fprintf(fp, "# Oniom input check\n");
  for (const ClusterAtom& a : c.atoms) {
    char symbol[4] = "";
    t.find_element_name_from_index(a.elem, symbol);
    double x[3];
    t.coord_f2c(a.x_s, x);
    std::fprintf(fp, "%-2s %13.8f %12.8f %13.8f %d %d %d\n", symbol, x[0], x[1], x[2], a.layer, a.mol, a.index);
  }
  std::fclose(fp);
}

}  // namespace

void Transport::write_oniom_input_files(bool verbose) {
  std::printf("**** Generate Oniom input files ****\n");
  if (nmols_uc > 0 && (nneighbors == nullptr || neighbor_id == nullptr))
    TX_FATAL(txunit::transport, 1, stderr, "No neighbor list to build the ONIOM clusters from\n");
  for (int i = 0; i < nmols_uc; ++i) {
    const Cluster c = build_cluster(*this, i);
    if (verbose) std::printf("  mol%d: %d atoms in the cluster\n", i + 1, static_cast<int>(c.atoms.size()));
    write_oniom_com(*this, i + 1, c);
    write_oniom_xyz(*this, i + 1, c);
  }
  std::printf("**** End of Generate Oniom input files ****\n\n");
}
