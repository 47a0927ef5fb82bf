// Transport: the &evc inputs of the normal-mode tool, one a molecule and carrier in
// the RE directory, with the bond list of the molecule as extra internal coordinates.
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "evc_pieces.h"
#include "transport.h"
#include "txutil.h"

namespace txevc {

const Carrier kElectron = {"e", "elec", "anion"};
const Carrier kHole = {"h", "hole", "cation"};

std::vector<const Carrier*> carriers_of(const std::string& chargetype) {
  const char c = chargetype.empty() ? '\0' : static_cast<char>(std::tolower(static_cast<unsigned char>(chargetype[0])));
  std::vector<const Carrier*> out;
  if (c == 'a' || c == 'e') out.push_back(&kElectron);
  if (c == 'a' || c == 'h') out.push_back(&kHole);
  return out;
}

std::vector<int> numbers_up_to(int n) {
  std::vector<int> out;
  for (int m = 1; m <= n; ++m) out.push_back(m);
  return out;
}

std::vector<int> numbers_listed(const int* list, int count) {
  std::vector<int> out;
  if (list != nullptr)
    for (int k = 0; k < count; ++k) out.push_back(list[k]);
  return out;
}

}  // namespace txevc

namespace {

// The whole line read as one integer, blanks around it allowed.
bool parse_int_line(const std::string& text, long* value) {
  const char* s = text.c_str();
  char* end = nullptr;
  errno = 0;
  *value = std::strtol(s, &end, 10);
  if (end == s || errno == ERANGE) return false;
  while (*end == ' ' || *end == '\t') ++end;
  return *end == '\0';
}

// A bond line begins with the two one-based atom numbers.
bool is_bond_line(const std::string& text) {
  int a = 0;
  int b = 0;
  return std::sscanf(text.c_str(), "%d %d", &a, &b) == 2;
}

// Extension of the frequency output the normal-mode tool reads, by engine; every
// engine past Q-Chem is taken as BDF.
std::string frequency_ext(const Transport& t) {
  switch (t.compute_engine) {
    case 1:
      return t.gaussian_log_ext;
    case 2:
      return "hess";
    case 3:
      return "out";
    default:
      return "umv";
  }
}

void write_evc_inp_one(Transport& t, int m, const txevc::Carrier& c, const std::vector<std::string>& bonds) {
  const std::string path = format_string("%s/evc-%s-mol%d.inp", t.re_dir.c_str(), c.tag, m);
  FILE* fp = std::fopen(path.c_str(), "wt");
  if (fp == nullptr) TX_FATAL(txunit::transport, -1, stderr, "Failed to open output file %s\n", path.c_str());
  const std::string ext = frequency_ext(t);
  std::fprintf(fp, "&evc\n");
  std::fprintf(fp, "  ffreq(1)  = \"re-mol%d-neutral.%s\"\n", m, ext.c_str());
  std::fprintf(fp, "  ffreq(2)  = \"re-mol%d-%s.%s\"\n", m, c.state, ext.c_str());
  std::fprintf(fp, "  sort_mode = 1\n");
  std::fprintf(fp, "  proj_reorg = .t.\n");
  if (t.eckart_mirror) std::fprintf(fp, "  eckart_mirror = .t.\n");
  std::fprintf(fp, "  if_add_int_coord = .t.\n");
  std::fprintf(fp, "  def_add_int_coord = \n");
  for (const std::string& b : bonds) std::fprintf(fp, "        %s\n", b.c_str());
  std::fprintf(fp, "/\n");
  std::fclose(fp);
}

void write_evc_inputs(Transport& t, const std::vector<int>& numbers) {
  const std::vector<const txevc::Carrier*> carriers = txevc::carriers_of(t.chargetype);
  if (carriers.empty()) return;
  for (int m : numbers) {
    std::vector<std::string> bonds;
    t.load_bonds_data(format_string("%s/mol%d_bonds.dat", t.data_dir.c_str(), m), bonds);
    for (const txevc::Carrier* c : carriers) write_evc_inp_one(t, m, *c, bonds);
  }
}

}  // namespace

// The file is "%d" of the bond count, then one line a bond, "%3d %3d  0  0". The
// lines are kept as written: the normal-mode tool reads them in that form.
void Transport::load_bonds_data(const std::string& path, std::vector<std::string>& bonds) {
  std::ifstream in(path);
  if (!in) TX_FATAL(txunit::transport, 1, stderr, "Failed to open input file %s\n", path.c_str());
  std::string line;
  long count = 0;
  if (!std::getline(in, line))
    TX_FATAL(txunit::transport, 1, stderr, "Failed to read '%s' line 1: the file is empty\n", path.c_str());
  if (!line.empty() && line.back() == '\r') line.pop_back();
  if (!parse_int_line(line, &count) || count < 0 || count > INT_MAX)
    TX_FATAL(txunit::transport, 1, stderr, "Failed to read '%s' line 1: '%s' is no bond count\n", path.c_str(),
             line.c_str());
  bonds.clear();
  for (long k = 1; k <= count; ++k) {
    const long number = k + 1;
    if (!std::getline(in, line))
      TX_FATAL(txunit::transport, 1, stderr, "Failed to read '%s' line %ld: the file ends before bond %ld of %ld\n",
               path.c_str(), number, k, count);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!is_bond_line(line))
      TX_FATAL(txunit::transport, 1, stderr, "Failed to read '%s' line %ld: '%s' is no bond line\n", path.c_str(),
               number, line.c_str());
    bonds.push_back(line);
  }
}

void Transport::write_evc_inp_files() { write_evc_inputs(*this, txevc::numbers_up_to(nmols_uc)); }

void Transport::write_evc_inp_files_unique() {
  write_evc_inputs(*this, txevc::numbers_listed(uc_mol_re_list, uc_mol_re_count));
}
