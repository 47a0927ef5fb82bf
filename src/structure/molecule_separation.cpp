// FileIO: separation of a crystal into whole molecules.
//
// The rest of the engine thinks in molecules, a crystal file gives a periodic
// list of atoms. Separation walks the bond graph of the expanded cell and
// groups its atoms into connected molecules, in order of discovery; the
// molecules are then made whole across the cell faces (whole_molecule.cpp)
// and the lattice is settled for everything that follows.
//
// The bond criterion, everywhere: two atoms of radii ri and rj at distance d
// (angstrom) are bonded when (ri + rj) * bond_dis_scale > d. The radii differ
// by caller on purpose: separation uses cif_radii (the bond radius table),
// while a molecule that is already separated is made whole with the smaller
// covalent radii, so a bond can pass here and fail there; the warning of
// make_whole_molecule is there for that case.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <queue>
#include <string>
#include <vector>

#include "array_release.h"
#include "fileio.h"
#include "molecule_arrays.h"

namespace {

constexpr double kNoCandidateDistance = 9999.99;  // angstrom
// Degrees from radians for the cell of molecule-file mode: the shortened pi of
// the cell-to-matrix direction, kept on purpose (cells derived here differ in
// the last digits from convert_latt3x3_to_cell6, which uses the full value).
constexpr double kPiVectorsToCell = 3.1415926535898;
constexpr int kMolFileNameLength = 20;  // "mol%d.mol" buffers of mode 2

inline bool bond_criterion(double ri, double rj, double d, double scale) { return (ri + rj) * scale > d; }

// Distance in angstrom from candidate i to visited atom j: the fractional
// difference x_s[j] - x_s[i], one step of minimum image per component, then
// Cartesian. The search and the fast walk call this one function, so their
// answers agree bit for bit.
double periodic_distance(FileIO& io, int i, int j) {
  double d[3];
  for (int k = 0; k < 3; ++k) d[k] = io.cif_x_s[3 * j + k] - io.cif_x_s[3 * i + k];
  io.PBC_scaled_disp_wrap(d);
  double c[3];
  io.coord_f2c(d, c);
  return std::sqrt(c[0] * c[0] + c[1] * c[1] + c[2] * c[2]);
}

// Plain Cartesian distance in angstrom from candidate i to visited atom j of cif_x.
double cartesian_distance(const FileIO& io, int i, int j) {
  double d[3];
  for (int k = 0; k < 3; ++k) d[k] = io.cif_x[3 * j + k] - io.cif_x[3 * i + k];
  return std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
}

// Length in angstrom of a fractional difference through latt_f2c.
double fractional_length(FileIO& io, const double* d) {
  double c[3];
  io.coord_f2c(d, c);
  return std::sqrt(c[0] * c[0] + c[1] * c[1] + c[2] * c[2]);
}

// Brings one fractional component into [-0.5, 0.5] as the loops "while above
// 0.5 subtract 1.0, while below -0.5 add 1.0" do. Beyond a thousand cells the
// loops are replaced by their closed form: every subtraction of 1.0 they make
// is exact, so their result is the one value x - n (n whole) in (-0.5, 0.5]
// for a positive x and in [-0.5, 0.5) for a negative one, which the exact
// fractional part x - floor(x) gives directly. For an infinite value, or one
// of 2^53 or more, where the loops would never end, the same form gives NaN
// or 0.0 instead of a hang.
double full_wrap(double x) {
  constexpr double kLoopLimit = 1024.0;
  if (std::fabs(x) > kLoopLimit) {
    const double frac = x - std::floor(x);  // exact, in [0, 1)
    if (x > 0.0) return frac > 0.5 ? frac - 1.0 : frac;
    return frac >= 0.5 ? frac - 1.0 : frac;
  }
  while (x > 0.5) x -= 1.0;
  while (x < -0.5) x += 1.0;
  return x;
}

// Largest value the left side of the bond criterion can take over all pairs
// of `radii`: (ri + rj) * scale is largest at the largest radius for a
// positive scale and at the smallest for a negative one. NaN radii bond to
// nothing and are left out. Not finite when any pair could bond at any range.
double largest_bond_reach(const double* radii, int n, double scale) {
  double rmax = -HUGE_VAL;
  double rmin = HUGE_VAL;
  for (int i = 0; i < n; ++i) {
    if (radii[i] > rmax) rmax = radii[i];
    if (radii[i] < rmin) rmin = radii[i];
  }
  if (rmax < rmin) return 0.0;  // no radius at all
  return std::max((rmax + rmax) * scale, (rmin + rmin) * scale);
}

// Atoms sorted into boxes of a grid over scaled coordinates t in [0, 1], so
// that a walk asks only the atoms near a new member instead of all of them.
// The boxes are at least `reach` wide along each axis, measured between the
// planes of constant t (for a periodic cell the distance between opposite
// faces), so any two atoms that can bond, whichever periodic image does it,
// sit in the same or in neighbouring boxes: the grid only narrows the set of
// atoms that are tested, the test itself stays the exact criterion. When the
// geometry gives no usable box size (a degenerate cell, a huge or undefined
// reach, coordinates that are not finite) the grid is one box and every atom
// is tested, as in the plain walk.
class CandidateGrid {
 public:
  // `t`: three scaled coordinates per atom in [0, 1]; `extent`: the distance
  // in angstrom between the planes t_k = 0 and t_k = 1; `periodic`: box 0
  // and the last box of an axis touch.
  CandidateGrid(int natoms, const std::vector<double>& t, const double extent[3], bool periodic, double reach)
      : periodic_(periodic), box_of_(natoms, 0) {
    // A small margin keeps atoms at a box edge on the safe side of rounding.
    const double width = reach * (1.0 + 1e-6) + 1e-6;  // angstrom
    bool usable = std::isfinite(width) && width > 0.0;
    for (size_t k = 0; usable && k < t.size(); ++k) usable = std::isfinite(t[k]);
    for (int k = 0; k < 3; ++k) {
      nbox_[k] = 1;
      if (usable && std::isfinite(extent[k]) && extent[k] > width)
        nbox_[k] = static_cast<int>(std::min(extent[k] / width, 1024.0));
    }
    // More boxes than atoms only costs memory and time; wider boxes stay correct.
    const long long limit = 2LL * natoms + 8;
    while (static_cast<long long>(nbox_[0]) * nbox_[1] * nbox_[2] > limit) {
      int* widest = std::max_element(nbox_, nbox_ + 3);
      *widest = (*widest + 1) / 2;
    }

    const int nboxes = nbox_[0] * nbox_[1] * nbox_[2];
    start_.assign(nboxes + 1, 0);
    for (int a = 0; a < natoms; ++a) {
      box_of_[a] = box_of_point(&t[3 * a]);
      ++start_[box_of_[a] + 1];
    }
    for (int b = 0; b < nboxes; ++b) start_[b + 1] += start_[b];
    members_.resize(natoms);
    std::vector<int> fill(start_.begin(), start_.end() - 1);
    for (int a = 0; a < natoms; ++a) members_[fill[box_of_[a]]++] = a;
  }

  // Calls f(atom) for every atom in the box of `atom` and the boxes around it,
  // each atom once.
  template <typename F>
  void for_each_near(int atom, F&& f) const {
    int b = box_of_[atom];
    int index[3];
    index[2] = b / (nbox_[0] * nbox_[1]);
    b -= index[2] * nbox_[0] * nbox_[1];
    index[1] = b / nbox_[0];
    index[0] = b - index[1] * nbox_[0];

    int around[3][3];
    int count[3];
    for (int k = 0; k < 3; ++k) boxes_around(k, index[k], around[k], count[k]);
    for (int c = 0; c < count[2]; ++c) {
      for (int bb = 0; bb < count[1]; ++bb) {
        for (int a = 0; a < count[0]; ++a) {
          const int box = (around[2][c] * nbox_[1] + around[1][bb]) * nbox_[0] + around[0][a];
          for (int p = start_[box]; p < start_[box + 1]; ++p) f(members_[p]);
        }
      }
    }
  }

 private:
  int box_of_point(const double* t) const {
    int index[3];
    for (int k = 0; k < 3; ++k) {
      // An axis of one box takes any t, even one that is not finite.
      int i = nbox_[k] == 1 ? 0 : static_cast<int>(t[k] * nbox_[k]);
      if (i < 0) i = 0;
      if (i >= nbox_[k]) i = nbox_[k] - 1;
      index[k] = i;
    }
    return (index[2] * nbox_[1] + index[1]) * nbox_[0] + index[0];
  }

  // The distinct boxes of axis k next to box i, itself included.
  void boxes_around(int k, int i, int out[3], int& count) const {
    const int n = nbox_[k];
    count = 0;
    if (n < 3) {
      for (int j = 0; j < n; ++j) out[count++] = j;
      return;
    }
    for (int d = -1; d <= 1; ++d) {
      int j = i + d;
      if (periodic_) {
        j = (j + n) % n;
      } else if (j < 0 || j >= n) {
        continue;
      }
      out[count++] = j;
    }
  }

  bool periodic_;
  int nbox_[3];
  std::vector<int> box_of_;
  std::vector<int> start_;    // first position in members_ per box, and the end
  std::vector<int> members_;  // atoms by box
};

// Grid over the fractional coordinates of a periodic cell: each coordinate is
// taken modulo 1, and the extent of axis k is the distance between the two
// cell faces that cross it, the cell volume over the area of that face.
CandidateGrid periodic_grid(FileIO& io, int natoms, const double* x_s, double reach) {
  std::vector<double> t(3 * static_cast<size_t>(natoms));
  bool near_cell = true;
  for (size_t k = 0; k < t.size(); ++k) {
    // Far beyond the cell the fractional parts lose the digits the box
    // boundaries need; such input gets the one-box grid.
    if (!(std::fabs(x_s[k]) <= 1024.0)) near_cell = false;
    t[k] = x_s[k] - std::floor(x_s[k]);
  }
  double col[3][3];
  for (int k = 0; k < 3; ++k)
    for (int r = 0; r < 3; ++r) col[k][r] = io.latt_f2c[r][k];
  const double volume = std::fabs(det(io.latt_f2c));
  double extent[3];
  for (int k = 0; k < 3; ++k) {
    const double* u = col[(k + 1) % 3];
    const double* v = col[(k + 2) % 3];
    const double cross[3] = {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
    extent[k] = near_cell ? volume / get_magnitude(cross) : 0.0;
  }
  return CandidateGrid(natoms, t, extent, true, reach);
}

// Grid over the bounding box of Cartesian coordinates, no periodicity.
CandidateGrid open_grid(int natoms, const double* x, double reach) {
  double lo[3] = {HUGE_VAL, HUGE_VAL, HUGE_VAL};
  double hi[3] = {-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
  for (int a = 0; a < natoms; ++a) {
    for (int k = 0; k < 3; ++k) {
      lo[k] = std::min(lo[k], x[3 * a + k]);
      hi[k] = std::max(hi[k], x[3 * a + k]);
    }
  }
  double extent[3];
  std::vector<double> t(3 * static_cast<size_t>(natoms));
  for (int k = 0; k < 3; ++k) extent[k] = hi[k] - lo[k];
  for (int a = 0; a < natoms; ++a)
    for (int k = 0; k < 3; ++k) t[3 * a + k] = extent[k] > 0.0 ? (x[3 * a + k] - lo[k]) / extent[k] : 0.0;
  return CandidateGrid(natoms, t, extent, false, reach);
}

// The separation walk, equal atom for atom to the plain form that calls the
// search (find_bond_atom or find_bond_atom_cart) once per step and rescans
// from the lowest index each time (the tests keep that form as reference):
// a molecule starts at the lowest atom not yet assigned and grows by the
// lowest unvisited atom bonded to any of its members, until none is left.
// Whether candidate i bonds to member j depends on nothing else, so each new
// member tests the free atoms near it once, and the bonded ones wait in a
// min-heap; the next member is the heap's smallest. A molecule closes when no
// candidate is left; no radius is read for a missing atom.
template <typename Bonded>
void discover_molecules(int natoms, const CandidateGrid& grid, Bonded bonded, std::vector<int>& sizes,
                        std::vector<int>& atoms) {
  enum : char { kFree, kQueued, kPlaced };
  std::vector<char> state(natoms, kFree);
  std::priority_queue<int, std::vector<int>, std::greater<int>> queue;
  int assigned = 0;
  int lowest = 0;
  while (assigned < natoms) {
    while (state[lowest] != kFree) ++lowest;
    const size_t first = atoms.size();
    state[lowest] = kQueued;
    queue.push(lowest);
    while (!queue.empty()) {
      const int member = queue.top();
      queue.pop();
      state[member] = kPlaced;
      atoms.push_back(member);
      grid.for_each_near(member, [&](int i) {
        if (state[i] == kFree && bonded(i, member)) {
          state[i] = kQueued;
          queue.push(i);
        }
      });
    }
    const int size = static_cast<int>(atoms.size() - first);
    sizes.push_back(size);
    assigned += size;
  }
}

void print_molecule_sizes(const char* nmols_text, const char* natoms_text, const std::vector<int>& sizes) {
  std::printf("%s%d\n", nmols_text, static_cast<int>(sizes.size()));
  std::printf("%s", natoms_text);
  for (int size : sizes) std::printf(" %d", size);
  std::printf("\n");
}

double vector_length(const double* v) { return get_magnitude(v); }

double vector_angle_degrees(const double* u, const double* v) {
  return std::acos(get_dot(u, v) / (vector_length(u) * vector_length(v))) * 180.0 / kPiVectorsToCell;
}

}  // namespace

// Fresh per-molecule arrays for `n` molecules: sizes 0, rows null (the
// readers allocate them), centres and masses zero so that anything sorting by
// them before calc_x_com has run sees defined values, mol_index unset until
// step 8. mol_files is not touched.
void allocate_molecule_arrays(FileIO& io, int n) {
  io.mol_natoms = new int[n]();
  io.mol_elem = new int*[n]();
  io.mol_x = new double*[n]();
  io.mol_x_s = new double*[n]();
  io.mol_x_com = new double*[n]();
  io.mol_x_s_com = new double*[n]();
  io.mol_rows_allocated = n;
  for (int i = 0; i < n; ++i) {
    io.mol_x_com[i] = new double[3]();
    io.mol_x_s_com[i] = new double[3]();
  }
  io.mol_mass = new double[n]();
  io.mol_index = new int[n]();
}

namespace {

// The search shared by find_bond_atom and find_bond_atom_cart, which differ only
// in how they measure a distance.
template <typename Distance>
void find_first_bonded(const FileIO& io, int natoms, const int* unvisited, int nvisited, const int* visited,
                       int* new_atom, int* ref_atom, double* dist, Distance distance) {
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
      const double d = distance(i, j);
      if (bond_criterion(io.cif_radii[i], io.cif_radii[j], d, io.bond_dis_scale)) {
        *new_atom = i;
        *ref_atom = j;
        *dist = d;
        return;
      }
    }
  }
}

}  // namespace

// The lowest-numbered unvisited atom bonded to anything visited, paired with
// the earliest such partner in `visited`; -1, -1 and 9999.99 when there is
// none. With nothing visited yet, the lowest unvisited atom starts a molecule.
void FileIO::find_bond_atom(int natoms, int* unvisited, int nvisited, int* visited, int* new_atom, int* ref_atom,
                            double* dist) {
  find_first_bonded(*this, natoms, unvisited, nvisited, visited, new_atom, ref_atom, dist,
                    [this](int i, int j) { return periodic_distance(*this, i, j); });
}

// As find_bond_atom, on the Cartesian cif_x and without periodic images.
void FileIO::find_bond_atom_cart(int natoms, int* unvisited, int nvisited, int* visited, int* new_atom, int* ref_atom,
                                 double* dist) {
  find_first_bonded(*this, natoms, unvisited, nvisited, visited, new_atom, ref_atom, dist,
                    [this](int i, int j) { return cartesian_distance(*this, i, j); });
}

// The search of make_whole_molecule, on one molecule's own fractional
// coordinates and radii. A pair is tried as it stands first; only when that
// fails is the difference wrapped fully into [-0.5, 0.5], and if the wrapped
// pair bonds, atom i is moved next to its partner. `visited` entries are
// indices into `x_s` and `radii` and may be negative when the caller passes
// arrays that start inside larger ones.
void FileIO::find_bond_atom_one(int natoms, double* x_s, double* radii, int* unvisited, int nvisited, int* visited,
                                int* new_atom, int* ref_atom, double* dist) {
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
      double d[3];
      for (int k = 0; k < 3; ++k) d[k] = x_s[3 * j + k] - x_s[3 * i + k];
      const double d1 = fractional_length(*this, d);
      if (bond_criterion(radii[i], radii[j], d1, bond_dis_scale)) {
        *new_atom = i;
        *ref_atom = j;
        *dist = d1;
        return;
      }
      for (int k = 0; k < 3; ++k) d[k] = full_wrap(d[k]);
      const double d2 = fractional_length(*this, d);
      if (bond_criterion(radii[i], radii[j], d2, bond_dis_scale)) {
        *new_atom = i;
        *ref_atom = j;
        *dist = d2;
        for (int k = 0; k < 3; ++k) x_s[3 * i + k] = x_s[3 * j + k] - d[k];
        return;
      }
    }
  }
}

void FileIO::separate_cif_molecules(bool verbose) {
  // A new crystal's molecules replace any earlier list: stale indices would
  // point past the current arrays.
  uc_mol_natoms.clear();
  uc_mol_atoms.clear();
  const int n = cif_natoms;
  if (n > 0) {
    const CandidateGrid grid = periodic_grid(*this, n, cif_x_s, largest_bond_reach(cif_radii, n, bond_dis_scale));
    discover_molecules(
        n, grid,
        [&](int i, int j) {
          return bond_criterion(cif_radii[i], cif_radii[j], periodic_distance(*this, i, j), bond_dis_scale);
        },
        uc_mol_natoms, uc_mol_atoms);
  }
  if (verbose) print_molecule_sizes("  Unit cell nmols  = ", "  Unit cell natoms =", uc_mol_natoms);
}

void FileIO::separate_gjf_molecules(bool verbose) {
  uc_mol_natoms.clear();
  uc_mol_atoms.clear();
  const int n = cif_natoms;
  if (n > 0) {
    const CandidateGrid grid = open_grid(n, cif_x, largest_bond_reach(cif_radii, n, bond_dis_scale));
    discover_molecules(
        n, grid,
        [&](int i, int j) {
          return bond_criterion(cif_radii[i], cif_radii[j], cartesian_distance(*this, i, j), bond_dis_scale);
        },
        uc_mol_natoms, uc_mol_atoms);
  }
  if (verbose) print_molecule_sizes("Mol separated: nmols  = ", "Mol separated: natoms =", uc_mol_natoms);
}

void FileIO::read_crystal_strcuture_files(bool verbose, bool write_cellvec) {
  if (mol_input_mode == 2) {
    release_molecule_arrays();
    nmols_uc = static_cast<int>(uc_mol_natoms.size());
    // The lists come from separate_cif_molecules on the current crystal arrays;
    // anything else would index past them.
    size_t total = 0;
    for (int size : uc_mol_natoms) total += static_cast<size_t>(std::max(size, 0));
    bool consistent = total == uc_mol_atoms.size() && cif_atypes && cif_x && cif_x_s;
    for (size_t p = 0; consistent && p < uc_mol_atoms.size(); ++p)
      consistent = uc_mol_atoms[p] >= 0 && uc_mol_atoms[p] < cif_natoms;
    if (nmols_uc > 0 && !consistent)
      TX_FATAL(txunit::fileio, 1, stderr,
               "The molecule lists do not match the %d atoms of the crystal; read the crystal file again\n",
               cif_natoms);

    if (nmols_uc > 0) {
      allocate_molecule_arrays(*this, nmols_uc);
      mol_files = new char*[nmols_uc]();
      mol_files_allocated = nmols_uc;
      size_t next = 0;
      for (int i = 0; i < nmols_uc; ++i) {
        mol_files[i] = new char[kMolFileNameLength];
        std::snprintf(mol_files[i], kMolFileNameLength, "mol%d.mol", i + 1);
        const int n = uc_mol_natoms[i];
        mol_natoms[i] = n;
        mol_elem[i] = new int[n];
        mol_x[i] = new double[3 * static_cast<size_t>(n)];
        mol_x_s[i] = new double[3 * static_cast<size_t>(n)];
        for (int a = 0; a < n; ++a, ++next) {
          const int atom = uc_mol_atoms[next];
          mol_elem[i][a] = cif_atypes[atom];
          for (int k = 0; k < 3; ++k) {
            mol_x[i][3 * a + k] = cif_x[3 * atom + k];
            mol_x_s[i][3 * a + k] = cif_x_s[3 * atom + k];
          }
        }
      }

      if (verbose) std::printf("Make whole molecules...\n");
      for (int i = 0; i < nmols_uc; ++i) {
        make_whole_molecule(i + 1, mol_natoms[i], mol_elem[i], mol_x_s[i], verbose);
        for (int a = 0; a < mol_natoms[i]; ++a) coord_f2c(&mol_x_s[i][3 * a], &mol_x[i][3 * a]);
      }
    }

    for (int k = 0; k < 3; ++k) {
      vector_a[k] = latt_f2c[k][0];
      vector_b[k] = latt_f2c[k][1];
      vector_c[k] = latt_f2c[k][2];
    }
  } else if (mol_input_mode == 1) {
    // The control reader filled and counted mol_files; everything else of an
    // earlier structure goes.
    char** files = mol_files;
    const int nfiles = mol_files_allocated;
    mol_files = nullptr;
    mol_files_allocated = 0;
    release_molecule_arrays();
    mol_files = files;
    mol_files_allocated = nfiles;

    if (nmols_uc > 0) {
      if (mol_files == nullptr || mol_files_allocated < nmols_uc)
        TX_FATAL(txunit::fileio, 1, stderr, "%d molecules are expected but %d molecule files are named\n", nmols_uc,
                 mol_files == nullptr ? 0 : mol_files_allocated);
      for (int i = 0; i < nmols_uc; ++i)
        if (mol_files[i] == nullptr) TX_FATAL(txunit::fileio, 1, stderr, "Molecule %d has no file name\n", i + 1);
      // read_data_mol fills the rows of a slot and needs the row arrays, null
      // filled, and their count beforehand.
      allocate_molecule_arrays(*this, nmols_uc);
      for (int i = 0; i < nmols_uc; ++i) read_data_mol(mol_files[i], i, verbose);
    }
  } else {
    // Like the other messages that follow the position line without a stream of
    // their own, on standard output.
    TX_FATAL(txunit::fileio, -1, stdout, "No input molecular data is available. (%d)\n", mol_input_mode);
  }

  latt_lengths[0] = vector_length(vector_a);
  latt_lengths[1] = vector_length(vector_b);
  latt_lengths[2] = vector_length(vector_c);
  for (int k = 0; k < 3; ++k) {
    latt_f2c[k][0] = vector_a[k];
    latt_f2c[k][1] = vector_b[k];
    latt_f2c[k][2] = vector_c[k];
  }
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) {
      latt_3x3[r][c] = latt_f2c[r][c];
      // The rows are scaled, not the columns (the lattice vectors): deliberate,
      // and what the supercell users of super_latt_3x3 were written against.
      super_latt_3x3[r][c] = latt_3x3[r][c] * super_cell[r];
    }
  }
  invert(latt_f2c, latt_c2f);

  if (mol_input_mode == 1) {
    for (int i = 0; i < nmols_uc; ++i)
      for (int a = 0; a < mol_natoms[i]; ++a) coord_c2f(&mol_x[i][3 * a], &mol_x_s[i][3 * a]);
    cell_latt[0] = latt_lengths[0];
    cell_latt[1] = latt_lengths[1];
    cell_latt[2] = latt_lengths[2];
    cell_latt[3] = vector_angle_degrees(vector_b, vector_c);
    cell_latt[4] = vector_angle_degrees(vector_a, vector_c);
    cell_latt[5] = vector_angle_degrees(vector_a, vector_b);
  }

  for (int i = 0; i < nmols_uc; ++i) mol_index[i] = i + 1;

  if (write_cellvec) {
    create_directory(data_dir);
    const std::string path = format_string("%s/cellvec.dat", data_dir.c_str());
    FILE* fp = std::fopen(path.c_str(), "wt");
    if (fp == nullptr) TX_FATAL(txunit::fileio, -1, stdout, "Failed to open output file %s\n", path.c_str());
    std::fprintf(fp, "a = %14.6f %14.6f %14.6f\n", latt_3x3[0][0], latt_3x3[1][0], latt_3x3[2][0]);
    std::fprintf(fp, "b = %14.6f %14.6f %14.6f\n", latt_3x3[0][1], latt_3x3[1][1], latt_3x3[2][1]);
    std::fprintf(fp, "c = %14.6f %14.6f %14.6f\n", latt_3x3[0][2], latt_3x3[1][2], latt_3x3[2][2]);
    std::fclose(fp);
  }
}
