// FileIO: the MDL molfile reader, V2000 fixed columns and V3000 blocks.
//
// Only atoms matter here: element and Cartesian position. Bonds, charges,
// isotopes and stereo marks are read past and dropped.
#include <locale.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "fileio.h"

namespace {

// Longest physical V3000 line, terminator included; a longer one is a failed read.
constexpr std::streamsize kV3000LineLimit = 32768;

const char* const kV3000Delims = " \t\r\n";

const std::string kNoToken;

// Absent tokens read as empty text, so that a short line is a mismatch rather
// than a read past the token list.
const std::string& token_at(const std::vector<std::string>& tokens, size_t i) {
  return i < tokens.size() ? tokens[i] : kNoToken;
}

// Total size of the stream's data, -1 when it cannot be told. Works on the
// buffer so that the stream's state flags stay as they are.
long long stream_size(std::istream& in) {
  std::streambuf* buf = in.rdbuf();
  if (buf == nullptr) return -1;
  const std::streampos here = buf->pubseekoff(0, std::ios::cur, std::ios::in);
  if (here == std::streampos(-1)) return -1;
  const std::streampos end = buf->pubseekoff(0, std::ios::end, std::ios::in);
  buf->pubseekpos(here, std::ios::in);
  if (end == std::streampos(-1)) return -1;
  return static_cast<long long>(end);
}

const char* path_for_messages(const FileIO& io) {
  return io.molfile_path.empty() ? "(stream)" : io.molfile_path.c_str();
}

// Gives slot `slot` fresh element and coordinate rows for `natoms` atoms,
// zeroed, so that rows a V3000 file never fills hold no indeterminate values.
// Rows from an earlier read of the same slot are released first.
void allocate_slot(FileIO& io, int slot, int natoms) {
  if (io.mol_natoms == nullptr || io.mol_elem == nullptr || io.mol_x == nullptr || io.mol_x_s == nullptr ||
      slot < 0 || slot >= io.mol_rows_allocated)
    TX_FATAL(txunit::fileio, 1, stderr, "Failed to read '%s': molecule slot %d has no allocated row\n",
             path_for_messages(io), slot);
  io.mol_natoms[slot] = natoms;
  delete[] io.mol_elem[slot];
  delete[] io.mol_x[slot];
  delete[] io.mol_x_s[slot];
  io.mol_elem[slot] = nullptr;
  io.mol_x[slot] = nullptr;
  io.mol_x_s[slot] = nullptr;
  io.mol_elem[slot] = new int[natoms]();
  io.mol_x[slot] = new double[3 * static_cast<size_t>(natoms)]();
  io.mol_x_s[slot] = new double[3 * static_cast<size_t>(natoms)]();
}

// Reads one physical line of at most kV3000LineLimit - 1 characters. A longer
// line fails and leaves the stream failed, as a bounded getline would.
bool read_limited_line(std::istream& in, std::string& line) {
  if (!std::getline(in, line)) return false;
  if (static_cast<std::streamsize>(line.size()) >= kV3000LineLimit) {
    in.setstate(std::ios::failbit);
    return false;
  }
  return true;
}

bool is_v3000_line(const std::vector<std::string>& tokens) {
  if (tokens.size() < 2 || tokens[0] != "M") return false;
  return tokens[1] == "V30" || tokens[1] == "END";
}

}  // namespace

void FileIO::read_data_mol(const char* path, int slot, bool verbose) {
  std::ifstream in(path);
  if (!in) TX_FATAL(txunit::fileio, -1, stderr, "Failed to open input file \"%s\"\n", path);
  molfile_path = path;
  if (verbose) std::printf("Reading molecular file \"%s\"... ", path);

  std::string line;
  for (int i = 0; i < 3; ++i) std::getline(in, line);  // title, program, comment
  line.clear();
  std::getline(in, line);  // counts line

  if (line.size() < 6)
    TX_FATAL(txunit::fileio, 1, stdout,
             "WARNING: Problems reading a MDL file\n"
             "         Cannot read atom and bond count\n"
             "         Expected standard 6 character atom and bond count\n");

  const int natoms = leading_int(line.substr(0, 3));
  if (line.size() > 14) {
    const int chiral = leading_int(line.substr(12, 3));
    if (chiral > 1)
      std::printf("WARNING: The Chiral Flag should be either 0 or 1. The value of %d will be ignored.\n", chiral);
  }
  if (leading_int(line.substr(6, 3)) > 0)
    TX_FATAL(txunit::fileio, 1, stdout,
             "WARNING: Problems reading the Count line of an MDL file\n"
             "         There may be erroneous addition spaces or\n"
             "         the file may contains Atom Lists, which are ignored\n");

  if (line.find("V3000") != std::string::npos) {
    atom_index_map.clear();
    ReadV3000Block(in, slot, verbose);
    return;
  }

  if (natoms < 0)
    TX_FATAL(txunit::fileio, 1, stderr, "Failed to read '%s' line 4: negative atom count %d\n", path, natoms);
  allocate_slot(*this, slot, natoms);
  for (int i = 0; i < natoms; ++i) {
    if (!std::getline(in, line))
      // The count printed is cif_natoms, not the file's count; in molecule-file
      // mode that is 0. The message has always read so and stays.
      TX_FATAL(txunit::fileio, 1, stdout,
               "WARNING: Problems reading a MDL file\n"
               "         Not enough atoms to match atom count (%d) in counts line\n",
               cif_natoms);
    // substr throws std::out_of_range on a line too short for column 10, 20 or
    // 31; nothing catches it, so such a file ends the process.
    mol_x[slot][3 * i + 0] = strtod_c(line.substr(0, 10));
    mol_x[slot][3 * i + 1] = strtod_c(line.substr(10, 10));
    mol_x[slot][3 * i + 2] = strtod_c(line.substr(20, 10));
    std::string symbol = line.substr(31, 3);
    mol_elem[slot][i] = find_element_index_from_name(trim(symbol));
  }
}

int FileIO::ReadV3000Line(std::istream& in, std::vector<std::string>& tokens) {
  std::string line;
  if (!read_limited_line(in, line)) return 0;
  tokenize(tokens, line, kV3000Delims);
  if (!is_v3000_line(tokens)) return 0;

  // A trailing minus sign continues the logical line. Of each continuation line
  // the "M", the "V30" and the first data token are dropped, and the minus token
  // stays where it was. Should any line of the chain fail, nothing of the chain
  // is kept and the result is 0. A loop rather than recursion: the chain may be
  // as long as the file.
  std::vector<std::string> continued;
  std::vector<std::string> next;
  while (!line.empty() && line.back() == '-') {
    if (!read_limited_line(in, line)) return 0;
    tokenize(next, line, kV3000Delims);
    if (!is_v3000_line(next)) return 0;
    if (next.size() > 3) continued.insert(continued.end(), next.begin() + 3, next.end());
  }
  tokens.insert(tokens.end(), continued.begin(), continued.end());
  return 1;
}

int FileIO::ReadV3000Block(std::istream& in, int slot, bool verbose) {
  (void)verbose;
  // Each CTAB opens one more level of this same loop. The levels are counted
  // instead of recursed into, so that endlessly nested tables cannot exhaust the
  // stack; `open_ctabs` is the depth the recursion would have.
  int open_ctabs = 0;
  for (;;) {
    int result = -1;  // -1: this level reads on
    if (!ReadV3000Line(in, v3000_tokens)) {
      result = 0;
    } else if (token_at(v3000_tokens, 1) == "END") {
      result = 1;
    } else if (token_at(v3000_tokens, 2) != "LINKNODE") {
      if (token_at(v3000_tokens, 2) != "BEGIN") {
        result = 0;
      } else {
        std::string block = token_at(v3000_tokens, 3);
        if (block == "CTAB") {
          if (!ReadV3000Line(in, v3000_tokens) || token_at(v3000_tokens, 2) != "COUNTS") {
            result = 0;
          } else {
            const int natoms = leading_int(token_at(v3000_tokens, 3));
            // The count sizes arrays before any atom is seen; a count the file
            // could not hold even at one byte per atom is refused.
            const long long size = stream_size(in);
            if (natoms < 0 || size < 0 || natoms > size)
              TX_FATAL(txunit::fileio, 1, stderr,
                       "Failed to read '%s': V3000 atom count %d does not fit a file of %lld bytes\n",
                       path_for_messages(*this), natoms, size);
            allocate_slot(*this, slot, natoms);
            ++open_ctabs;
            continue;
          }
        } else if (block == "ATOM") {
          // A failed sub-block is swallowed on purpose: the read counts as done.
          if (!ReadAtomBlock(in)) result = 1;
        } else if (block == "BOND") {
          if (!ReadBondBlock(in)) result = 1;
        } else if (block == "RGROUP") {
          if (!ReadRGroupBlock(in)) result = 1;
        } else {
          if (!ReadUnimplementedBlock(in, block)) result = 1;
        }
      }
    }
    if (result < 0 && !in.good()) result = 1;
    if (result < 0) continue;

    // This level ends. Each enclosing level looks at the tokens left behind:
    // unless they say END or CTAB it fails too, and it ends as well when the
    // stream is spent; otherwise it reads on.
    bool resumed = false;
    while (open_ctabs > 0 && !resumed) {
      --open_ctabs;
      if (token_at(v3000_tokens, 2) != "END" && token_at(v3000_tokens, 3) != "CTAB")
        result = 0;
      else if (!in.good())
        result = 1;
      else
        resumed = true;
    }
    if (!resumed) return result;
  }
}

int FileIO::ReadAtomBlock(std::istream& in) {
  int row = 0;
  for (;; ++row) {
    if (!ReadV3000Line(in, v3000_tokens)) return 0;
    if (token_at(v3000_tokens, 2) == "END") return 1;

    atom_index_map[leading_int(token_at(v3000_tokens, 2))] = row + 1;
    const double x = strtod_c(token_at(v3000_tokens, 4));
    const double y = strtod_c(token_at(v3000_tokens, 5));
    const double z = strtod_c(token_at(v3000_tokens, 6));
    std::string symbol = token_at(v3000_tokens, 3).substr(0, 5);
    if (symbol == "R#") {
      std::printf("WARNING: A molecule contains an R group which is not implemented!\n");
      continue;
    }
    const int type = find_element_index_from_name(trim(symbol));

    // V3000 atoms land in the crystal arrays by row, not in the slot's arrays.
    // Where those rows do not exist (molecule-file mode has no crystal arrays)
    // the read stops with a message instead of writing past them.
    if (cif_atypes == nullptr || cif_x == nullptr || row >= cif_natoms)
      TX_FATAL(txunit::fileio, 1, stderr,
               "Failed to read '%s': V3000 atom row %d needs the crystal arrays, which hold %d atoms\n",
               path_for_messages(*this), row + 1, cif_atypes == nullptr || cif_x == nullptr ? 0 : cif_natoms);
    cif_atypes[row] = type;
    cif_x[3 * row + 0] = x;
    cif_x[3 * row + 1] = y;
    cif_x[3 * row + 2] = z;

    for (size_t k = 7; k < v3000_tokens.size(); ++k) {
      const std::string& item = v3000_tokens[k];
      const size_t eq = item.find('=');
      if (eq == std::string::npos) return 0;
      const std::string key = item.substr(0, eq);
      const int value = leading_int(item.substr(eq + 1));
      // Charges, radicals, stereo marks, isotopes and valences have no place in
      // this model; the keys are recognised and their values dropped.
      if (key == "CHG")
        SetFormalCharge(value);
      else if (key == "RAD")
        SetSpinMultiplicity(value);
      else if (key == "MASS")
        SetIsotope(value);
      // "CFG", "VAL" and any other key: accepted, nothing kept.
    }
  }
}

int FileIO::ReadBondBlock(std::istream& in) {
  for (;;) {
    if (!ReadV3000Line(in, v3000_tokens)) return 0;
    if (token_at(v3000_tokens, 2) == "END") return 1;
    // Token 3 is the bond order, tokens 4 and 5 the atoms; no bond is kept, but
    // an atom number not met in the atom block is entered (as row 0).
    for (size_t k = 4; k <= 5; ++k) {
      const int number = leading_int(token_at(v3000_tokens, k));
      if (atom_index_map.find(number) == atom_index_map.end()) atom_index_map[number] = 0;
    }
    for (size_t k = 6; k < v3000_tokens.size(); ++k) {
      if (v3000_tokens[k].find('=') == std::string::npos) return 0;
      // "CFG" (bond stereo) is the only key looked for, and it is dropped.
    }
  }
}

int FileIO::ReadRGroupBlock(std::istream& in) {
  if (debug_level)
    std::printf(
        "WARNING: RGROUP and RLOGIC blocks are not currently implemented and their contents are ignored.\n");
  for (;;) {
    if (!ReadV3000Line(in, v3000_tokens)) return 0;
    if (token_at(v3000_tokens, 2) == "END" && token_at(v3000_tokens, 3) == "RGROUP") return 1;
  }
}

int FileIO::ReadUnimplementedBlock(std::istream& in, std::string& name) {
  if (debug_level)
    std::printf("WARNING: %s blocks are not currently implemented and their contents are ignored.\n", name.c_str());
  for (;;) {
    if (!ReadV3000Line(in, v3000_tokens)) return 0;
    if (token_at(v3000_tokens, 2) == "END") return 1;
  }
}

// Stand where a molecule model would store bonds, charges, spins and isotopes;
// this system keeps none of them.
int FileIO::AddBond(int, int, int, int) { return 1; }
void FileIO::SetFormalCharge(int) {}
void FileIO::SetSpinMultiplicity(int) {}
void FileIO::SetIsotope(int) {}
