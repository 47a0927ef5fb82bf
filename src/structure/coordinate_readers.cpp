// FileIO: plain coordinate formats that fill the crystal arrays without any
// symmetry (XYZ, PDB, GROMACS gro), and the locator of the geometry inside a
// Gaussian input file.
//
// Short input is not an error here: atoms the file has no line for stay zeroed
// (element 0, origin), and a field beyond the end of its line reads as empty
// text, so nothing is read past a line or past the file.
#include <locale.h>

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "fileio.h"

namespace {

const std::string kNoLine;

// std::stod in the "C" locale, with its exceptions: std::invalid_argument when
// nothing converts, std::out_of_range when the value does not fit.
double stod_c(const std::string& text) {
  const char* begin = text.c_str();
  char* end = nullptr;
  errno = 0;
  const double value = strtod_c(begin, &end);
  if (end == begin) throw std::invalid_argument("stod");
  if (errno == ERANGE) throw std::out_of_range("stod");
  return value;
}

bool read_lines(const char* path, std::vector<std::string>& lines) {
  std::ifstream in(path);
  if (!in) return false;
  std::string line;
  while (std::getline(in, line)) lines.push_back(line);
  return true;
}

size_t text_bytes(const std::vector<std::string>& lines) {
  size_t bytes = 0;
  for (const std::string& line : lines) bytes += line.size() + 1;
  return bytes;
}

const std::string& line_at(const std::vector<std::string>& lines, size_t i) {
  return i < lines.size() ? lines[i] : kNoLine;
}

// Characters `pos` to `pos + len - 1` of the line, as far as the line goes.
std::string field(const std::string& line, size_t pos, size_t len) {
  return pos < line.size() ? line.substr(pos, len) : std::string();
}

// A fixed field trimmed the way the C-buffer helpers trim.
std::string c_trimmed(std::string text) {
  text.push_back('\0');
  c_trim(&text[0]);
  return std::string(text.c_str());
}

[[noreturn]] void open_failure(const char* path) {
  TX_FATAL(txunit::fileio, -1, stderr, "Failed to open input file \"%s\"\n", path);
}

// An atom count sizes the arrays before any atom is read: a count that a file
// of this size could not hold even at one byte per atom is refused.
void check_atom_count(const char* path, int line_number, int natoms, const std::vector<std::string>& lines) {
  const size_t bytes = text_bytes(lines);
  if (natoms < 0 || static_cast<size_t>(natoms) > bytes)
    TX_FATAL(txunit::fileio, 1, stderr, "Failed to read '%s' line %d: atom count %d does not fit a file of %zu bytes\n",
             path, line_number, natoms, bytes);
}

}  // namespace

void FileIO::read_data_xyz(const char* path, bool verbose) {
  std::vector<std::string> lines;
  if (!read_lines(path, lines)) open_failure(path);
  if (verbose) std::printf("Reading file \"%s\"... ", path);

  const int natoms = leading_int(line_at(lines, 0));
  check_atom_count(path, 1, natoms, lines);
  // Earlier crystal arrays all go, cif_x_s and cif_radii too, which this format
  // does not fill: none is left describing other atoms.
  release_crystal_arrays();
  cif_natoms = natoms;
  cif_atypes = new int[natoms]();
  cif_x = new double[3 * static_cast<size_t>(natoms)]();

  // Fields are separated by blanks only, repeated blanks counting as one; a tab
  // is part of a field, so a tab-separated row is one symbol with no numbers.
  std::vector<std::string> words;
  for (int i = 0; i < natoms; ++i) {
    if (static_cast<size_t>(i) + 2 >= lines.size()) break;  // a short file is not detected
    std::string line = lines[i + 2];
    split_to_words(triml(line), " ", words);
    if (words.empty()) continue;
    cif_atypes[i] = find_element_index_from_name(words[0]);
    for (int k = 0; k < 3 && k + 1 < static_cast<int>(words.size()); ++k) cif_x[3 * i + k] = strtod_c(words[k + 1]);
  }
}

void FileIO::read_data_pdb(const char* path, bool verbose) {
  std::vector<std::string> lines;
  if (!read_lines(path, lines)) open_failure(path);
  if (verbose) std::printf("Reading file \"%s\"... ", path);

  // Any line holding ATOM in any column is an atom, deliberately: HETATM records
  // are not, and a remark that mentions ATOM is. "HIATOM" is the program's own
  // second word and is matched by the first.
  std::vector<bool> is_atom(lines.size());
  int natoms = 0;
  for (size_t l = 0; l < lines.size(); ++l) {
    is_atom[l] = lines[l].find("ATOM") != std::string::npos || lines[l].find("HIATOM") != std::string::npos;
    if (is_atom[l]) ++natoms;
  }
  std::printf("  natoms = %d\n", natoms);
  release_crystal_arrays();
  cif_natoms = natoms;
  cif_atypes = new int[natoms]();
  cif_x_s = new double[3 * static_cast<size_t>(natoms)]();
  cif_x = new double[3 * static_cast<size_t>(natoms)]();

  int atom = 0;
  for (size_t l = 0; l < lines.size(); ++l) {
    const std::string& line = lines[l];
    if (line.find("CRYST1") != std::string::npos) {
      cell_latt[0] = strtod_c(c_trimmed(field(line, 6, 9)));
      cell_latt[1] = strtod_c(c_trimmed(field(line, 15, 9)));
      cell_latt[2] = strtod_c(c_trimmed(field(line, 24, 9)));
      cell_latt[3] = strtod_c(c_trimmed(field(line, 33, 7)));
      cell_latt[4] = strtod_c(c_trimmed(field(line, 40, 7)));
      cell_latt[5] = strtod_c(c_trimmed(field(line, 47, 7)));
      if (verbose) {
        print_cell_latt();
      }
    }
    if (is_atom[l]) {
      // The element is the front of the atom-name field, not the record's element
      // column: CA there is calcium, deliberately.
      cif_atypes[atom] = find_element_index_from_name(c_trimmed(field(line, 12, 2)));
      cif_x[3 * atom + 0] = strtod_c(c_trimmed(field(line, 30, 8)));
      cif_x[3 * atom + 1] = strtod_c(c_trimmed(field(line, 38, 8)));
      cif_x[3 * atom + 2] = strtod_c(c_trimmed(field(line, 46, 8)));
      ++atom;
    }
  }

  // Without a CRYST1 line the cell is zero and the matrices are not finite;
  // that is not reported.
  double latt[3][3];
  convert_cell6_to_latt3x3(cell_latt, latt);
  for (int i = 0; i < natoms; ++i) coord_c2f(cif_x + 3 * i, cif_x_s + 3 * i);
}

void FileIO::read_data_gro(const char* path, bool verbose) {
  std::vector<std::string> lines;
  if (!read_lines(path, lines)) open_failure(path);
  if (verbose) std::printf("Reading file \"%s\"... ", path);

  // std::stoi on purpose: a count that is no integer ends the process with
  // std::invalid_argument, one out of range with std::out_of_range.
  const int natoms = std::stoi(line_at(lines, 1));
  if (verbose) std::printf("  natoms = %d\n", natoms);
  check_atom_count(path, 2, natoms, lines);
  release_crystal_arrays();
  cif_natoms = natoms;
  cif_atypes = new int[natoms]();
  cif_x_s = new double[3 * static_cast<size_t>(natoms)]();
  cif_x = new double[3 * static_cast<size_t>(natoms)]();

  for (int i = 0; i < natoms; ++i) {
    if (static_cast<size_t>(i) + 2 >= lines.size()) break;  // a short file is not detected
    const std::string& line = lines[i + 2];
    if (verbose) std::printf("%s\n", line.c_str());
    // The element is the atom name cut at its first digit: C12 is carbon, and a
    // name that starts with a digit matches nothing.
    std::string name = c_trimmed(field(line, 10, 5));
    for (size_t k = 0; k < name.size(); ++k) {
      if (std::isdigit(static_cast<unsigned char>(name[k]))) {
        name.erase(k);
        break;
      }
    }
    cif_atypes[i] = find_element_index_from_name(c_trimmed(name));
    cif_x[3 * i + 0] = strtod_c(field(line, 20, 8)) * 10.0;  // nm -> angstrom
    cif_x[3 * i + 1] = strtod_c(field(line, 28, 8)) * 10.0;
    cif_x[3 * i + 2] = strtod_c(field(line, 36, 8)) * 10.0;
  }

  std::vector<std::string> words;
  split_to_words(line_at(lines, static_cast<size_t>(natoms) + 2), " \t", words);
  std::vector<double> box;
  for (const std::string& word : words) box.push_back(stod_c(word) * 10.0);  // nm -> angstrom
  if (box.size() >= 3) {
    latt_f2c[0][0] = box[0];
    latt_f2c[1][1] = box[1];
    latt_f2c[2][2] = box[2];
  }
  if (box.size() == 9) {
    // The file's v1y, v1z, v2x, v2z, v3x, v3y land row by row, which transposes
    // them against the column convention; the program has always read it so.
    latt_f2c[0][1] = box[3];
    latt_f2c[0][2] = box[4];
    latt_f2c[1][0] = box[5];
    latt_f2c[1][2] = box[6];
    latt_f2c[2][0] = box[7];
    latt_f2c[2][1] = box[8];
  }
  invert(latt_f2c, latt_c2f);
  for (int i = 0; i < natoms; ++i) coord_c2f(cif_x + 3 * i, cif_x_s + 3 * i);
  convert_latt3x3_to_cell6(latt_f2c, cell_latt);
}

int FileIO::parse_gaussian_com(const std::string& path, std::vector<std::string>& lines) {
  std::ifstream in(path);
  if (!in) TX_FATAL(txunit::fileio, 1, stderr, "Failed to open input file %s\n", path.c_str());
  std::string line;
  while (std::getline(in, line)) lines.push_back(line);

  // The route is the first line holding "#"; behind it one blank line (one-line
  // route) or the second line behind it (two-line route) opens the title section:
  // blank, title, blank, charge, then the atoms.
  std::vector<std::string> words;
  for (size_t r = 0; r < lines.size(); ++r) {
    if (lines[r].find('#') == std::string::npos) continue;
    // A line the file does not have is no blank line.
    if (r + 1 < lines.size()) {
      split_to_words(lines[r + 1], " \t", words);
      if (words.empty()) return static_cast<int>(r) + 5;
    }
    if (r + 2 < lines.size()) {
      split_to_words(lines[r + 2], " \t", words);
      if (words.empty()) return static_cast<int>(r) + 6;
    }
    break;
  }
  TX_FATAL(txunit::fileio, 1, stderr, "Failed to locate \"#\" in input file %s!\n", path.c_str());
}
