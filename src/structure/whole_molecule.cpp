// FileIO: making one separated molecule whole across the cell faces.
//
// Separation finds which atoms belong together through the nearest periodic
// image; their fractional coordinates still lie wherever the crystal file put
// them, so a molecule that crosses a cell face comes apart. The walk here
// moves each atom next to the partner it is found bonded to, then brings the
// centre of mass back into the cell. Bonds are judged with the covalent radii
// (element table, 1/250 angstrom) and not with the bond radii of separation;
// the two tables have different users on purpose.
#include <cmath>
#include <cstdio>
#include <functional>
#include <queue>
#include <vector>

#include "fileio.h"

namespace {

// Bounds of the centre of mass, fractional: a centre up to one single
// precision epsilon outside [0, 1] is left where it is.
constexpr double kComLow = -5.96046448e-08;
constexpr double kComHigh = 1.0000000596046448;

void centre_of_mass(FileIO& io, int natoms, const int* types, const double* x_s, double com[3]) {
  double total = 0.0;
  double sum[3] = {0.0, 0.0, 0.0};
  for (int a = 0; a < natoms; ++a) {
    const double m = io.find_element_mass_from_index(types[a]);  // 0.0 for an unknown element
    total += m;
    for (int k = 0; k < 3; ++k) sum[k] += m * x_s[3 * a + k];
  }
  for (int k = 0; k < 3; ++k) com[k] = sum[k] / total;
}

}  // namespace

// The walk is the one of find_bond_atom_one called once per step, which
// rescans from the lowest index each time (the tests keep that form as the
// reference); the result is the same atom for atom and bit for bit. Whether an
// unvisited atom i bonds to a visited atom j depends only on j's final place
// and i's original one, and i is moved next to the earliest visited partner
// it bonds to. So each new member tests the atoms not yet reached once, in
// the order members join, which is list order: the first member that bonds
// an atom is its earliest partner, and the atom can be placed at that moment.
// The bonded atoms wait in a min-heap and the smallest joins next, as the
// rescan would pick it. The pair test is find_bond_atom_one itself, given
// arrays that start at atom i (so it sees i alone) and the member as its one
// visited atom, at a negative offset when the member comes before i.
//
// The walk's own re-test, (ri + rj) * bond_dis_scale at least the distance,
// accepts equality where the search did not; it always holds for a pair the
// search returned, so the walk ends exactly when no candidate is left, and no
// radius is read for a missing atom.
void FileIO::make_whole_molecule(int number, int natoms, int* types, double* x_s, bool verbose) {
  if (natoms <= 0) return;  // nothing to walk and no centre to take

  std::vector<double> radii(natoms);
  for (int a = 0; a < natoms; ++a) radii[a] = find_element_radius_from_index(types[a]);  // 9999.99 if unknown

  std::vector<int> pool;  // atoms not reached and not yet known to bond
  pool.reserve(natoms);
  for (int a = 1; a < natoms; ++a) pool.push_back(a);
  std::priority_queue<int, std::vector<int>, std::greater<int>> queue;
  int nbonded = 0;
  int member = 0;  // the first step, with nothing visited, gives atom 0
  while (true) {
    ++nbonded;
    size_t keep = 0;
    for (size_t p = 0; p < pool.size(); ++p) {
      const int i = pool[p];
      int only_i = 1;
      int member_from_i = member - i;
      int found = -1;
      int partner = -1;
      double dist = 0.0;
      find_bond_atom_one(1, x_s + 3 * i, radii.data() + i, &only_i, 1, &member_from_i, &found, &partner, &dist);
      if (found == 0)
        queue.push(i);
      else
        pool[keep++] = i;
    }
    pool.resize(keep);
    if (queue.empty()) break;
    member = queue.top();
    queue.pop();
  }

  if (nbonded < natoms) {
    std::printf("WARNING: Not all atoms are bonded in the molecule!\n");
    std::printf("         nat_bonded = %d, natoms = %d\n", nbonded, natoms);
  }

  double com[3];
  centre_of_mass(*this, natoms, types, x_s, com);
  if (verbose) std::printf("  molecule %d COM = %9.6f %9.6f %9.6f\n", number, com[0], com[1], com[2]);

  // One step per axis: a molecule that starts more than a cell away stays outside.
  bool shifted = false;
  for (int k = 0; k < 3; ++k) {
    double shift = 0.0;
    if (com[k] < kComLow)
      shift = 1.0;
    else if (com[k] > kComHigh)
      shift = -1.0;
    if (shift == 0.0) continue;
    for (int a = 0; a < natoms; ++a) x_s[3 * a + k] += shift;
    shifted = true;
  }
  if (!shifted) return;

  centre_of_mass(*this, natoms, types, x_s, com);
  if (verbose) std::printf("  molecule %d COM = %9.6f %9.6f %9.6f (wrapped)\n", number, com[0], com[1], com[2]);
}
