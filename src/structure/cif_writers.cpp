// FileIO: the CIF writers. Every CIF this engine writes is a P1 cell with the
// same head; the writers differ only in their coordinate columns, the columns
// behind them and the rows.
#include <cstdio>
#include <ctime>
#include <functional>
#include <string>

#include "fileio.h"
#include "structure_output.h"

namespace structure_output {

// Local date of the run, the creation date of CIF and PDB files.
std::string creation_date() {
  const std::time_t now = std::time(nullptr);
  const std::tm* t = std::localtime(&now);
  char text[64];
  std::snprintf(text, sizeof text, "%4d-%02d-%02d", t->tm_year + 1900, t->tm_mon + 1, t->tm_mday);
  return text;
}

// Open failure of the CIF writers and write_supercell_pdb: position line, then
// the message, status -1.
FILE* open_output_or_fatal(const char* path) {
  FILE* fp = std::fopen(path, "w");
  if (fp == nullptr) TX_FATAL(txunit::fileio, -1, stdout, "Failed to open output file %s\n", path);
  return fp;
}

// The cells of an na x nb x nc supercell in writing order: the third repeat
// outermost, then the second, then the first. A thin film keeps only the
// cells 0 .. thinfilm_ncell-1 along its normal thinfilm_dir; a thinfilm_dir
// outside 0..2 names no axis, and then nothing is cut.
void for_each_supercell_cell(const FileIO& io, int na, int nb, int nc, const std::function<void(int, int, int)>& body) {
  const bool film = io.thinfilm_flag && io.thinfilm_dir >= 0 && io.thinfilm_dir <= 2;
  for (int k = 0; k < nc; ++k) {
    for (int j = 0; j < nb; ++j) {
      for (int i = 0; i < na; ++i) {
        const int index[3] = {i, j, k};
        if (film && (index[io.thinfilm_dir] >= io.thinfilm_ncell || index[io.thinfilm_dir] < 0)) continue;
        body(i, j, k);
      }
    }
  }
}

}  // namespace structure_output

namespace {

// ---- the head -----------------------------------------------------------------

const char* const cif_symmetry_lines[] = {
    "_symmetry_space_group_name_H-M    'P1'\n",
    "_symmetry_Int_Tables_number       1\n",
    "_symmetry_cell_setting            triclinic\n",
    "loop_\n",
    "_symmetry_equiv_pos_as_xyz\n",
    "  x,y,z\n",
};

const char* const cif_cell_formats[6] = {
    "_cell_length_a                    %.4f\n",
    "_cell_length_b                    %.4f\n",
    "_cell_length_c                    %.4f\n",
    "_cell_angle_alpha                 %.4f\n",
    "_cell_angle_beta                  %.4f\n",
    "_cell_angle_gamma                 %.4f\n",
};

const char* const cif_atom_loop_lines[] = {
    "loop_\n",
    "_atom_site_label\n",
    "_atom_site_type_symbol\n",
};

// The coordinate columns and what stands behind them.
struct CifColumns {
  const char* const* lines;
  int count;
};

const char* const cif_fract_lines[] = {"_atom_site_fract_x\n", "_atom_site_fract_y\n", "_atom_site_fract_z\n"};
const char* const cif_cartn_lines[] = {"_atom_site_Cartn_x\n", "_atom_site_Cartn_y\n", "_atom_site_Cartn_z\n"};
const char* const cif_description_lines[] = {"_atom_site_description\n"};
const char* const cif_adp_lines[] = {"_atom_site_U_iso_or_equiv\n", "_atom_site_adp_type\n", "_atom_site_occupancy\n"};

const CifColumns kFract = {cif_fract_lines, 3};
const CifColumns kCartn = {cif_cartn_lines, 3};
const CifColumns kDescription = {cif_description_lines, 1};
const CifColumns kAdp = {cif_adp_lines, 3};

// ---- the rows -----------------------------------------------------------------

const char* const cif_molecule_row = "%-5s %2s %10.6f %10.6f %10.6f  %d\n";
const char* const cif_adp_row = "%-5s %2s %10.6f %10.6f %10.6f  0.00000  Uiso   1.00\n";
const char* const cif_mol_one_row = "%-6s %2s %10.6f %10.6f %10.6f  %d\n";

void print_lines(FILE* fp, const char* const* lines, int count) {
  for (int i = 0; i < count; ++i) std::fputs(lines[i], fp);
}

// Head of every CIF written here. `repeat` scales a, b and c for a supercell.
void write_cif_head(FILE* fp, const std::string& identifier, const double cell[6], const int repeat[3],
                    const CifColumns& coordinates, const CifColumns& behind) {
  const double scale[3] = {static_cast<double>(repeat[0]), static_cast<double>(repeat[1]),
                           static_cast<double>(repeat[2])};
  structure_output::write_p1_cif_head(fp, identifier, structure_output::creation_date(), cell, scale);
  print_lines(fp, coordinates.lines, coordinates.count);
  print_lines(fp, behind.lines, behind.count);
}

const int kOneCell[3] = {1, 1, 1};

struct AtomText {
  char symbol[3];
  char label[32];
};

// Symbol without trailing blank, and the label: symbol and running number glued.
AtomText atom_text(FileIO& io, int type, int number) {
  AtomText t;
  io.find_element_name_from_index(type, t.symbol);
  std::snprintf(t.label, sizeof t.label, "%s%d", t.symbol, number);
  return t;
}

// The rows of write_data_cif, labels numbered from 1.
void write_adp_rows(FILE* fp, FileIO& io, int natoms, const int* types, const double* x) {
  for (int i = 0; i < natoms; ++i) {
    const AtomText t = atom_text(io, types[i], i + 1);
    std::fprintf(fp, cif_adp_row, t.label, t.symbol, x[3 * i], x[3 * i + 1], x[3 * i + 2]);
  }
}

}  // namespace

void FileIO::write_data_cif(const char* path, bool fractional) {
  FILE* fp = structure_output::open_output_or_fatal(path);
  write_cif_head(fp, identifier, cell_latt, kOneCell, fractional ? kFract : kCartn, kAdp);
  write_adp_rows(fp, *this, cif_natoms, cif_atypes, fractional ? cif_x_s : cif_x);
  std::fclose(fp);
}

void FileIO::write_data_cif(const char* path, int natoms, int* types, double* x_s) {
  FILE* fp = structure_output::open_output_or_fatal(path);
  write_cif_head(fp, identifier, cell_latt, kOneCell, kFract, kAdp);
  write_adp_rows(fp, *this, natoms, types, x_s);
  std::fclose(fp);
}

// Labels run through all molecules; the last column is the molecule's number.
void FileIO::write_unitcell_cif(const char* path, int nmols, int* natoms, int** types, double** x_s) {
  FILE* fp = structure_output::open_output_or_fatal(path);
  write_cif_head(fp, identifier, cell_latt, kOneCell, kFract, kDescription);
  int label = 0;
  for (int m = 0; m < nmols; ++m) {
    for (int a = 0; a < natoms[m]; ++a) {
      const AtomText t = atom_text(*this, types[m][a], ++label);
      const double* x = &x_s[m][3 * a];
      std::fprintf(fp, cif_molecule_row, t.label, t.symbol, x[0], x[1], x[2], m + 1);
    }
  }
  std::fclose(fp);
}

// Labels run through the whole file; the last column is the molecule's number
// in its cell.
void FileIO::write_supercell_cif(const char* path, int nmols, int* natoms, int** types, double** x_s, int na, int nb,
                                 int nc) {
  FILE* fp = structure_output::open_output_or_fatal(path);
  const int repeat[3] = {na, nb, nc};
  write_cif_head(fp, identifier, cell_latt, repeat, kFract, kDescription);
  int label = 0;
  structure_output::for_each_supercell_cell(*this, na, nb, nc, [&](int i, int j, int k) {
    for (int m = 0; m < nmols; ++m) {
      for (int a = 0; a < natoms[m]; ++a) {
        const AtomText t = atom_text(*this, types[m][a], ++label);
        const double* x = &x_s[m][3 * a];
        std::fprintf(fp, cif_molecule_row, t.label, t.symbol, (i + x[0]) / na, (j + x[1]) / nb, (k + x[2]) / nc,
                     m + 1);
      }
    }
  });
  std::fclose(fp);
}

// Rows of one molecule placed in a cell enlarged `scale` times; the caller
// writes the head. The +1.0 moves cell -1 of a neighbor to the first third.
void FileIO::write_cif_mol_one(FILE* fp, int first, int natoms, int* types, double* x_s, double* shift, double scale,
                               int number) {
  if (natoms < 1) return;
  for (int a = 0; a < natoms; ++a) {
    const AtomText t = atom_text(*this, types[a], first + a + 1);
    const double* x = &x_s[3 * a];
    std::fprintf(fp, cif_mol_one_row, t.label, t.symbol, (x[0] + shift[0] + 1.0) / scale,
                 (x[1] + shift[1] + 1.0) / scale, (x[2] + shift[2] + 1.0) / scale, number);
  }
}

void structure_output::write_p1_cif_head(FILE* fp, const std::string& identifier, const std::string& date,
                                         const double cell[6], const double length_scale[3]) {
  std::fprintf(fp, "data_%s\n", identifier.c_str());
  std::fprintf(fp, "_audit_creation_date              %s\n", date.c_str());
  std::fprintf(fp, "_audit_creation_method            '%s'\n", "TAVIX");
  print_lines(fp, cif_symmetry_lines, sizeof cif_symmetry_lines / sizeof cif_symmetry_lines[0]);
  for (int k = 0; k < 6; ++k) std::fprintf(fp, cif_cell_formats[k], k < 3 ? cell[k] * length_scale[k] : cell[k]);
  print_lines(fp, cif_atom_loop_lines, sizeof cif_atom_loop_lines / sizeof cif_atom_loop_lines[0]);
}
