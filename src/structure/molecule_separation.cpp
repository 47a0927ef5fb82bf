// FileIO: separation of a crystal into whole molecules.
//
// The rest of the engine thinks in molecules, a crystal file gives a periodic
// list of atoms. Separation walks the bond graph of the expanded cell and
// groups its atoms into connected molecules, in order of discovery; the
// molecules are then made whole across the cell faces and the lattice is
// settled for everything that follows.
//
// The bond criterion, everywhere: two atoms of radii ri and rj at distance d
// (angstrom) are bonded when (ri + rj) * bond_dis_scale > d. The radii differ
// by caller on purpose: separation uses cif_radii (the bond radius table),
// while a molecule that is already separated is made whole with the smaller
// covalent radii.
#include <cmath>
#include <cstdio>
#include <functional>
#include <queue>
#include <vector>

#include "fileio.h"

namespace {

constexpr double kNoCandidateDistance = 9999.99;  // angstrom

inline bool bond_criterion(double ri, double rj, double d, double scale) { return (ri + rj) * scale > d; }

// Distance in angstrom from candidate i to visited atom j: the fractional
// difference x_s[j] - x_s[i], one step of minimum image per component, then
// Cartesian. Both the search and the separation call this one function, so
// their answers agree bit for bit.
double periodic_distance(FileIO& io, int i, int j) {
  double d[3];
  for (int k = 0; k < 3; ++k) d[k] = io.cif_x_s[3 * j + k] - io.cif_x_s[3 * i + k];
  io.PBC_scaled_disp_wrap(d);
  double c[3];
  io.coord_f2c(d, c);
  return std::sqrt(c[0] * c[0] + c[1] * c[1] + c[2] * c[2]);
}

}  // namespace

// The lowest-numbered unvisited atom bonded to anything visited, paired with
// the earliest such partner in `visited`; -1, -1 and 9999.99 when there is
// none. With nothing visited yet, the lowest unvisited atom starts a molecule.
void FileIO::find_bond_atom(int natoms, int* unvisited, int nvisited, int* visited, int* new_atom, int* ref_atom,
                            double* dist) {
  *new_atom = -1;
  *ref_atom = -1;
  *dist = kNoCandidateDistance;
  for (int i = 0; i < natoms; ++i) {
    if (!unvisited[i]) continue;
    if (nvisited == 0) {
      *new_atom = i;
      *ref_atom = 0;
      *dist = 0.0;
      return;
    }
    for (int v = 0; v < nvisited; ++v) {
      const int j = visited[v];
      if (j == i) continue;
      const double d = periodic_distance(*this, i, j);
      if (bond_criterion(cif_radii[i], cif_radii[j], d, bond_dis_scale)) {
        *new_atom = i;
        *ref_atom = j;
        *dist = d;
        return;
      }
    }
  }
}

// Equal, atom for atom, to the plain walk that calls find_bond_atom once per
// step (the reference in the tests): a molecule starts at the lowest atom not
// yet assigned and grows by the lowest unvisited atom bonded to any of its
// members, until none is left. Instead of rescanning everything per step,
// which is cubic, each new member tests the remaining atoms once and the
// bonded ones wait in a min-heap. A molecule closes when no candidate is left;
// no radius is read for a missing atom.
void FileIO::separate_cif_molecules(bool verbose) {
  // A new crystal's molecules replace any earlier list: stale indices would
  // point past the current arrays.
  uc_mol_natoms.clear();
  uc_mol_atoms.clear();

  const int n = cif_natoms;
  std::vector<char> unvisited(n, 1);
  std::vector<int> pool;  // unvisited atoms not yet known to touch the molecule
  std::priority_queue<int, std::vector<int>, std::greater<int>> candidates;
  int assigned = 0;
  int lowest = 0;

  while (assigned < n) {
    while (!unvisited[lowest]) ++lowest;
    pool.clear();
    for (int a = lowest + 1; a < n; ++a)
      if (unvisited[a]) pool.push_back(a);

    const size_t first = uc_mol_atoms.size();
    int member = lowest;
    while (true) {
      unvisited[member] = 0;
      uc_mol_atoms.push_back(member);
      size_t keep = 0;
      for (size_t p = 0; p < pool.size(); ++p) {
        const int i = pool[p];
        if (bond_criterion(cif_radii[i], cif_radii[member], periodic_distance(*this, i, member), bond_dis_scale))
          candidates.push(i);
        else
          pool[keep++] = i;
      }
      pool.resize(keep);
      if (candidates.empty()) break;
      member = candidates.top();
      candidates.pop();
    }
    const int size = static_cast<int>(uc_mol_atoms.size() - first);
    uc_mol_natoms.push_back(size);
    assigned += size;
  }

  if (verbose) {
    std::printf("  Unit cell nmols  = %d\n", static_cast<int>(uc_mol_natoms.size()));
    std::printf("  Unit cell natoms =");
    for (int size : uc_mol_natoms) std::printf(" %d", size);
    std::printf("\n");
  }
}
