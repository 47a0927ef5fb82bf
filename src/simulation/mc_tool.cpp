// tavix_mc.exe -simu0 N0 -nsimu N: trajectories N0+1 .. N0+N of a work directory's
// Monte Carlo run into track/, so that a job array can split one run over several
// jobs, each with its own range; track/track_total.dat is then the average of
// every track in the directory.
//
// The walkers are those of the second family (one Mersenne twister per trajectory,
// seeded from the random device): the first family reseeds a shared generator from
// the clock at every trajectory, which would give two jobs of an array started in
// the same second the same streams. The control file chooses among them: thin film,
// dynamic disorder, or the plain walker. That family numbers its files from 1, so a
// range is run in a private directory under track/ and its files are renamed to
// their numbers in the whole run.
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

#include "suite_tools.h"

// Seam of the walkers (src/simulation/kmc.cpp): where a fresh generator's seed
// comes from.
namespace kmc_seam {
using DeviceSeedSource = std::uint32_t (*)();
DeviceSeedSource set_device_seed_source(DeviceSeedSource f);
}  // namespace kmc_seam

namespace suite_tools {

namespace {

const char* const kTrackHead = "#      t,ns         x,angs         y,angs         z,angs         r2,A^2     istep\n";
const char* const kTrackRow = "%14.6e %14.6e %14.6e %14.6e %14.6e  %lld\n";

// With -seed, trajectory k of the whole run (zero-based) gets the seed S + k, so a
// run gives the same tracks however it is split. Walkers that draw a fresh
// generator at every hop (fluctuating site energies) take their seeds from the same
// count and then lose that property.
std::uint32_t g_next_seed = 0;
std::uint32_t counted_seed() { return g_next_seed++; }

void print_usage(const char* prog) {
  std::printf("Kinetic Monte Carlo trajectories\n\n");
  std::printf("Usage: %s [-simu0 N0] [-nsimu N] [-seed S]\n", prog);
  std::printf("  -simu0 N0 : first trajectory, zero-based (default 0); its file is track_<N0+1>\n");
  std::printf("  -nsimu N  : number of trajectories (default: nsimu of tavix.inp)\n");
  std::printf("  -seed S   : trajectory k of the run starts its generator from S + k\n");
  std::printf("  Run in a carrier work directory after tavix_hoprate.exe.\n\n");
}

// A whole non-negative number, or a one-line error and status 1.
long long option_value(const char* prog, const char* option, const char* text) {
  if (text == nullptr) {
    std::fprintf(stderr, "%s: option %s needs a value\n", prog, option);
    tx_exit(1);
  }
  errno = 0;
  char* end = nullptr;
  const long long v = std::strtoll(text, &end, 10);
  if (end == text || *end != '\0' || errno != 0 || v < 0 || v > INT_MAX) {
    std::fprintf(stderr, "%s: option %s needs a whole number from 0 to %d, not '%s'\n", prog, option, INT_MAX, text);
    tx_exit(1);
  }
  return v;
}

std::string track_path(const std::string& dir, long long n) {
  return n <= 9999 ? formatString("%s/track_%04lld.dat", dir.c_str(), n)
                   : formatString("%s/track_%lld.dat", dir.c_str(), n);
}

// The walker the control file selects, over n trajectories into `dir`.
void run_walker(Transport& t, const char* dir, int n) {
  if (t.thinfilm_flag)
    t.MC_run_openMP_thinfilm(dir, 0, n);
  else if (t.V_dynamic_disorder || t.HOMOLUMO_dynamic_disorder)
    t.MC_run_openMP_dyn_disorder(dir, 0, n);
  else
    t.MC_run_openMP(dir, 0, n);
}

bool parse_row(const char* line, double v[5], long long* istep) {
  const char* p = line;
  for (int k = 0; k < 5; ++k) {
    char* end = nullptr;
    v[k] = strtod_c(p, &end);
    if (end == p) return false;
    p = end;
  }
  char* end = nullptr;
  *istep = std::strtoll(p, &end, 10);
  if (end == p) return false;
  while (*end == ' ' || *end == '\t' || *end == '\r' || *end == '\n') ++end;
  return *end == '\0';
}

}  // namespace

int track_number(const std::string& file_name) {
  const size_t slash = file_name.find_last_of('/');
  const std::string base = slash == std::string::npos ? file_name : file_name.substr(slash + 1);
  const char* const prefix = "track_";
  const char* const suffix = ".dat";
  if (base.size() <= 10 || base.compare(0, 6, prefix) != 0 || base.compare(base.size() - 4, 4, suffix) != 0) return -1;
  const std::string digits = base.substr(6, base.size() - 10);
  if (digits.empty() || digits.size() > 9 || digits.find_first_not_of("0123456789") != std::string::npos) return -1;
  return std::atoi(digits.c_str());
}

std::vector<std::string> list_tracks(const std::string& dir) {
  std::vector<std::pair<int, std::string>> found;
  for (const std::string& path : globFileVector(dir + "/track_*.dat")) {
    const int n = track_number(path);
    if (n >= 0) found.emplace_back(n, path);
  }
  std::sort(found.begin(), found.end());
  std::vector<std::string> paths;
  for (auto& f : found) paths.push_back(f.second);
  return paths;
}

bool read_track(const std::string& path, TrackRows& rows, std::string& error) {
  rows = TrackRows();
  FILE* fp = std::fopen(path.c_str(), "r");
  if (fp == nullptr) {
    error = formatString("Failed to open input file %s", path.c_str());
    return false;
  }
  char buf[512];
  int line = 0;
  bool ok = true;
  while (std::fgets(buf, sizeof buf, fp) != nullptr) {
    ++line;
    const char* p = buf;
    while (*p == ' ' || *p == '\t') ++p;
    if (*p == '#' || *p == '\n' || *p == '\r' || *p == '\0') continue;
    double v[5];
    long long istep = 0;
    if (!parse_row(p, v, &istep)) {
      error = formatString("Failed to read '%s' line %d: six numbers are needed (t, x, y, z, r2, istep)",
                           path.c_str(), line);
      ok = false;
      break;
    }
    rows.t.push_back(v[0]);
    rows.x.insert(rows.x.end(), {v[1], v[2], v[3]});
    rows.r2.push_back(v[4]);
    rows.istep.push_back(istep);
  }
  std::fclose(fp);
  if (ok && rows.t.empty()) {
    error = formatString("'%s' holds no track rows", path.c_str());
    ok = false;
  }
  return ok;
}

int merge_track_total(const std::string& dir, std::string& error) {
  const std::vector<std::string> paths = list_tracks(dir);
  if (paths.empty()) {
    error = formatString("No track files track_<n>.dat in %s", dir.c_str());
    return -1;
  }
  TrackRows sum;
  for (size_t k = 0; k < paths.size(); ++k) {
    TrackRows one;
    if (!read_track(paths[k], one, error)) return -1;
    if (k == 0) {
      sum = one;
      continue;
    }
    if (one.t.size() != sum.t.size()) {
      error = formatString("'%s' has %d rows, '%s' has %d: the tracks are not of one run", paths[k].c_str(),
                           static_cast<int>(one.t.size()), paths[0].c_str(), static_cast<int>(sum.t.size()));
      return -1;
    }
    for (size_t s = 0; s < one.t.size(); ++s) {
      sum.t[s] += one.t[s];
      for (int a = 0; a < 3; ++a) sum.x[3 * s + a] += one.x[3 * s + a];
      sum.r2[s] += one.r2[s];
      sum.istep[s] += one.istep[s];
    }
  }
  const double n = static_cast<double>(paths.size());
  std::string text = kTrackHead;
  for (size_t s = 0; s < sum.t.size(); ++s)
    text += formatString(kTrackRow, sum.t[s] / n, sum.x[3 * s] / n, sum.x[3 * s + 1] / n, sum.x[3 * s + 2] / n,
                         sum.r2[s] / n, sum.istep[s] / static_cast<long long>(paths.size()));
  const std::string total = dir + "/track_total.dat";
  if (!replace_file(total, text)) {
    error = formatString("Failed to open output file %s", total.c_str());
    return -1;
  }
  return static_cast<int>(paths.size());
}

int tavix_mc_main(int argc, char** argv) {
  const char* prog = argc > 0 ? argv[0] : "tavix_mc.exe";
  long long first = 0;
  long long count = -1;
  long long seed = -1;
  for (int i = 1; i < argc; ++i) {
    const char* a = argv[i];
    const char* value = i + 1 < argc ? argv[i + 1] : nullptr;
    if (std::strcmp(a, "-h") == 0 || std::strcmp(a, "--help") == 0) {
      print_usage(prog);
      return 0;
    } else if (std::strcmp(a, "-simu0") == 0) {
      first = option_value(prog, a, value);
      ++i;
    } else if (std::strcmp(a, "-nsimu") == 0) {
      count = option_value(prog, a, value);
      ++i;
    } else if (std::strcmp(a, "-seed") == 0) {
      seed = option_value(prog, a, value);
      ++i;
    } else {
      std::fprintf(stderr, "%s: unknown option '%s' (see %s -h)\n", prog, a, prog);
      return 1;
    }
  }

  Transport t;
  load_run(t);
  if (count < 0) count = t.nsimu;
  if (count < 1) {
    std::fprintf(stderr, "%s: no trajectories to run (nsimu = %lld)\n", prog, count);
    return 1;
  }
  if (first + count > INT_MAX) {
    std::fprintf(stderr, "%s: trajectories %lld to %lld exceed the file numbers\n", prog, first + 1, first + count);
    return 1;
  }
  t.MC_init();
  const std::string dir = t.trackdir;

  // Seeds are counted from here on, after the set-up has drawn what it needs.
  kmc_seam::DeviceSeedSource old_source = nullptr;
  if (seed >= 0) old_source = kmc_seam::set_device_seed_source(&counted_seed);

  const std::string scratch = formatString("%s/run-%lld-%ld", dir.c_str(), first, static_cast<long>(getpid()));
  const long long chunk = std::max(1LL, count / 20);  // a progress line every 5 %
  std::printf("Running trajectories %lld to %lld into %s/...\n", first + 1, first + count, dir.c_str());
  for (long long done = 0; done < count;) {
    const long long n = std::min(chunk, count - done);
    if (seed >= 0) g_next_seed = static_cast<std::uint32_t>(seed + first + done);
    run_walker(t, scratch.c_str(), static_cast<int>(n));
    for (long long k = 1; k <= n; ++k) {
      const std::string from = track_path(scratch, k);
      const std::string to = track_path(dir, first + done + k);
      if (std::rename(from.c_str(), to.c_str()) != 0)
        TX_FATAL(txunit::transport, 1, stderr, "Failed to move %s to %s\n", from.c_str(), to.c_str());
    }
    done += n;
    std::printf("  trajectories: %lld of %lld done (%lld%%)\n", done, count, done * 100 / count);
    std::fflush(stdout);
  }
  std::remove((scratch + "/track_total.dat").c_str());
  rmdir(scratch.c_str());
  if (seed >= 0) kmc_seam::set_device_seed_source(old_source);

  std::string error;
  const int merged = merge_track_total(dir, error);
  if (merged < 0) TX_FATAL(txunit::transport, 1, stderr, "%s\n", error.c_str());
  std::printf("%s/track_total.dat averages %d tracks\n", dir.c_str(), merged);
  return 0;
}

}  // namespace suite_tools
