// FileIO: the CIF reader and the parser of symmetry operators.
//
// The reader is deliberately no general CIF parser. It scans trimmed lines,
// finds tags by substring anywhere in a line, knows three kinds of loop
// (symmetry, atoms, bonds) with their own, rather abrupt, ends, and stops for
// good after the atom loop. Which files work is decided by those rules, and
// the neighbor lists and unique-molecule tables of finished runs depend on
// them, so they are kept as they are. Where a file falls into one of the
// known traps, a WARNING on standard error tells the user how to fix it; the
// results themselves do not change.
#include <locale.h>
#include <stdlib.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <locale>
#include <sstream>
#include <string>
#include <vector>

#include "fileio.h"

namespace {

// ---- numbers ------------------------------------------------------------------

// ---- small text tests -----------------------------------------------------------

bool contains(const std::string& s, const char* tag) { return s.find(tag) != std::string::npos; }

bool starts_with(const std::string& s, const char* prefix) { return s.compare(0, std::strlen(prefix), prefix) == 0; }

std::string trimmed(const std::string& line) {
  std::string s = line;
  trim(s);
  return s;
}

// Atom and bond rows split at blanks, tabs and line ends; quotes mean nothing.
const char* const kRowDelims = " \t\r\n";
constexpr size_t kMinRowTokens = 5;

// The cell tags and the element of cell_latt each one sets, in test order.
struct CellTag {
  const char* tag;
  int index;
};
const CellTag kCellTags[] = {
    {"_cell_length_a", 0},   {"_cell_length_b", 1},  {"_cell_length_c", 2},
    {"_cell_angle_alpha", 3}, {"_cell_angle_beta", 4}, {"_cell_angle_gamma", 5},
};

const char* const kSpaceGroupNameTags[] = {
    "_symmetry_space_group_name_H-M_alt",
    "_symmetry_space_group_name_H-M",
    "_space_group_name_H-M_alt",
};

// Column numbers of a loop header are 1-based; 0 means "not present".
struct AtomColumns {
  int label = 0;
  int type_symbol = 0;
  int fract_x = 0;
  int fract_y = 0;
  int fract_z = 0;
};

// ---- the line scan ----------------------------------------------------------------

// Walks the lines of one crystal file and fills the text part of the object:
// names, cell, operators, the atom and bond columns. Numbers for the atoms are
// made afterwards by read_data_cif.
class CifScan {
 public:
  CifScan(FileIO& io, const std::vector<std::string>& lines, const std::string& path)
      : io_(io), lines_(lines), path_(path) {}

  void run();

  int fract_columns() const { return fract_columns_; }
  int atom_loop_line() const { return atom_loop_line_; }
  int short_row_line() const { return short_row_line_; }
  const char* short_row_column() const { return short_row_column_; }
  int short_row_tokens() const { return short_row_tokens_; }

 private:
  void scan_line(size_t at);
  void open_loop(size_t at);
  void read_symmetry_loop(size_t at);
  void read_atom_loop(size_t at);
  void read_bond_loop(size_t at);
  [[noreturn]] void not_enough_columns(const std::string& row);
  void append_atom_row(const std::vector<std::string>& tokens, const AtomColumns& cols, size_t at);
  size_t nlines() const { return lines_.size(); }
  static int line_number(size_t at) { return static_cast<int>(at) + 1; }

  FileIO& io_;
  const std::vector<std::string>& lines_;
  const std::string& path_;
  size_t next_ = 0;      // index of the line the main scan looks at next
  bool done_ = false;    // the atom loop, or the end of the file inside a loop, ends the scan
  int fract_columns_ = 0;
  int atom_loop_line_ = 0;       // 1-based line of the loop_ of the atom loop read
  int short_row_line_ = 0;       // first atom row that lacked a recorded column
  const char* short_row_column_ = "";
  int short_row_tokens_ = 0;
};

void CifScan::run() {
  while (!done_ && next_ < nlines()) scan_line(next_++);
}

void CifScan::scan_line(size_t at) {
  std::string line = trimmed(lines_[at]);
  if (line.empty() || line[0] == '#' || line[0] == ';') return;
  if (line.size() >= 5 && iequals(line.substr(0, 5), "data_")) {
    io_.identifier = line.substr(5);
    return;
  }
  // Only a blank separates tag and value: a tab leaves the value empty.
  const size_t blank = line.find(' ');
  const std::string value = blank == std::string::npos ? std::string() : line.substr(blank + 1);

  if (contains(line, "_chemical_name_common")) {
    std::string name = value;
    sg_trimr(sg_triml(name));
    io_.chemical_name = name;
    if (io_.identifier.empty()) io_.identifier = name;
    return;
  }
  if (contains(line, "_space_group_IT_number")) {
    io_.spacegroup_number = leading_int(value);
    return;
  }
  for (const char* tag : kSpaceGroupNameTags) {
    if (contains(line, tag)) {
      std::string name = value;
      io_.spacegroup_name = trim(name);
      return;
    }
  }
  for (const CellTag& cell : kCellTags) {
    if (contains(line, cell.tag)) {
      // strtod stops at a standard uncertainty: 5.1234(5) gives 5.1234.
      io_.cell_latt[cell.index] = strtod_c(value);
      return;
    }
  }
  if (contains(line, "loop_")) open_loop(at);
}

// The first header line alone decides what a loop is. "_atom_site" also
// matches "_atom_site_aniso_..." and "_geom_bond_atom_site_label_1": such
// loops are read as atom loops that lack columns and are passed over. The
// anisotropic table therefore never gets a reader of its own.
void CifScan::open_loop(size_t at) {
  const size_t head = at + 1;
  if (head >= nlines()) {
    next_ = head;
    return;
  }
  const std::string header = trimmed(lines_[head]);
  if (contains(header, "_symmetry") || contains(header, "_space_group")) {
    read_symmetry_loop(at);
  } else if (contains(header, "_atom_site")) {
    read_atom_loop(at);
  } else if (contains(header, "_geom_bond") || contains(header, "_ccdc_geom")) {
    read_bond_loop(at);
  } else {
    // Any other loop: only its first header is dropped; the rest of it falls
    // through the main scan as ordinary lines.
    next_ = head + 1;
  }
}

// The table ends only at a blank line or a tag line. A "loop_" right behind
// the last operator is taken as a row, and the loop it should open is lost.
// Deliberate: the outcome of published files read so far rests on it; users
// end the table with a blank line, and a warning tells them so.
void CifScan::read_symmetry_loop(size_t at) {
  bool has_id = false;
  bool has_op = false;
  size_t k = at + 1;
  for (; k < nlines(); ++k) {
    const std::string header = trimmed(lines_[k]);
    if (header.empty() || header[0] != '_') break;
    if (contains(header, "_symmetry_equiv_pos_site_id") || contains(header, "_space_group_symop_id")) has_id = true;
    if (contains(header, "_symmetry_equiv_pos_as_xyz") || contains(header, "_space_group_symop_operation_xyz"))
      has_op = true;
  }
  if (!has_op) {
    next_ = k + 1;  // the first row goes with the headers
    return;
  }
  std::string op;  // with an id column, a row without a blank repeats the last operator
  for (; k < nlines(); ++k) {
    const std::string row = trimmed(lines_[k]);
    if (row.empty()) break;
    if (has_id) {
      const size_t blank = row.find(' ');
      if (blank != std::string::npos) op = row.substr(blank + 1);
    } else {
      op = row;
    }
    if (row[0] == '_') break;
    if (starts_with(row, "loop_"))
      std::fprintf(stderr,
                   "WARNING: %s line %d: 'loop_' read as a symmetry operator; "
                   "end the symmetry table with a blank line\n",
                   path_.c_str(), line_number(k));
    sg_trim(op);
    if (!op.empty()) io_.symmetry_ops.push_back(op);
  }
  next_ = k;
}

void CifScan::read_atom_loop(size_t at) {
  AtomColumns cols;
  int column = 1;
  size_t k = at + 1;
  for (; k < nlines(); ++k, ++column) {
    const std::string header = trimmed(lines_[k]);
    if (header.empty() || header[0] != '_') break;
    if (contains(header, "_atom_site_label")) {
      cols.label = column;
    } else if (contains(header, "_atom_site_type_symbol")) {
      cols.type_symbol = column;
    } else if (contains(header, "_atom_site_fract_x")) {
      cols.fract_x = column;
      ++fract_columns_;
    } else if (contains(header, "_atom_site_fract_y")) {
      cols.fract_y = column;
      ++fract_columns_;
    } else if (contains(header, "_atom_site_fract_z")) {
      cols.fract_z = column;
      ++fract_columns_;
    }
    // Occupancy, ADP type and isotropic displacements are not used: all
    // sites of a disordered structure are taken.
  }

  if (!cols.label || !cols.type_symbol || !cols.fract_x || !cols.fract_y || !cols.fract_z) {
    // A loop that holds neither a type nor a fractional column (anisotropic
    // parameters, geometry lists) is no atom list and passes silently.
    if (cols.type_symbol || cols.fract_x || cols.fract_y || cols.fract_z) {
      std::string missing;
      if (!cols.label) missing += " _atom_site_label";
      if (!cols.type_symbol) missing += " _atom_site_type_symbol";
      if (!cols.fract_x) missing += " _atom_site_fract_x";
      if (!cols.fract_y) missing += " _atom_site_fract_y";
      if (!cols.fract_z) missing += " _atom_site_fract_z";
      std::fprintf(stderr, "WARNING: %s line %d: atom loop skipped for want of a column; add the column(s)%s\n",
                   path_.c_str(), line_number(at), missing.c_str());
    }
    next_ = k;
    return;
  }

  atom_loop_line_ = line_number(at);
  done_ = true;  // nothing after the atom loop is read
  if (k >= nlines()) return;

  std::vector<std::string> tokens;
  std::string row = trimmed(lines_[k]);
  while (true) {
    // Rows stay strings of any length: no fixed line buffer to overrun.
    tokenize(tokens, row, kRowDelims);
    if (tokens.size() < kMinRowTokens) not_enough_columns(row);
    append_atom_row(tokens, cols, k);
    if (++k >= nlines()) return;
    row = trimmed(lines_[k]);
    if (row.empty() || row[0] == ';' || row[0] == '#' || starts_with(row, "loop_")) return;
  }
}

// A token goes to its column only if the row is long enough; columns of
// unequal length are noted so that read_data_cif can stop before reading
// past one of them.
void CifScan::append_atom_row(const std::vector<std::string>& tokens, const AtomColumns& cols, size_t at) {
  struct Target {
    int column;
    std::vector<std::string>* store;
    const char* name;
  };
  const Target targets[] = {
      {cols.label, &io_.atoms.label, "_atom_site_label"},
      {cols.type_symbol, &io_.atoms.type_symbol, "_atom_site_type_symbol"},
      {cols.fract_x, &io_.atoms.fract_x, "_atom_site_fract_x"},
      {cols.fract_y, &io_.atoms.fract_y, "_atom_site_fract_y"},
      {cols.fract_z, &io_.atoms.fract_z, "_atom_site_fract_z"},
  };
  for (const Target& t : targets) {
    if (static_cast<size_t>(t.column) <= tokens.size()) {
      t.store->push_back(tokens[t.column - 1]);
    } else if (short_row_line_ == 0 && t.store != &io_.atoms.label) {  // fewer labels only mean fewer atoms
      short_row_line_ = line_number(at);
      short_row_column_ = t.name;
      short_row_tokens_ = static_cast<int>(tokens.size());
    }
  }
}

// Read only when it stands before the atom loop. Its rows end at "loop_" or
// the end of the file and nowhere else: a blank line behind the table is a
// row without columns.
void CifScan::read_bond_loop(size_t at) {
  int cols[5] = {0, 0, 0, 0, 0};
  const char* const tags[5] = {"_geom_bond_atom_site_label_1", "_geom_bond_atom_site_label_2", "_geom_bond_distance",
                               "_geom_bond_site_symmetry_2", "_ccdc_geom_bond_type"};
  int column = 1;
  size_t k = at + 1;
  for (; k < nlines(); ++k, ++column) {
    const std::string header = trimmed(lines_[k]);
    if (header.empty() || header[0] != '_') break;
    for (int c = 0; c < 5; ++c) {
      if (contains(header, tags[c])) {
        cols[c] = column;
        break;
      }
    }
  }
  if (k >= nlines()) {
    done_ = true;
    return;
  }
  for (int c : cols) {
    if (c == 0) {
      // Back one line, onto the last header; never back onto the loop_ line,
      // which would open the same loop again.
      next_ = k - 1 > at ? k - 1 : k;
      return;
    }
  }

  std::vector<std::string>* const stores[5] = {&io_.bonds.atom_site_label_1, &io_.bonds.atom_site_label_2,
                                               &io_.bonds.distance, &io_.bonds.site_symmetry_2,
                                               &io_.bonds.bond_type};
  std::vector<std::string> tokens;
  while (true) {
    const std::string row = trimmed(lines_[k]);
    if (starts_with(row, "loop_")) {
      next_ = k;
      return;
    }
    tokenize(tokens, row, kRowDelims);
    if (tokens.size() < kMinRowTokens) not_enough_columns(row);
    for (int c = 0; c < 5; ++c) {
      if (static_cast<size_t>(cols[c]) <= tokens.size()) stores[c]->push_back(tokens[cols[c] - 1]);
    }
    if (++k >= nlines()) {
      done_ = true;
      return;
    }
  }
}

void CifScan::not_enough_columns(const std::string& row) {
  TX_FATAL(txunit::fileio, -1, stdout, "Not enough columns: %s\nAt least 5 columns are expected!\n", row.c_str());
}

// ---- after the scan -----------------------------------------------------------------

// The verbose prints of the first and last atom show the five text columns of a row.
void print_atom_row(const Atoms& atoms, size_t row) {
  std::printf("%s %s %s %s %s\n", atoms.label[row].c_str(), atoms.type_symbol[row].c_str(),
              atoms.fract_x[row].c_str(), atoms.fract_y[row].c_str(), atoms.fract_z[row].c_str());
}

}  // namespace

// ---- read_data_cif --------------------------------------------------------------------

void FileIO::read_data_cif(const char* path, bool verbose) {
  std::vector<std::string> lines;
  {
    std::ifstream in(path);
    if (!in.is_open()) TX_FATAL(txunit::fileio, -1, stderr, "Failed to open input file \"%s\"\n", path);
    std::string line;
    while (std::getline(in, line)) lines.push_back(line);
  }
  crystal_file = path;
  if (verbose) std::printf("Reading crystal file \"%s\"... \n", path);

  CifScan scan(*this, lines, crystal_file);
  scan.run();

  if (verbose) {
    std::printf("  Identifier: %s\n", identifier.c_str());
    std::printf("  Spacegroup name: %s\n", spacegroup_name.c_str());
    std::printf("  Spacegroup operations: \n");
    for (const std::string& op : symmetry_ops) std::printf("    %s\n", op.c_str());
    print_cell_latt();
  }

  convert_cell6_to_latt3x3(cell_latt, latt_f2c);

  // A row shorter than the highest recorded column leaves the columns of
  // unequal length; reading every label's row would then run past the end of
  // a shorter column. Stop here instead, naming the row.
  const size_t natoms = atoms.label.size();
  if (atoms.type_symbol.size() < natoms || atoms.fract_x.size() < natoms || atoms.fract_y.size() < natoms ||
      atoms.fract_z.size() < natoms) {
    TX_FATAL(txunit::fileio, -1, stderr, "Failed to read '%s' line %d: the atom row has %d columns, none for %s\n",
             path, scan.short_row_line(), scan.short_row_tokens(), scan.short_row_column());
  }
  if (natoms > static_cast<size_t>(INT_MAX / 3)) TX_FATAL(txunit::fileio, -1, stderr, "Too many atoms in '%s'\n", path);
  cif_natoms = static_cast<int>(natoms);

  if (verbose) {
    std::printf("  natoms_cif = %d\n", cif_natoms);
    if (cif_natoms > 0) {  // no row to show for an empty atom list
      std::printf("  First atom: ");
      print_atom_row(atoms, 0);
      std::printf("  ...\n");
      std::printf("  Last  atom: ");
      print_atom_row(atoms, natoms - 1);
    }
  }

  release_crystal_arrays();
  cif_atypes = new int[cif_natoms];
  cif_radii = new double[cif_natoms];
  cif_x_s = new double[3 * natoms];
  cif_x = new double[3 * natoms];
  // Only the type symbol names the element, never the label.
  for (int i = 0; i < cif_natoms; ++i) {
    cif_atypes[i] = find_element_index_from_name(atoms.type_symbol[i]);
    cif_radii[i] = find_element_radius_from_name(atoms.type_symbol[i]);
  }

  const int fractional = scan.fract_columns();
  for (int i = 0; i < cif_natoms; ++i) {
    double* xyz = fractional ? &cif_x_s[3 * i] : &cif_x[3 * i];
    xyz[0] = strtod_c(atoms.fract_x[i]);
    xyz[1] = strtod_c(atoms.fract_y[i]);
    xyz[2] = strtod_c(atoms.fract_z[i]);
    // The atom loop demands fractional columns, so the Cartesian way is not
    // reached from a file; it stays for the contract of make_spacegroup_P1.
    if (fractional)
      coord_f2c(&cif_x_s[3 * i], &cif_x[3 * i]);
    else
      coord_c2f(&cif_x[3 * i], &cif_x_s[3 * i]);
  }

  make_spacegroup_P1(fractional);

  for (int i = 0; i < cif_natoms; ++i) {
    if (fractional)
      coord_f2c(&cif_x_s[3 * i], &cif_x[3 * i]);
    else
      coord_c2f(&cif_x[3 * i], &cif_x_s[3 * i]);
  }

  if (cif_natoms == 0) {
    if (natoms == 0) {
      const int last = lines.empty() ? 1 : static_cast<int>(lines.size());
      std::fprintf(stderr,
                   "WARNING: %s line %d: no atoms were read; the file needs one loop with _atom_site_label, "
                   "_atom_site_type_symbol, _atom_site_fract_x, _atom_site_fract_y and _atom_site_fract_z\n",
                   path, last);
    } else {
      const int where = scan.atom_loop_line() > 0 ? scan.atom_loop_line() : static_cast<int>(lines.size());
      std::fprintf(stderr,
                   "WARNING: %s line %d: no symmetry operator was read, so the expansion leaves no atoms; "
                   "list the operators in a _symmetry_equiv_pos_as_xyz loop, or name the space group P1\n",
                   path, where);
    }
  }

  separate_cif_molecules(verbose);

  structure_read = 1;
  if (verbose) std::printf("Crystal file %s parsing done.\n", path);
}

// ---- ParseTransformString -------------------------------------------------------------

// Turns one operator such as "-x+1/2, y, z" into a matrix row and a
// translation per field. Its sign rules are odd on purpose and stored
// structures depend on them: a sign is applied to a fraction and to a number
// that starts with "." or "0", never to a whole number that stands alone, so
// "-x+1" and "-x-1" both give the translation +1, which wraps to 0.
void FileIO::ParseTransformString(const std::string& op, double rot[3][3], double* trans) {
  const bool has_comma = op.find(',') != std::string::npos;
  const bool has_blank = op.find(' ') != std::string::npos;

  if (!has_comma && has_blank) {
    // Twelve numbers, row by row, each row's translation last. Only direct
    // calls get here: file operators have lost their inner blanks to sg_trim.
    std::istringstream in(op);
    in.imbue(std::locale::classic());
    for (int r = 0; r < 3; ++r) in >> rot[r][0] >> rot[r][1] >> rot[r][2] >> trans[r];
  } else if (has_comma) {
    const std::string text = RemoveWhiteSpaceUnderscore(op);
    std::vector<std::string> fields;
    size_t start = 0;
    while (fields.size() < 3) {
      const size_t comma = text.find(',', start);
      fields.push_back(text.substr(start, comma == std::string::npos ? std::string::npos : comma - start));
      if (comma == std::string::npos) break;
      start = comma + 1;
    }

    double numerator = 0.0;  // once per operator, not per field
    for (size_t r = 0; r < fields.size(); ++r) {
      const char* const field = fields[r].c_str();
      const char* const stop = field + fields[r].size();
      bool negative = false;
      bool fraction = false;
      const char* p = field;
      while (p < stop) {
        const char c = *p;
        if (c == '+') {
          negative = false;
          ++p;
        } else if (c == '-') {
          negative = true;
          ++p;
        } else if (c == '/') {
          fraction = true;
          ++p;
        } else if (c == '.' || c == '0') {
          char* end = nullptr;
          const double v = strtod_c(p, &end);
          trans[r] = negative ? -v : v;
          // A lone "." is no number; step over it rather than stand still.
          p = end > p ? end : p + 1;
        } else if (c >= '1' && c <= '9') {
          char* end = nullptr;
          const double v = strtod_c(p, &end);
          trans[r] = v;
          if (fraction) {
            fraction = false;
            trans[r] = numerator / v;
            if (negative) trans[r] = -trans[r];
          } else {
            numerator = v;
          }
          p = end > p ? end : p + 1;
        } else if (c == 'x' || c == 'X') {
          rot[r][0] = negative ? -1.0 : 1.0;
          ++p;
        } else if (c == 'y' || c == 'Y') {
          rot[r][1] = negative ? -1.0 : 1.0;
          ++p;
        } else if (c == 'z' || c == 'Z') {
          rot[r][2] = negative ? -1.0 : 1.0;
          ++p;
        } else {
          ++p;
        }
      }
    }
  }
  // Without comma and blank (the bogus operator "loop_" among them) the
  // matrix stays zero: every atom lands on the origin.

  for (int k = 0; k < 3; ++k) {
    if (trans[k] < 0.0) {
      trans[k] += 1.0;
    } else if (trans[k] >= 1.0) {
      trans[k] -= 1.0;
    }
  }
}
