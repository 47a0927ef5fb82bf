// Transport: centres of mass, the neighbor list (searched or read back from
// neighbor.dat) and the identity tables seeded from it.
//
// Every root molecule of the unit cell gets one row of partners, each a unit-cell
// molecule in a periodic image (its cell). Rows are sorted by centre-of-mass
// distance after a search, and kept in file order after a reading.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "transport.h"

namespace {

const char* const kNeighborFile = "neighbor.dat";
// fgets buffer: a line of the file is taken 254 characters at a time.
constexpr int kLineBuffer = 255;

// Reads the next piece of neighbor.dat into `buf` and counts the line. A file that
// ends early is rejected instead of reusing the previous line.
void read_neighbor_line(FILE* fp, char* buf, int* line) {
  ++*line;
  if (std::fgets(buf, kLineBuffer, fp) == nullptr)
    TX_FATAL(txunit::transport, 1, stderr, "Failed to read '%s' line %d: unexpected end of file\n", kNeighborFile,
             *line);
}

// A sphere holding all atoms of one molecule, angstrom.
struct AtomSphere {
  double centre[3];
  double radius;
};

// Spheres around the molecules, from the same Cartesian conversion the search uses.
std::vector<AtomSphere> molecule_spheres(const Transport& t) {
  std::vector<AtomSphere> spheres(t.nmols_uc);
  std::vector<double> x;
  for (int i = 0; i < t.nmols_uc; ++i) {
    const int n = t.mol_natoms[i];
    AtomSphere& s = spheres[i];
    s.centre[0] = s.centre[1] = s.centre[2] = 0.0;
    s.radius = 0.0;
    if (n < 1) continue;
    x.resize(3 * static_cast<size_t>(n));
    mat_vec_mul_n(t.latt_f2c, t.mol_x_s[i], x.data(), n);
    double lo[3] = {x[0], x[1], x[2]}, hi[3] = {x[0], x[1], x[2]};
    for (int a = 1; a < n; ++a)
      for (int k = 0; k < 3; ++k) {
        lo[k] = std::min(lo[k], x[3 * a + k]);
        hi[k] = std::max(hi[k], x[3 * a + k]);
      }
    for (int k = 0; k < 3; ++k) s.centre[k] = 0.5 * (lo[k] + hi[k]);
    for (int a = 0; a < n; ++a) {
      double d2 = 0.0;
      for (int k = 0; k < 3; ++k) d2 += (x[3 * a + k] - s.centre[k]) * (x[3 * a + k] - s.centre[k]);
      s.radius = std::max(s.radius, std::sqrt(d2));
    }
  }
  return spheres;
}

// False only when the two spheres (j moved to `cell`) are farther apart than the
// cutoff by a margin far above any rounding of the coordinates: then no atom pair
// can pass the exact test, and skipping it leaves the list unchanged. Everything
// else, NaN included, goes to the exact test.
bool spheres_may_touch(const Transport& t, const AtomSphere& si, const AtomSphere& sj, const int cell[3],
                       double cutoff) {
  constexpr double kMargin = 1e-6;  // angstrom
  const double f[3] = {static_cast<double>(cell[0]), static_cast<double>(cell[1]), static_cast<double>(cell[2])};
  double shift[3];
  mat_vec_mul(t.latt_f2c, f, shift);
  double d2 = 0.0;
  for (int k = 0; k < 3; ++k) {
    const double d = sj.centre[k] + shift[k] - si.centre[k];
    d2 += d * d;
  }
  return !(std::sqrt(d2) > si.radius + sj.radius + cutoff + kMargin);
}

}  // namespace

void Transport::calc_x_com() {
  for (int i = 0; i < nmols_uc; ++i) {
    double mass = 0.0;
    double sum[3] = {0.0, 0.0, 0.0};
    for (int a = 0; a < mol_natoms[i]; ++a) {
      const double m = find_element_mass_from_index(mol_atypes[i][a]);
      mass += m;
      for (int k = 0; k < 3; ++k) sum[k] += m * mol_x_s[i][3 * a + k];
    }
    mol_mass[i] = mass;
    // A molecule without atoms (separation never makes one) keeps its centre at the
    // origin instead of 0/0.
    for (int k = 0; k < 3; ++k) mol_x_s_com[i][k] = mass != 0.0 ? sum[k] / mass : 0.0;
    mat_vec_mul(latt_f2c, mol_x_s_com[i], mol_x_com[i]);
  }
  x_com_done = true;
}

void Transport::build_neighbor_list(bool read_file, bool verbose) {
  // Rows are allocated before either branch, so a file has the same capacity as a
  // search. Zero-filled so that the unused tail of a row holds defined values.
  nneighbors = new int[nmols_uc]();
  neighbor_id = new int*[nmols_uc];
  neighbor_cx = new int*[nmols_uc];
  neighbor_cy = new int*[nmols_uc];
  neighbor_cz = new int*[nmols_uc];
  for (int i = 0; i < nmols_uc; ++i) {
    neighbor_id[i] = new int[NNEIMAX]();
    neighbor_cx[i] = new int[NNEIMAX]();
    neighbor_cy[i] = new int[NNEIMAX]();
    neighbor_cz[i] = new int[NNEIMAX]();
  }
  neighbor_rows_allocated = nmols_uc;

  if (debug_flag) {
    std::printf("  h:\n");
    for (int r = 0; r < 3; ++r) std::printf(" %12.7f %12.7f %12.7f\n", latt_f2c[r][0], latt_f2c[r][1], latt_f2c[r][2]);
  }
  if (verbose) {
    std::printf("**** TAVIX Build Neighbor List ****\n");
    std::printf("  Neighbor rcutoff distance: %g\n", lat_cutoff);
    std::printf("  Neighbor search cell (-/+): %d %d %d\n", neighbor_scell[0], neighbor_scell[1], neighbor_scell[2]);
  }

  if (read_file) {
    std::printf("Reading file '%s'\n", kNeighborFile);
    FILE* fp = std::fopen(kNeighborFile, "rt");
    if (fp == nullptr) TX_FATAL(txunit::transport, 1, stdout, "Failed to open input file: %s\n", kNeighborFile);
    char buf[kLineBuffer] = "";
    int line = 0;
    // Two comment lines, not inspected, then the root count.
    read_neighbor_line(fp, buf, &line);
    read_neighbor_line(fp, buf, &line);
    read_neighbor_line(fp, buf, &line);
    const int nroots = leading_int(buf);
    if (nroots != nmols_uc)
      TX_FATAL(txunit::transport, 1, stdout, "Readin nmols (%d) in %s not equal to nmols (%d) in unitcell!\n", nroots,
               kNeighborFile, nmols_uc);
    std::vector<std::string> words;
    for (int i = 0; i < nmols_uc; ++i) {
      read_neighbor_line(fp, buf, &line);  // the root line; recomputed from the structure
      read_neighbor_line(fp, buf, &line);
      const int count = leading_int(buf);
      // The rows hold NNEIMAX entries; a longer or negative count cannot be stored.
      if (count < 0 || count > NNEIMAX)
        TX_FATAL(txunit::transport, 1, stderr, "Failed to read '%s' line %d: neighbor count %d is outside 0..%d\n",
                 kNeighborFile, line, count, NNEIMAX);
      nneighbors[i] = count;
      for (int j = 0; j < count; ++j) {
        read_neighbor_line(fp, buf, &line);
        split_to_words(c_trim(buf), " \t", words);
        if (words.size() != 8)
          TX_FATAL(txunit::transport, 1, stdout, "ncol (%d) in %s not equal to 8!\n", static_cast<int>(words.size()),
                   kNeighborFile);
        // dx, dy, dz and r (fields 1 to 4) are recomputed from the structure. A field
        // that is no integer ends the process through the uncaught std::stoi failure.
        const int id = std::stoi(words[0]) - 1;
        neighbor_cx[i][j] = std::stoi(words[5]);
        neighbor_cy[i][j] = std::stoi(words[6]);
        neighbor_cz[i][j] = std::stoi(words[7]);
        if (id < 0 || id >= nmols_uc)
          TX_FATAL(txunit::transport, 1, stderr, "Failed to read '%s' line %d: neighbor id %d is outside 1..%d\n",
                   kNeighborFile, line, id + 1, nmols_uc);
        neighbor_id[i][j] = id;
      }
    }
    // Deliberately left open until the process ends; nothing reads the stream again.
  } else {
    const double rcut2 = lat_cutoff * lat_cutoff;
    // The atom test is brute force with an early exit on the first close pair;
    // molecule pairs whose enclosing spheres are out of reach skip it, which keeps
    // the lists identical and saves most of the work on large molecules.
    const std::vector<AtomSphere> spheres = molecule_spheres(*this);
    // The count reaching NNEIMAX is fatal, so NNEIMAX entries always suffice.
    std::vector<double> rsq(NNEIMAX);
    std::vector<int> id(NNEIMAX), cx(NNEIMAX), cy(NNEIMAX), cz(NNEIMAX), order(NNEIMAX);
    for (int i = 0; i < nmols_uc; ++i) {
      int count = 0;
      int cell[3];
      for (cell[2] = -neighbor_scell[2]; cell[2] <= neighbor_scell[2]; ++cell[2]) {
        for (cell[1] = -neighbor_scell[1]; cell[1] <= neighbor_scell[1]; ++cell[1]) {
          for (cell[0] = -neighbor_scell[0]; cell[0] <= neighbor_scell[0]; ++cell[0]) {
            for (int j = 0; j < nmols_uc; ++j) {
              if (j == i && cell[0] == 0 && cell[1] == 0 && cell[2] == 0) continue;
              if (!spheres_may_touch(*this, spheres[i], spheres[j], cell, std::fabs(lat_cutoff))) continue;
              double first_close;
              if (!check_if_molecule_within_rcut(i, j, cell, rcut2, &first_close)) continue;
              // Accepted on atoms, sorted on centres of mass.
              double df[3], dc[3];
              for (int k = 0; k < 3; ++k) df[k] = mol_x_s_com[j][k] - mol_x_s_com[i][k] + cell[k];
              mat_vec_mul(latt_f2c, df, dc);
              rsq[count] = dc[0] * dc[0] + dc[1] * dc[1] + dc[2] * dc[2];
              id[count] = j;
              cx[count] = cell[0];
              cy[count] = cell[1];
              cz[count] = cell[2];
              ++count;
              // Deliberately fatal at NNEIMAX itself, so a row never holds more than
              // NNEIMAX - 1 searched neighbors.
              if (count == NNEIMAX)
                TX_FATAL(txunit::transport, 1, stderr, "Need to boost NNEIMAX (NumNeigh=%d)\n", NNEIMAX);
            }
          }
        }
      }
      // quickSort_d is not stable and no secondary key is used: neighbors at equal
      // distance keep the order it leaves.
      for (int k = 0; k < count; ++k) order[k] = k;
      quickSort_d(rsq.data(), order.data(), count);
      for (int k = 0; k < count; ++k) {
        neighbor_id[i][k] = id[order[k]];
        neighbor_cx[i][k] = cx[order[k]];
        neighbor_cy[i][k] = cy[order[k]];
        neighbor_cz[i][k] = cz[order[k]];
      }
      nneighbors[i] = count;
    }
  }

  neighbor_built = true;
  if (verbose) std::printf("**** End of TAVIX Build Neighbor List ****\n\n\n");

  // The search above read mol_x_s_com before this point. A caller that wants the
  // rows sorted by centre-of-mass distance computes the centres first; the gather
  // path does not, and its rows are then ordered by the image offset alone, which
  // its report never shows.
  if (!x_com_done) calc_x_com();

  neighbor_x = new double*[nmols_uc];
  neighbor_df = new double*[nmols_uc];
  for (int i = 0; i < nmols_uc; ++i) {
    neighbor_x[i] = new double[3 * nneighbors[i]];
    neighbor_df[i] = new double[3 * nneighbors[i]];
    for (int j = 0; j < nneighbors[i]; ++j) {
      const int nid = neighbor_id[i][j];
      const int cell[3] = {neighbor_cx[i][j], neighbor_cy[i][j], neighbor_cz[i][j]};
      double image[3];
      for (int k = 0; k < 3; ++k) {
        image[k] = mol_x_s_com[nid][k] + cell[k];
        neighbor_df[i][3 * j + k] = image[k] - mol_x_s_com[i][k];
      }
      mat_vec_mul(latt_f2c, image, &neighbor_x[i][3 * j]);
    }
  }

  allocate_mol_id_indexes_array();

  // Principal moments and axes are zero until calc_HL_uc_mol_eigval_eigvec fills
  // them. The gather path never does, and its molecule check then compares these
  // zeros: equal for all molecules, so atom count and mass alone decide there.
  uc_mol_eigval = new double*[nmols_uc];
  uc_mol_eigvec = new double*[nmols_uc];
  for (int i = 0; i < nmols_uc; ++i) {
    uc_mol_eigval[i] = new double[3]();
    uc_mol_eigvec[i] = new double[9]();
  }
  eigval_rows_allocated = nmols_uc;

  // pair_flag is allocated and never filled; the row is kept as it is deliberately
  // (zero here). pair_x entries stay null until the pair rotation stores them.
  pair_flag = new int*[nmols_uc];
  pair_x = new double**[nmols_uc];
  pair_eigval = new double**[nmols_uc];
  pair_eigvec = new double**[nmols_uc];
  for (int i = 0; i < nmols_uc; ++i) {
    pair_flag[i] = new int[nneighbors[i]]();
    pair_x[i] = new double*[nneighbors[i]]();
    pair_eigval[i] = new double*[nneighbors[i]];
    pair_eigvec[i] = new double*[nneighbors[i]];
  }
  for (int i = 0; i < nmols_uc; ++i) {
    for (int j = 0; j < nneighbors[i]; ++j) {
      pair_eigval[i][j] = new double[3]();
      pair_eigvec[i][j] = new double[9]();
    }
  }
  pair_rows_allocated = nmols_uc;
}

void Transport::allocate_mol_id_indexes_array() {
  uc_mol_seq = new int[nmols_uc];
  uc_mol_id = new int[nmols_uc];
  // The two lists are filled by the duplicate checks; zero until then.
  uc_mol_re_list = new int[nmols_uc]();
  uc_mol_unique_list = new int[nmols_uc]();
  for (int i = 0; i < nmols_uc; ++i) {
    uc_mol_seq[i] = i + 1;
    uc_mol_id[i] = i + 1;
  }
  nei_mol_seq = new int*[nmols_uc];
  nei_mol_id = new int*[nmols_uc];
  for (int i = 0; i < nmols_uc; ++i) {
    nei_mol_seq[i] = new int[nneighbors[i]];
    for (int j = 0; j < nneighbors[i]; ++j) nei_mol_seq[i][j] = j + 1;
    // Filled by find_HL_mol_neighbor_index_unique; zero until then.
    nei_mol_id[i] = new int[nneighbors[i]]();
  }
  id_rows_allocated = nmols_uc;
  mol_id_ready = true;
}
