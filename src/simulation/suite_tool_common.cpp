// What the suite tools share: reading a work directory's control file and
// structure, its carrier and temperature, and replacing result files whole.
#include <cctype>
#include <cstdio>
#include <string>
#include <unistd.h>

#include "suite_tools.h"

namespace suite_tools {

namespace {

// The first line of a file without its line end; false when it cannot be opened.
bool first_line_of(const char* path, std::string& line) {
  FILE* fp = std::fopen(path, "r");
  if (fp == nullptr) return false;
  line.clear();
  char buf[256];
  while (std::fgets(buf, sizeof buf, fp) != nullptr) {
    line += buf;
    if (!line.empty() && line.back() == '\n') break;
  }
  std::fclose(fp);
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
  return true;
}

}  // namespace

void load_run(Transport& t, const char* control_file) {
  t.read_tavix_inp(control_file, false);
  t.read_crystal_strcuture_files(false, false);
  t.build_neighbor_list(t.read_neighbor_dat, false);
}

double run_temperature(Transport& t) {
  // temp.inp is read as the rate set-up reads it (strtod of the first line, "300 K"
  // gives 300), so that the mobility is taken at the temperature of the rates.
  std::string line;
  double T = t.temp;
  const char* source = kControlFile;
  if (first_line_of("temp.inp", line)) {
    T = strtod_c(line);
    source = "temp.inp";
  }
  if (!(T > 0.0))
    TX_FATAL(txunit::transport, 1, stderr, "The temperature in '%s' is %g K; it must be above zero\n", source, T);
  return T;
}

int run_carrier(Transport& t) {
  std::string line;
  if (first_line_of("charge.inp", line)) {
    trim(line);
    if (!line.empty()) return std::tolower(static_cast<unsigned char>(line[0]));
  }
  if (!t.chargetype.empty()) {
    const int c = std::tolower(static_cast<unsigned char>(t.chargetype[0]));
    if (c == 'e' || c == 'h') return c;
  }
  return 0;
}

const char* carrier_name(int carrier) {
  if (carrier == 'e') return "electron";
  if (carrier == 'h') return "hole";
  return "carrier";
}

bool replace_file(const std::string& path, const std::string& content) {
  const std::string tmp = path + formatString(".tmp%ld", static_cast<long>(getpid()));
  FILE* fp = std::fopen(tmp.c_str(), "wt");
  if (fp == nullptr) return false;
  const bool written = std::fwrite(content.data(), 1, content.size(), fp) == content.size();
  const bool closed = std::fclose(fp) == 0;
  if (!written || !closed || std::rename(tmp.c_str(), path.c_str()) != 0) {
    std::remove(tmp.c_str());
    return false;
  }
  return true;
}

}  // namespace suite_tools
