// Transport: the track files of the Monte Carlo runs, one per trajectory and the
// average over all of them.
#include <string>

#include "transport.h"

namespace {

const char* const kTrackHead = "#      t,ns         x,angs         y,angs         z,angs         r2,A^2     istep\n";
const char* const kTrackRow = "%14.6e %14.6e %14.6e %14.6e %14.6e  %d\n";

// Header, a zero row, then the snapshots 0 .. nsnap-1. The snapshot at index
// nsnap, which ends a trajectory, is computed but not written: the files have
// nsnap + 1 data rows and the mobility tools count on that.
void write_track(const char* dir, const std::string& path, int nsnap, const double* t, const double* x,
                 const double* r2, const int* istep) {
  create_directory(dir);
  FILE* fp = std::fopen(path.c_str(), "wt");
  if (fp == nullptr) TX_FATAL(txunit::transport, -1, stderr, "Failed to open output file %s\n", path.c_str());
  std::fputs(kTrackHead, fp);
  std::fprintf(fp, kTrackRow, 0.0, 0.0, 0.0, 0.0, 0.0, 0);
  for (int s = 0; s < nsnap; ++s)
    std::fprintf(fp, kTrackRow, t[s], x[3 * s], x[3 * s + 1], x[3 * s + 2], r2[s], istep[s]);
  std::fclose(fp);
}

}  // namespace

// `itraj` is the file number. Up to 9999 it has four digits with leading zeros;
// above, as many as it needs.
void Transport::output_track(const char* dir, int itraj, double* t, double* x, double* r2, int* istep) {
  const std::string path =
      itraj <= 9999 ? formatString("%s/track_%04d.dat", dir, itraj) : formatString("%s/track_%d.dat", dir, itraj);
  write_track(dir, path, nsnap, t, x, r2, istep);
}

void Transport::output_track_ave(const char* dir, double* t, double* x, double* r2, int* istep) {
  write_track(dir, formatString("%s/track_total.dat", dir), nsnap, t, x, r2, istep);
}
