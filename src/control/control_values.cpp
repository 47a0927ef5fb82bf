// The value conversions of the control-file readers.
#include "control_values.h"

#include <cstring>

namespace control_values {

int to_int(const std::string& value) { return leading_int(value); }

double to_real(const std::string& value) { return strtod_c(value); }

// Trimmed, and every double and single quote anywhere removed.
std::string to_text(const std::string& value) {
  std::string s = value;
  trim(s);
  std::string out;
  out.reserve(s.size());
  for (char c : s)
    if (c != '"' && c != '\'') out += c;
  return out;
}

std::string to_bare_text(const std::string& value) {
  std::string s = value;
  return trim(s);
}

// Up to n numbers separated by white space; fields left out keep their value.
void read_reals(const std::string& value, double* out, int n) {
  std::string s = to_bare_text(value);
  const char* p = s.c_str();
  for (int k = 0; k < n; ++k) {
    char* stop = nullptr;
    double v = strtod_c(p, &stop);
    if (stop == p) return;
    out[k] = v;
    p = stop;
  }
}

void read_ints(const std::string& value, int* out, int n) {
  std::string s = to_bare_text(value);
  const char* p = s.c_str();
  for (int k = 0; k < n; ++k) {
    const char* stop = nullptr;
    int v = leading_int(p, &stop);
    if (stop == p) return;
    out[k] = v;
    p = stop;
  }
}

std::vector<std::string> words_of(const std::string& value, const char* delims) {
  std::vector<std::string> words;
  tokenize(words, value, delims);
  return words;
}

std::string to_text_dq(const std::string& value) {
  std::string s = value;
  trim(s);
  std::string out;
  out.reserve(s.size());
  for (char c : s)
    if (c != '"') out += c;
  return out;
}

}  // namespace control_values

void assign_molecule_files(TavixInp& p, const std::string& value, const char* path, int line) {
  using namespace control_values;
  std::vector<std::string> words = words_of(value, " ");
  int n = words.empty() ? 0 : to_int(words[0]);
  int given = words.empty() ? 0 : static_cast<int>(words.size()) - 1;
  if (n > given)
    TX_FATAL(txunit::tavix_inp, 1, stderr, "Molecule count %d in %s line %d has only %d file name(s)\n", n, path,
             line, given);
  for (int i = 0; i < p.mol_files_allocated; ++i) delete[] p.mol_files[i];
  delete[] p.mol_files;
  p.mol_files = nullptr;
  p.mol_files_allocated = 0;
  p.nmols_uc = n;
  if (n > 0) {
    p.mol_files = new char*[n];
    for (int i = 0; i < n; ++i) {
      const std::string& name = words[i + 1];
      p.mol_files[i] = new char[name.size() + 1];
      std::memcpy(p.mol_files[i], name.c_str(), name.size() + 1);
    }
    p.mol_files_allocated = n;
  }
  p.mol_input_mode = 1;
}
