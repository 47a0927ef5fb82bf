// The program's banners: the framed title, the version line and the build line.
#include <algorithm>
#include <cstdio>
#include <string>

#include "tavix_output.h"

namespace {
// Second line of the title: who stands behind the program.
const char* const title_attribution = "TAVIX Developers, Charge Transport in Organic Molecular Crystals";
}  // namespace

void print_TAVIX_title() {
  const std::string lines[2] = {
      std::string("TAVIX Calculation Utility, Version") + " " + TAVIX_VERSION_TEXT + " build on " +
          TAVIX_BUILD_DATE,
      title_attribution};
  size_t w = std::max(lines[0].size(), lines[1].size());
  const std::string stars(w + 6, '*');
  std::printf("%s\n", stars.c_str());
  std::fflush(stdout);
  for (const std::string& text : lines) {
    std::string row = "*  " + text;
    row.resize(w + 5, ' ');
    row += '*';
    std::printf("%s\n", row.c_str());
    std::fflush(stdout);
  }
  std::printf("%s\n", stars.c_str());
  std::fflush(stdout);
}

void print_TAVIX_version() { std::printf("TAVIX version %s, build on %s\n", TAVIX_VERSION_TEXT, TAVIX_BUILD_DATE); }

void print_TAVIX_build() { std::printf("TAVIX build on %s\n", TAVIX_BUILD_DATE); }
