// FileIO::dipole_tune: a series of two-molecule structures in which the second
// molecule is turned about one axis, or moved along it, in equal steps while the
// first stays where it is. The input is a crystal whose cell holds two molecules,
// or two XYZ files of one molecule each.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include "fileio.h"
#include "molecule_arrays.h"

namespace {

// Head lines of a Gaussian input for the tuned dimers. "diple" is the name the
// checkpoint has always had; it stays so spelled.
const char* const dipole_gaussian_head[] = {
    "%chk=diple.chk",
    "%mem=4096MB",
    "%nprocs=20",
    "#P b3lyp STO-3g iop(3/33=1,5/33=2) pop=full nosymm",
    "",
    "uc_mol",
    "",
    "0 1",
};

// Empty space added to the extent of the two molecules along each axis for the
// cell of the two-XYZ route, so that the periodic images of the dimer stay apart.
constexpr double kDimerCellVacuum = 10.0;  // angstrom

// Output names, each format in one place.
const char* const rot_cif_given = "%s_dv_rot%.0f.cif";
const char* const rot_cif_principal = "%s_d%d_rot%.0f.cif";
const char* const rot_xyz_given = "%s_dv_rot_%g.xyz";
const char* const rot_xyz_principal = "%s_d%d_rot_%g.xyz";
const char* const disp_cif_given = "%s_dv_disp%.0f.cif";
const char* const disp_cif_principal = "%s_d%d_disp%.0f.cif";
// The displacement XYZ name always carries `dir`, even with a given axis: unlike
// the rotation series it has no "dv" form. Deliberate, and kept so that existing
// series keep their names.
const char* const disp_xyz = "%s_d%d_disp_%g.xyz";

// One step of a series of n steps up to `end`. A count of 0 gives what the IEEE
// quotient would (signed infinity, NaN for 0/0) without dividing by zero; the
// value is only printed then, since no step follows.
double series_step(double end, int n) {
  if (n != 0) return end / n;
  if (end == 0.0 || std::isnan(end)) return std::numeric_limits<double>::quiet_NaN();
  return std::copysign(std::numeric_limits<double>::infinity(), end);
}

// The per-molecule members of the two-XYZ route, recorded in the allocation
// bookkeeping so that release_molecule_arrays and ~FileIO free them. Rows of
// atoms stay null until the reader fills them; mol_files keeps the input names.
void allocate_dimer_arrays(FileIO& io, const std::vector<std::string>& files) {
  io.release_molecule_arrays();
  const int n = 2;
  allocate_molecule_arrays(io, n);
  io.mol_files = new char*[n]();
  io.mol_files_allocated = n;
  for (int i = 0; i < n; ++i) {
    io.mol_files[i] = new char[files[i].size() + 1];
    std::memcpy(io.mol_files[i], files[i].c_str(), files[i].size() + 1);
  }
}

// One molecule of an XYZ file into slot `slot`: count line, comment line, then
// one "symbol x y z" line per atom. An unknown symbol is stored as -1.
void read_xyz_molecule(FileIO& io, int slot, const std::string& path) {
  std::ifstream in(path);
  if (!in) TX_FATAL(txunit::fileio, -1, stderr, "Failed to open input file \"%s\"\n", path.c_str());
  std::string line;
  std::getline(in, line);
  trim(line);
  // The count goes through std::stoi and its exceptions are not caught: a first
  // line that is no integer ends the run abnormally, as the tools around it expect.
  const int natoms = std::stoi(line);
  if (natoms < 1)
    TX_FATAL(txunit::fileio, -1, stderr, "Failed to read \"%s\" line 1: the atom count %d is below 1\n",
             path.c_str(), natoms);
  std::getline(in, line);  // comment line

  std::vector<int> types;
  std::vector<double> x;
  std::vector<std::string> words;
  for (int a = 0; a < natoms; ++a) {
    const int line_number = a + 3;
    if (!std::getline(in, line))
      TX_FATAL(txunit::fileio, -1, stderr, "Failed to read \"%s\" line %d: the file ends before atom %d of %d\n",
               path.c_str(), line_number, a + 1, natoms);
    trim(line);
    tokenize(words, line, std::string("\t "));
    if (words.size() < 4)
      TX_FATAL(txunit::fileio, -1, stderr,
               "Failed to read \"%s\" line %d: an atom line needs a symbol and three coordinates\n", path.c_str(),
               line_number);
    types.push_back(io.find_element_index_from_name(words[0]));
    for (int k = 1; k <= 3; ++k) x.push_back(strtod_c(words[k]));
  }

  io.mol_natoms[slot] = natoms;
  io.mol_elem[slot] = new int[natoms];
  io.mol_x[slot] = new double[3 * static_cast<size_t>(natoms)];
  io.mol_x_s[slot] = new double[3 * static_cast<size_t>(natoms)];
  for (int a = 0; a < natoms; ++a) io.mol_elem[slot][a] = types[a];
  for (size_t k = 0; k < x.size(); ++k) io.mol_x[slot][k] = x[k];
}

// The lattice of the two-XYZ route, where none has been read: an orthorhombic
// cell whose edges are the extent of both molecules plus kDimerCellVacuum. So
// latt_c2f is a true inverse (no zero matrix, no infinities), the CIF files read
// back into the same Cartesian dimer, and their cell lines are meaningful.
void set_dimer_cell(FileIO& io) {
  double lo[3], hi[3];
  for (int k = 0; k < 3; ++k) {
    lo[k] = io.mol_x[0][k];
    hi[k] = io.mol_x[0][k];
  }
  for (int m = 0; m < 2; ++m) {
    for (int a = 0; a < io.mol_natoms[m]; ++a) {
      for (int k = 0; k < 3; ++k) {
        lo[k] = std::fmin(lo[k], io.mol_x[m][3 * a + k]);
        hi[k] = std::fmax(hi[k], io.mol_x[m][3 * a + k]);
      }
    }
  }
  double edge[3];
  for (int k = 0; k < 3; ++k) edge[k] = hi[k] - lo[k] + kDimerCellVacuum;
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) {
      io.latt_f2c[r][c] = r == c ? edge[r] : 0.0;
      io.latt_c2f[r][c] = r == c ? 1.0 / edge[r] : 0.0;
      io.latt_3x3[r][c] = io.latt_f2c[r][c];
    }
  }
  for (int k = 0; k < 3; ++k) {
    io.vector_a[k] = io.latt_f2c[k][0];
    io.vector_b[k] = io.latt_f2c[k][1];
    io.vector_c[k] = io.latt_f2c[k][2];
    io.latt_lengths[k] = edge[k];
    io.cell_latt[k] = edge[k];
    io.cell_latt[3 + k] = 90.0;
  }
  for (int m = 0; m < 2; ++m)
    for (int a = 0; a < io.mol_natoms[m]; ++a) io.coord_c2f(&io.mol_x[m][3 * a], &io.mol_x_s[m][3 * a]);
}

// An XYZ file of the dimer: molecule 1 as read, molecule 2 at `x2`, and the two
// markers U and V on the axis. The markers sit at molecule 2's original centre of
// mass in every file of a series.
void write_dimer_xyz(FileIO& io, const std::string& path, const double* x2, const double* axis, bool verbose) {
  if (verbose) std::printf(" Writing %s\n", path.c_str());
  FILE* fp = std::fopen(path.c_str(), "wt");
  if (fp == nullptr) TX_FATAL(txunit::fileio, -1, stderr, "Failed to open output file \"%s\"\n", path.c_str());
  const int n1 = io.mol_natoms[0];
  const int n2 = io.mol_natoms[1];
  std::fprintf(fp, "%d\nTAVIX generated xyz file\n", n1 + n2 + 2);
  const char* const row = "%-2s %9.4f %9.4f %9.4f\n";
  char symbol[3];
  for (int a = 0; a < n1; ++a) {
    io.find_element_name_from_index(io.mol_elem[0][a], symbol);
    const double* x = &io.mol_x[0][3 * a];
    std::fprintf(fp, row, symbol, x[0], x[1], x[2]);
  }
  for (int a = 0; a < n2; ++a) {
    io.find_element_name_from_index(io.mol_elem[1][a], symbol);
    std::fprintf(fp, row, symbol, x2[3 * a], x2[3 * a + 1], x2[3 * a + 2]);
  }
  double u[3], v[3];
  for (int k = 0; k < 3; ++k) {
    u[k] = io.mol_x_com[1][k] - 0.75 * axis[k];
    v[k] = u[k] + 1.5 * axis[k];
  }
  std::fprintf(fp, row, "U", u[0], u[1], u[2]);
  std::fprintf(fp, row, "V", v[0], v[1], v[2]);
  std::fclose(fp);
}

}  // namespace

void FileIO::dipole_tune(const std::vector<std::string>& files, const char* prefix, bool do_rotate,
                         bool do_displace, const double* axis, int dir, double ang_end, int ang_n, double disp_end,
                         int disp_n, bool write_xyz, bool verbose, const std::vector<double>& centre) {
  for (const char* line : dipole_gaussian_head) gaussian_head_lines.push_back(line);

  if (files.size() == 1) {
    if (verbose) std::printf(" Reading file %s\n", files[0].c_str());
    read_data_cif(files[0].c_str(), verbose);
    mol_input_mode = 2;
    read_crystal_strcuture_files(verbose, false);
  } else if (files.size() == 2) {
    mol_input_mode = 2;
    nmols_uc = 2;
    allocate_dimer_arrays(*this, files);
    for (int i = 0; i < 2; ++i) {
      if (verbose) std::printf(" Reading file %s\n", files[i].c_str());
      read_xyz_molecule(*this, i, files[i]);
    }
    set_dimer_cell(*this);
    // Two molecule files always give the XYZ series too.
    write_xyz = true;
  } else {
    TX_FATAL(txunit::fileio, 1, stdout, "No input file(s) are specified!\n");
  }

  const int shown = nmols_uc < 2 ? nmols_uc : 2;
  if (verbose) {
    std::printf(" Reading files OK\n");
    std::printf(" nmols_uc = %d\n", nmols_uc);
    std::printf(" natoms =");
    for (int i = 0; i < shown; ++i) std::printf(" %d", mol_natoms[i]);
    std::printf("\n");
  }

  if (verbose) std::printf(" Calculating COM...\n");
  for (int i = 0; i < nmols_uc; ++i) {
    mol_index[i] = i + 1;
    double mass = 0.0;
    double sum[3] = {0.0, 0.0, 0.0};
    for (int a = 0; a < mol_natoms[i]; ++a) {
      const double m = find_element_mass_from_index(mol_elem[i][a]);
      mass += m;
      for (int k = 0; k < 3; ++k) sum[k] += m * mol_x[i][3 * a + k];
    }
    if (!(mass > 0.0))
      TX_FATAL(txunit::fileio, -1, stderr, "Molecule %d has no atom of a known element and so no centre of mass\n",
               i + 1);
    mol_mass[i] = mass;
    for (int k = 0; k < 3; ++k) mol_x_com[i][k] = sum[k] / mass;
  }
  if (verbose)
    for (int i = 0; i < shown; ++i)
      std::printf(" COM %d = %g %g %g\n", i + 1, mol_x_com[i][0], mol_x_com[i][1], mol_x_com[i][2]);

  if (nmols_uc != 2) return;

  // The output array: molecule 1 first, then molecule 2. Molecule 1's half holds
  // its fractional coordinates (latt_c2f applied to mol_x) once for the whole
  // series, so that every CIF file shows the complete dimer.
  const int n1 = mol_natoms[0];
  const int n2 = mol_natoms[1];
  const int natoms = n1 + n2;
  std::vector<int> types(natoms);
  for (int a = 0; a < n1; ++a) types[a] = mol_elem[0][a];
  for (int a = 0; a < n2; ++a) types[n1 + a] = mol_elem[1][a];
  std::vector<double> out(3 * static_cast<size_t>(natoms));
  for (int a = 0; a < n1; ++a) coord_c2f(&mol_x[0][3 * a], &out[3 * a]);
  double* out2 = &out[3 * static_cast<size_t>(n1)];

  double u[3];
  if (axis != nullptr) {
    // Taken as it stands, not normalised: a longer vector scales the steps.
    for (int k = 0; k < 3; ++k) u[k] = axis[k];
  } else {
    if (dir < 0 || dir > 2)
      TX_FATAL(txunit::fileio, -1, stderr, "Principal axis direction %d is not 0, 1 or 2\n", dir);
    double total = 0.0;
    double sum[3] = {0.0, 0.0, 0.0};
    for (int i = 0; i < 2; ++i) {
      for (int a = 0; a < mol_natoms[i]; ++a) {
        const double m = find_element_mass_from_index(mol_elem[i][a]);
        total += m;
        for (int k = 0; k < 3; ++k) sum[k] += m * mol_x[i][3 * a + k];
      }
    }
    double c[3];
    for (int k = 0; k < 3; ++k) c[k] = sum[k] / total;
    // The off-diagonal sums keep a positive sign, and the tensor is divided by the
    // atom count: the axes of the whole system rest on this form.
    double t[3][3] = {{0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}};
    for (int i = 0; i < 2; ++i) {
      for (int a = 0; a < mol_natoms[i]; ++a) {
        const double m = find_element_mass_from_index(mol_elem[i][a]);
        const double dx = mol_x[i][3 * a] - c[0];
        const double dy = mol_x[i][3 * a + 1] - c[1];
        const double dz = mol_x[i][3 * a + 2] - c[2];
        t[0][0] += m * (dy * dy + dz * dz);
        t[1][1] += m * (dx * dx + dz * dz);
        t[2][2] += m * (dx * dx + dy * dy);
        t[0][1] += m * dx * dy;
        t[0][2] += m * dx * dz;
        t[1][2] += m * dy * dz;
      }
    }
    t[1][0] = t[0][1];
    t[2][0] = t[0][2];
    t[2][1] = t[1][2];
    for (int r = 0; r < 3; ++r)
      for (int k = 0; k < 3; ++k) t[r][k] /= natoms;
    double eigval[3];
    double eigvec[3][3];
    int nrot = 0;
    jacobi_nr(t, 3, eigval, eigvec, &nrot);
    // Rows of the transposed matrix are the eigenvectors.
    transpose_matrix(eigvec);
    if (verbose)
      for (int r = 0; r < 3; ++r)
        std::printf(" Eigen vector #%d: %12g %12g %12g\n", r, eigvec[r][0], eigvec[r][1], eigvec[r][2]);
    for (int k = 0; k < 3; ++k) u[k] = eigvec[dir][k];
    std::printf(" Rotating principal axle direction: %d\n", dir);
  }
  std::printf(" Rotating axle unit vector: %8.5g %8.5g %8.5g\n", u[0], u[1], u[2]);

  double c[3];
  for (int k = 0; k < 3; ++k) c[k] = centre.size() == 3 ? centre[k] : mol_x_com[1][k];

  // Molecule 2 as written in the current step, Cartesian.
  std::vector<double> moved(3 * static_cast<size_t>(n2));

  if (do_rotate) {
    const double ang_delta = series_step(ang_end, ang_n);
    std::printf(" Rotate ang_n: %d\n", ang_n);
    std::printf(" Rotate ang_end: %g\n", ang_end);
    std::printf(" Rotate ang_delta: %g\n", ang_delta);
    std::vector<double> relative(3 * static_cast<size_t>(n2));
    for (int a = 0; a < n2; ++a)
      for (int k = 0; k < 3; ++k) relative[3 * a + k] = mol_x[1][3 * a + k] - c[k];
    for (int step = 1; step <= ang_n; ++step) {
      const double ang = step * ang_delta;
      double r[3][3];
      rot_matrix_from_dir_vector_and_angle(r, u, ang);
      mat_vec_mul_n(r, relative.data(), moved.data(), n2);
      for (int a = 0; a < n2; ++a) {
        for (int k = 0; k < 3; ++k) moved[3 * a + k] += c[k];
        coord_c2f(&moved[3 * a], &out2[3 * a]);
      }
      const std::string cif =
          axis ? format_string(rot_cif_given, prefix, ang) : format_string(rot_cif_principal, prefix, dir, ang);
      if (verbose) std::printf(" Writing %s\n", cif.c_str());
      write_data_cif(cif.c_str(), natoms, types.data(), out.data());
      if (write_xyz) {
        const std::string xyz =
            axis ? format_string(rot_xyz_given, prefix, ang) : format_string(rot_xyz_principal, prefix, dir, ang);
        // Printed whatever `verbose` says, and once more by the writer under
        // `verbose`, while the displacement series names its files under `verbose`
        // only. The asymmetry is deliberate: it is the established progress output.
        std::printf(" Writing %s\n", xyz.c_str());
        write_dimer_xyz(*this, xyz, moved.data(), u, verbose);
      }
    }
  }

  if (do_displace) {
    const double disp_dr = series_step(disp_end, disp_n);
    std::printf(" Displace disp_n: %d\n", disp_n);
    std::printf(" Displace disp_delta: %g\n", disp_end);
    std::printf(" Displace disp_dr: %g\n", disp_dr);
    for (int step = 1; step <= disp_n; ++step) {
      const double dist = step * disp_dr;
      for (int a = 0; a < n2; ++a) {
        for (int k = 0; k < 3; ++k) moved[3 * a + k] = mol_x[1][3 * a + k] + dist * u[k];
        coord_c2f(&moved[3 * a], &out2[3 * a]);
      }
      const std::string cif =
          axis ? format_string(disp_cif_given, prefix, dist) : format_string(disp_cif_principal, prefix, dir, dist);
      if (verbose) std::printf(" Writing %s\n", cif.c_str());
      write_data_cif(cif.c_str(), natoms, types.data(), out.data());
      if (write_xyz) {
        const std::string xyz = format_string(disp_xyz, prefix, dir, dist);
        if (verbose) std::printf(" Writing %s\n", xyz.c_str());
        write_dimer_xyz(*this, xyz, moved.data(), u, verbose);
      }
    }
  }
}
