// The mobility tables of the gather report. Result files are opaque text: the
// Monte Carlo files are copied by their first line, the master-equation files whole.
//
// Directory layout, kept as the tools leave it: Monte Carlo temperature runs have
// one level per temperature, MC-<ratetype>-temp/<T>/<carrier>, while master-equation
// temperature runs have none, ME-<ratetype>-temp/<carrier>.
#include <cmath>
#include <climits>
#include <cstdio>
#include <fstream>
#include <string>

#include "tavix_output.h"

namespace {

// The carrier directory of `dir`; ehflag indexes the three rows of ehstrs, and
// anything outside them is refused instead of read past the table.
std::string carrier_dir(const std::string& dir, int ehflag) {
  if (ehflag < 0 || ehflag > 2) TX_FATAL(txunit::tavix_output, 1, stdout, "Out of range: ehflag\n");
  return dir + "/" + ehstrs[ehflag];
}

}  // namespace

void TavixDataOutput::output_mc_mob_one(FILE* report, const std::string& dir, int ehflag) {
  const std::string C = carrier_dir(dir, ehflag);
  if (dir_exists(C.c_str()) <= 0) return;

  std::fprintf(report, "**** Hopping rates for %s:\n", C.c_str());
  std::fprintf(report, "  %s/hoprates.dat\n", C.c_str());
  std::fprintf(report, "\n");
  std::fprintf(report, "**** Mobility data for %s\n", C.c_str());
  for (const char* name : {"/mob_a.dat", "/mob_b.dat", "/mob_c.dat", "/mob.dat"}) {
    const std::string path = C + name;
    FILE* fp = std::fopen(path.c_str(), "rt");
    if (fp == nullptr) continue;
    // The first line keeps its own line end; a file without one runs on into the
    // next output. An empty file writes nothing.
    char line[255];
    if (std::fgets(line, sizeof line, fp) != nullptr) std::fputs(line, report);
    std::fclose(fp);
  }
  if (mob_output_level & 2) {
    std::fprintf(report, "Directional mobilities are in file:\n");
    std::fprintf(report, "  %s\n", (C + "/mob_direction_all.dat").c_str());
  }
  std::fprintf(report, "**** End of Mobility data for %s\n", C.c_str());
  std::fprintf(report, "\n");
}

void TavixDataOutput::output_MC_mob(FILE* report) {
  // Both carriers are tried whatever chargetype says: the directories decide.
  const std::string dir = "MC-" + ratetype;
  output_mc_mob_one(report, dir, 0);
  output_mc_mob_one(report, dir, 1);
}

void TavixDataOutput::output_MC_mob_TempDep(FILE* report) {
  const std::string dir = "MC-" + ratetype + "-temp";
  // A zero step gives no finite count, and such a scan has no temperatures.
  const double count = (end_temp - start_temp) / delta_temp + 1.0;
  if (!std::isfinite(count) || count < 1.0 || count > static_cast<double>(INT_MAX)) return;
  const int n = static_cast<int>(count);
  for (int k = 0; k < n; ++k) {
    char subdir[4096];
    std::snprintf(subdir, sizeof subdir, "%s/%.0f", dir.c_str(), k * delta_temp + start_temp);
    output_mc_mob_one(report, subdir, 0);
    output_mc_mob_one(report, subdir, 1);
  }
}

void TavixDataOutput::output_meq_mob_one(FILE* report, const std::string& dir, int ehflag) {
  const std::string C = carrier_dir(dir, ehflag);
  if (dir_exists(C.c_str()) <= 0) return;

  std::fprintf(report, "**** Mobility data for %s\n", C.c_str());
  std::string path;
  if (ehflag == 0)
    path = C + "/mob_elec.dat";
  else if (ehflag == 1)
    path = C + "/mob_hole.dat";
  else
    TX_FATAL(txunit::tavix_output, 1, stdout, "Out of range: ehflag\n");
  std::printf("  Pull data from file: %s\n", path.c_str());
  std::ifstream in(path);
  std::string line;
  while (std::getline(in, line)) std::fprintf(report, "%s\n", line.c_str());
  std::fprintf(report, "**** End of Mobility data for %s\n", C.c_str());
  std::fprintf(report, "\n");
}

void TavixDataOutput::output_meq_mob(FILE* report) {
  const std::string dir = "ME-" + ratetype;
  output_meq_mob_one(report, dir, 0);
  output_meq_mob_one(report, dir, 1);
}

// No loop over temperatures, unlike the Monte Carlo counterpart: the master-equation
// tool leaves one directory per carrier.
void TavixDataOutput::output_meq_mob_TempDep(FILE* report) {
  const std::string dir = "ME-" + ratetype + "-temp";
  output_meq_mob_one(report, dir, 0);
  output_meq_mob_one(report, dir, 1);
}
