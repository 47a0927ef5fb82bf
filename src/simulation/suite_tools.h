// suite_tools.h - the three programs a carrier work directory (MC-<ratetype>/elec,
// MC-<ratetype>/hole, or one temperature level below MC-<ratetype>-temp) runs after
// prepare-mc.py has copied its inputs: tavix_hoprate.exe (pair rates into WL.dat or
// WH.dat), tavix_mc.exe (trajectories into track/) and tavix_mob.exe (diffusion and
// mobility from the tracks). Each main is a thin call into the functions below, so
// that the pieces are testable without a process.
//
// Definitions, one topic a file:
//   src/simulation/suite_tool_common.cpp  the run set-up shared by the tools, the run's
//                                         temperature, whole-file replacement
//   src/simulation/hoprate_tool.cpp       pair rates, the W file, tavix_hoprate_main
//   src/simulation/mc_tool.cpp            split runs, track renumbering and merging,
//                                         tavix_mc_main
//   src/simulation/mobility_fit.cpp       track reading, the diffusion-tensor fit, the
//                                         mobility files and the plot, tavix_mob_main
#ifndef TAVIX_SUITE_TOOLS_H
#define TAVIX_SUITE_TOOLS_H

#include <array>
#include <string>
#include <vector>

#include "transport.h"

namespace suite_tools {

// ---- shared (suite_tool_common.cpp) ------------------------------------------

// The control file of a work directory.
constexpr const char* kControlFile = "tavix.inp";

// Reads the control file and the structure through the normal chain: control file,
// structure files, neighbor list (from neighbor.dat when the control file says so).
// Every failure on the way is the library's own fatal report.
void load_run(Transport& t, const char* control_file = kControlFile);

// The temperature the rates of the work directory were computed at, as the rate
// set-up takes it: the first number of temp.inp when that file exists, as it
// stands, else `temp` of the control file. Not above zero is fatal, naming the
// file it came from.
double run_temperature(Transport& t);

// Carrier of the work directory: 'e' or 'h' from the first character of
// charge.inp, else of the control file's chargetype; 0 when neither says.
int run_carrier(Transport& t);
const char* carrier_name(int carrier);  // "electron", "hole", "carrier"

// Replaces `path` by `content` through a temporary file in the same directory and a
// rename, so that a reader never sees a half-written file. False when the file
// cannot be written; then nothing is left behind.
bool replace_file(const std::string& path, const std::string& content);

// ---- rates (hoprate_tool.cpp) ----------------------------------------------------

// One pair of the neighbor list with what its rate is made of.
struct PairRate {
  int root;          // zero-based
  int column;        // zero-based neighbor column of the root
  int neighbor;      // zero-based molecule of the column
  int cell[3];
  double distance;   // angstrom, centre of mass to centre of mass
  double V;          // hartree
  double dE;         // hartree, site energy plus field term
  double lambda;     // hartree, molecule plus outer term
  double rate;       // 1/ns, V^2 times the rate without V
};

// The energies of pair (i, j) as the static rate builder takes them, on a
// Transport after dyn_disorder_init_prefix.
double pair_dE(const Transport& t, int i, int j);
double pair_lambda(const Transport& t, int i, int j);

// Every pair's rate, in root and column order. `progress` prints a line every tenth
// of the pairs.
std::vector<PairRate> compute_pair_rates(Transport& t, bool progress);

// The text of WL.dat / WH.dat as read_MC_w0 reads it.
std::string format_w_file(const Transport& t, const std::vector<PairRate>& rates);

// The table of pairs printed on standard output.
void print_pair_table(const std::vector<PairRate>& rates);

int tavix_hoprate_main(int argc, char** argv);

// ---- trajectories (mc_tool.cpp) -------------------------------------------------

// One track file as output_track writes it: the zero row and the snapshots.
struct TrackRows {
  std::vector<double> t;      // ns
  std::vector<double> x;      // angstrom, 3 per row
  std::vector<double> r2;     // as the walker wrote it
  std::vector<long long> istep;
};

// Reads a track file; false with `error` set when it is missing or malformed.
bool read_track(const std::string& path, TrackRows& rows, std::string& error);

// File number of "track_<n>.dat", or -1 for any other name (track_total.dat too).
int track_number(const std::string& file_name);

// The single track files of `dir`, ordered by number.
std::vector<std::string> list_tracks(const std::string& dir);

// Rewrites dir/track_total.dat as the average of every single track in `dir`, so
// that the totals of a run split over several jobs cover all of its trajectories.
// Returns the number of tracks averaged; -1 with `error` set on failure.
int merge_track_total(const std::string& dir, std::string& error);

int tavix_mc_main(int argc, char** argv);

// ---- mobility (mobility_fit.cpp) -------------------------------------------------

// Slopes of the second moments of the displacement against time, over a set of
// tracks sharing one time axis.
struct DiffusionFit {
  int ntraj = 0;
  std::vector<double> t;              // ns, the fitted rows
  double D[3][3] = {};                // angstrom^2/ns, Cartesian tensor
  double D_err[3][3] = {};            // standard error of each component
  // Per trajectory slope tensors / 2, for error bars along any direction.
  std::vector<std::array<double, 6>> per_traj;
  std::vector<double> msd[3][3];      // mean second moments per row, angstrom^2
  double intercept[3][3] = {};        // angstrom^2
};

// Fits the tensor from the tracks. `time` is the common time axis (one entry per
// row, the zero row included); the zero row is left out of the fit. False with
// `error` set when there are too few rows or tracks.
bool fit_diffusion(const std::vector<double>& time, const std::vector<TrackRows>& tracks, DiffusionFit& fit,
                   std::string& error);

// n^T D n and its standard error for a Cartesian unit vector n.
double directional_D(const DiffusionFit& fit, const double n[3]);
double directional_D_error(const DiffusionFit& fit, const double n[3]);

// Einstein relation mu = e D / (k_B T): D in angstrom^2/ns, T in kelvin, mu in cm^2/Vs.
double einstein_mobility(double D, double temperature);

int tavix_mob_main(int argc, char** argv);

}  // namespace suite_tools

#endif  // TAVIX_SUITE_TOOLS_H
