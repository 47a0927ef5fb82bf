// Transport: dynamic disorder. Series of transfer integrals and orbital energies
// from molecular dynamics become a mean and a spectrum; random-phase series
// synthesised from the spectra fill sample buffers of V^2 and of the V-free rate,
// so that a walker gets a fresh rate for every hop by table look-up.
//
// Decisions where the data could send a read outside its rows:
// - A V-dyn file with fewer pairs (Npair) than the root's neighbors is fatal; pairs
//   beyond the neighbors are read, transformed and listed in the .ave file, but
//   not kept, since the per-pair rows are sized to the neighbor list.
// - An orbital file with fewer molecules than the unit cell is fatal.
// - A body that ends early or holds a non-number is fatal.
// - A buffer position that is negative wraps around the buffer (a buffer is a
//   periodic sample set); a position that is NaN or infinite is fatal.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "array_release.h"
#include "transport.h"

namespace kmc_seam {
std::uint32_t device_seed();  // kmc.cpp: one std::random_device("default") draw
}

namespace {

constexpr double kHartreePerMeV = 3.675e-5;
constexpr double kPi = 3.141592653589793;

// A fresh generator per call: seeding a full state each time is a fixed cost
// the design accepts.
std::mt19937 fresh_generator() { return std::mt19937(kmc_seam::device_seed()); }

// One engine output scaled by 2^-32, kept below 1.
double uniform_2m32(std::mt19937& g) {
  double u = static_cast<double>(g()) * 2.3283064365386963e-10;
  if (u >= 1.0) u = 0.9999999999999999;
  return u;
}

bool carrier_is_electron(const Transport& T) {
  if (T.carrier_char == 101) return true;
  if (T.carrier_char == 104) return false;
  TX_FATAL(txunit::transport, 1, stdout, "chargetype in charge.inp should be either 'e' or 'h'\n");
}

// The first line is a comment when it starts with '#' after trimming; the header
// is then the next line. A second comment line is taken as the header.
struct SeriesFile {
  std::vector<std::string> header;
  std::string body;
};

SeriesFile open_series(const std::string& name) {
  std::ifstream in(name);
  if (!in) TX_FATAL(txunit::transport, 1, stdout, "Failed to open input file %s\n", name.c_str());
  SeriesFile f;
  std::string line;
  std::getline(in, line);
  std::string first = line;
  trim(first);
  if (!first.empty() && first[0] == '#') {
    line.clear();
    std::getline(in, line);
  }
  split_to_words(line, " \t\r", f.header);
  f.body.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return f;
}

// `count` whitespace-separated numbers from the body.
std::vector<double> read_numbers(const std::string& body, size_t count, const std::string& name) {
  std::vector<double> v(count);
  const char* p = body.c_str();
  for (size_t k = 0; k < count; ++k) {
    char* end = nullptr;
    v[k] = strtod_c(p, &end);
    if (end == p)
      TX_FATAL(txunit::transport, 1, stderr, "%s holds %zu of the %zu numbers its header announces\n", name.c_str(),
               k, count);
    p = end;
  }
  return v;
}

void write_complex_table(const std::string& path, const CArray& a) {
  FILE* fp = std::fopen(path.c_str(), "w");
  if (fp == nullptr) TX_FATAL(txunit::transport, 1, stderr, "Failed to open output file %s\n", path.c_str());
  std::fputs("#          re           im\n", fp);
  for (size_t k = 0; k < a.size(); ++k) std::fprintf(fp, "%3d %12.6f %12.6f\n", static_cast<int>(k + 1), a[k].real(), a[k].imag());
  std::fclose(fp);
}

void write_means(const std::string& path, const std::vector<double>& means) {
  FILE* fp = std::fopen(path.c_str(), "w+t");
  if (fp == nullptr) TX_FATAL(txunit::transport, 1, stderr, "Failed to open output file %s\n", path.c_str());
  std::fprintf(fp, "%d\n", static_cast<int>(means.size()));
  for (double m : means) std::fprintf(fp, "%10.3f\n", m);
  std::fclose(fp);
}

// Mean of the first n values of a strided series, the mean-free series as
// complex numbers, and its transform.
struct Spectrum {
  double mean = 0.0;
  CArray series;  // mean-free, as transformed
  CArray fft;
};

Spectrum spectrum_of(const double* v, size_t stride, int n) {
  Spectrum s;
  double sum = 0.0;
  for (int f = 0; f < n; ++f) sum += v[f * stride];
  s.mean = sum / n;
  s.series.resize(n);
  for (int f = 0; f < n; ++f) s.series[f] = Complex(v[f * stride] - s.mean, 0.0);
  s.fft = s.series;
  CT_fft(s.fft);
  return s;
}

void check_V_pair(const Transport& T, int i, int p) {
  if (i < 0 || i >= static_cast<int>(T.dyn_V_count.size()) || p < 0 ||
      p >= static_cast<int>(T.dyn_V_count[i].size()) ||
      static_cast<int>(T.dyn_V_fft[i][p].size()) < T.dyn_V_count[i][p])
    TX_FATAL(txunit::transport, 1, stderr, "No dynamic disorder V data for molecule %d, neighbor %d\n", i + 1, p + 1);
}

void check_HL_molecule(const Transport& T, int m) {
  if (m < 0 || m >= static_cast<int>(T.dyn_HL_count.size()) || T.dyn_HL_count[m] < 1 ||
      static_cast<int>(T.dyn_HL_frames[m].size()) < T.dyn_HL_count[m] ||
      static_cast<int>(T.dyn_HL_fft[m].size()) < T.dyn_HL_count[m])
    TX_FATAL(txunit::transport, 1, stderr, "No dynamic disorder HOMO/LUMO data for molecule %d\n", m + 1);
}

// Static per-pair values, with the rows they come from checked.
double static_V(const Transport& T, int i, int j) {
  if (i >= static_cast<int>(T.V_pair.size()) || j >= static_cast<int>(T.V_pair[i].size()))
    TX_FATAL(txunit::transport, 1, stderr, "No transfer integral for molecule %d, neighbor %d\n", i + 1, j + 1);
  return T.V_pair[i][j];
}

double field_term(const Transport& T, int i, int j) {
  if (!T.appE_flag) return 0.0;
  if (T.dE_field == nullptr)
    TX_FATAL(txunit::transport, 1, stderr, "No field energies for molecule %d, neighbor %d\n", i + 1, j + 1);
  return T.dE_field[i][j];
}

double static_dE(const Transport& T, int i, int j) {
  if (i >= static_cast<int>(T.dE_pair.size()) || j >= static_cast<int>(T.dE_pair[i].size()))
    TX_FATAL(txunit::transport, 1, stderr, "No site energy difference for molecule %d, neighbor %d\n", i + 1, j + 1);
  return T.dE_pair[i][j];
}

double lambda_total(const Transport& T, int i, int j) {
  if (i >= static_cast<int>(T.lambda_mol.size()))
    TX_FATAL(txunit::transport, 1, stderr, "No reorganization energy for molecule %d\n", i + 1);
  double lambda = T.lambda_mol[i];
  if (T.reorg_outer_flag != 0 && T.lambda_outer != nullptr) lambda += T.lambda_outer[i][j];
  return lambda;
}

// Root and column of a one-based representative key of pair_keylist.
void unique_pair_position(Transport& T, int u, int* i, int* j) {
  *i = -1;
  *j = -1;
  T.neighbor_map_key_1d_to_2d(T.pair_keylist[u] - 1, i, j);
  if (*i < 0 || *i >= T.nmols_uc || *j < 0 || *j >= T.nneighbors[*i])
    TX_FATAL(txunit::transport, 1, stderr, "Unique pair key %d is not a neighbor key\n", T.pair_keylist[u]);
}

// The first pair of the first root sets the sample spacing of every V^2 buffer.
int first_pair_count(const Transport& T) {
  if (T.dyn_V_count.empty() || T.dyn_V_count[0].empty()) return 0;
  return T.dyn_V_count[0][0];
}

void fill_V2(Transport& T, std::vector<double>& row, int i, int j) {
  const double q = static_cast<double>(first_pair_count(T)) / static_cast<double>(T.dyn_buffer_size);
  for (size_t s = 0; s < row.size(); ++s) {
    const double V = T.V_dynamic_disorder ? T.dyn_disorder_calc_V_N(static_cast<double>(s) * q, i, j) : static_V(T, i, j);
    row[s] = V * V;
  }
}

void fill_rates(Transport& T, std::vector<double>& row, int i, int j) {
  const double lambda = lambda_total(T, i, j);
  for (double& r : row) {
    const double dE = T.dyn_disorder_HOMOLUMO_calc_dE(0.0, i, T.neighbor_id[i][j]) + field_term(T, i, j);
    r = T.hop_rate_no_V(i, dE, lambda);
  }
}

size_t buffer_len(const Transport& T) { return T.dyn_buffer_size > 0 ? static_cast<size_t>(T.dyn_buffer_size) : 0; }

// The V^2 or rate buffer row of (i, j): per unique pair under
// unique_2mol_calc_flag, else per neighbor. The unique look-up goes through the
// map's element access, so a representative not in it is entered as position 0.
const std::vector<double>& buffer_row(Transport& T, bool rates, int i, int j) {
  const std::vector<double>* row = nullptr;
  if (T.unique_2mol_calc_flag) {
    if (T.neighbor_key_offset != nullptr && T.pair_key_map != nullptr) {
      const int rep = T.pair_key_map[T.neighbor_key_offset[i] + j] + 1;
      const size_t u = static_cast<size_t>(T.unique_pair_index[rep]);
      const auto& b = rates ? T.dyn_w0_no_V_buffer_unique : T.dyn_V2_buffer_unique;
      if (u < b.size()) row = &b[u];
    }
  } else {
    const auto& b = rates ? T.dyn_w0_no_V_buffer_full : T.dyn_V2_buffer_full;
    if (static_cast<size_t>(i) < b.size() && static_cast<size_t>(j) < b[i].size()) row = &b[i][j];
  }
  if (row == nullptr || row->size() < buffer_len(T))
    TX_FATAL(txunit::transport, 1, stderr, "No dynamic disorder %s buffer for molecule %d, neighbor %d\n",
             rates ? "rate" : "V^2", i + 1, j + 1);
  return *row;
}

// trunc(pos) modulo B, computed in doubles (exact for integers), so no value is
// converted out of range.
size_t sample_index(double pos, int B) {
  if (!std::isfinite(pos))
    TX_FATAL(txunit::transport, 1, stderr, "Dynamic disorder sample position is not finite (%g)\n", pos);
  double s = std::fmod(std::trunc(pos), static_cast<double>(B));
  if (s < 0.0) s += B;
  return static_cast<size_t>(s);
}

size_t canonical_index(std::mt19937& g, int B) {
  const double u = std::generate_canonical<double, std::numeric_limits<double>::digits>(g);
  const size_t k = static_cast<size_t>(static_cast<double>(B) * u);
  return std::min(k, static_cast<size_t>(B - 1));
}

}  // namespace

// ---- series readers -------------------------------------------------------------

void Transport::dyn_disorder_read_dyn_V_data(bool debug) {
  std::printf("Reading dynamic disorder V files...\n");
  const char* prefix = carrier_is_electron(*this) ? "VL" : "VH";
  dyn_V_count.assign(nmols_uc, {});
  dyn_V_mean.assign(nmols_uc, {});
  dyn_V_fft.assign(nmols_uc, {});
  for (int i = 0; i < nmols_uc; ++i) {
    const std::string name = formatString("%s%d-dyn.dat", prefix, i + 1);
    if (debug) std::printf("Reading V-dyn file %s...\n", name.c_str());
    const SeriesFile file = open_series(name);
    if (file.header.size() < 3) {
      TX_FATAL_HEAD(txunit::transport);
      std::printf("Incorrect dynamic disorder V data format\n");
      std::printf("At least 3 numbers are needed in the header: Nframe Npair dt_snap(in fs)\n");
      tx_exit(1);
    }
    const int nframe = std::stoi(file.header[0]);
    const int npair = std::stoi(file.header[1]);
    const double dt = std::stod(file.header[2]);
    if (i == 0) {
      dyn_V_dt = dt * 1e-6;
      std::printf("  nframe = %d\n", nframe);
      std::printf("  npair  = %d\n", npair);
      std::printf("  dt     = %g ns\n", dyn_V_dt);
    }
    if (nframe < npair)
      std::printf("WARNING: Please check the V-dyn data, the 2nd line should be: Nframe Npair\n");
    if (nframe < 1 || npair < 1) {
      TX_FATAL_HEAD(txunit::transport);
      std::printf("Data format is incorrect in file %s\n", name.c_str());
      std::printf("The format should be:\n");
      std::printf("# one comment line\n");
      std::printf("Nframe Npair\n");
      std::printf("Nframe * Npair double numbers\n");
      tx_exit(1);
    }
    const int nn = nneighbors[i];
    if (npair < nn)
      TX_FATAL(txunit::transport, 1, stderr, "%s holds %d pairs, fewer than the %d neighbors of molecule %d\n",
               name.c_str(), npair, nn, i + 1);
    const std::vector<double> data =
        read_numbers(file.body, static_cast<size_t>(nframe) * static_cast<size_t>(npair), name);

    // Trailing frames past the largest power of two are dropped.
    const int N = highestPowerof2(nframe);
    dyn_V_count[i].assign(nn, 0);
    dyn_V_mean[i].assign(nn, 0.0);
    dyn_V_fft[i].assign(nn, {});
    std::vector<double> means(npair);
    for (int p = 0; p < npair; ++p) {
      const Spectrum s = spectrum_of(data.data() + p, static_cast<size_t>(npair), N);
      means[p] = s.mean;
      if (p < nn) {
        dyn_V_mean[i][p] = s.mean;
        dyn_V_count[i][p] = N;
        dyn_V_fft[i][p].insert(dyn_V_fft[i][p].end(), std::begin(s.fft), std::end(s.fft));
      }
      if (debug && i == 0) {
        std::printf("----\n");
        std::printf("N_data = %d\n", N);
        std::printf("V_aver = %g\n", s.mean);
        write_complex_table(formatString("%s.raw_%d_%d", name.c_str(), 1, p + 1), s.series);
        write_complex_table(formatString("%s.fft_%d_%d", name.c_str(), 1, p + 1), s.fft);
      }
    }
    write_means(name + ".ave", means);
  }
}

// The body runs molecule by molecule, all frames of a molecule together: the
// opposite order of the V files, deliberately, as the two come from different
// tools.
void Transport::dyn_disorder_read_dyn_HL_data(bool debug) {
  const bool lumo = carrier_is_electron(*this);
  std::printf(lumo ? "Reading dynamic disorder LUMO files...\n" : "Reading dynamic disorder HOMO files...\n");
  const std::string name = lumo ? "LUMO-dyn.dat" : "HOMO-dyn.dat";
  if (debug) std::printf(lumo ? "Reading LUMO-dyn file %s...\n" : "Reading HOMO-dyn file %s...\n", name.c_str());
  const SeriesFile file = open_series(name);
  if (file.header.size() < 3) {
    TX_FATAL_HEAD(txunit::transport);
    std::printf("Incorrect dynamic disorder HOMO/LUMO data format\n");
    std::printf("At least 3 numbers are needed in the header: nmols Nframe dt_snap(in fs)\n");
    tx_exit(1);
  }
  const int nmols = std::stoi(file.header[0]);
  const int nframe = std::stoi(file.header[1]);
  const double dt = std::stod(file.header[2]);
  dyn_HL_dt = dt * 1e-6;
  if (debug) {
    std::printf("  nmols  = %d\n", nmols);
    std::printf("  nframe = %d\n", nframe);
    std::printf("  dt     = %g ns\n", dyn_HL_dt);
  }
  if (nmols < 1 || nframe < 1) {
    TX_FATAL_HEAD(txunit::transport);
    std::printf("Incorrect data format in file %s\n", name.c_str());
    std::printf("The format should be:\n");
    std::printf("# one comment line\n");
    std::printf("nmols Nframe dt_snapshot(in fs)\n");
    std::printf("nmols * Nframe double numbers\n");
    tx_exit(1);
  }
  if (nmols < nmols_uc)
    TX_FATAL(txunit::transport, 1, stderr, "%s holds %d molecules, fewer than the %d of the unit cell\n",
             name.c_str(), nmols, nmols_uc);
  const std::vector<double> data =
      read_numbers(file.body, static_cast<size_t>(nmols) * static_cast<size_t>(nframe), name);

  const int N = highestPowerof2(nframe);
  dyn_HL_frames.assign(nmols, {});
  dyn_HL_fft.assign(nmols, {});
  dyn_HL_mean.assign(nmols, 0.0);
  dyn_HL_count.assign(nmols, 0);
  for (int m = 0; m < nmols; ++m) {
    const double* v = data.data() + static_cast<size_t>(m) * nframe;
    dyn_HL_frames[m].assign(v, v + nframe);
    const Spectrum s = spectrum_of(v, 1, N);
    dyn_HL_mean[m] = s.mean;
    dyn_HL_count[m] = N;
    dyn_HL_fft[m].assign(std::begin(s.fft), std::end(s.fft));
    if (debug && m == 0) {
      std::printf("----\n");
      std::printf("  N_data = %d\n", N);
      std::printf("  aver   = %g\n", s.mean);
      write_complex_table(formatString("%s.raw_%d", name.c_str(), 1), s.series);
      write_complex_table(formatString("%s.fft_%d", name.c_str(), 1), s.fft);
    }
  }
  write_means(name + ".ave", dyn_HL_mean);
  std::printf(lumo ? "done with LUMO dynamic disorder initialization\n"
                   : "done with HOMO dynamic disorder initializaton\n");
}

// ---- synthesis --------------------------------------------------------------------
// Each call is a new random-phase realisation: a fresh phase for every frequency.
// `t` counts snapshot spacings.

double Transport::dyn_disorder_calc_V_N(double t, int i, int p) {
  std::mt19937 g = fresh_generator();
  check_V_pair(*this, i, p);
  const int N = dyn_V_count[i][p];
  const double mean = dyn_V_mean[i][p];
  if (N < 1) return mean * kHartreePerMeV;
  const std::vector<Complex>& F = dyn_V_fft[i][p];
  const double s = t / N;
  double sum = 0.0;
  for (int k = 0; k < N; ++k) {
    const double a = 2.0 * kPi * (uniform_2m32(g) + k * s);
    sum += std::cos(a) * F[k].real() + std::sin(a) * F[k].imag();
  }
  return (sum / N + mean) * kHartreePerMeV;
}

// The half spectrum, yet divided by the full N.
double Transport::dyn_disorder_calc_V(double t, int i, int p) {
  std::mt19937 g = fresh_generator();
  check_V_pair(*this, i, p);
  const int N = dyn_V_count[i][p];
  const double mean = dyn_V_mean[i][p];
  if (N < 2) return mean * kHartreePerMeV;
  const std::vector<Complex>& F = dyn_V_fft[i][p];
  const double s = t / N;
  double sum = 0.0;
  for (int k = 0; k < N / 2; ++k) {
    const double a = 2.0 * kPi * (uniform_2m32(g) + k * s);
    sum += std::cos(a) * F[k].real() + std::sin(a) * F[k].imag();
  }
  return (sum / N + mean) * kHartreePerMeV;
}

// The inverse transform without random phases: at whole t it gives back the
// series that was read.
double Transport::dyn_disorder_calc_V_idft(double t, int i, int p) {
  check_V_pair(*this, i, p);
  const int N = dyn_V_count[i][p];
  const double mean = dyn_V_mean[i][p];
  if (N < 1) return mean * kHartreePerMeV;
  const std::vector<Complex>& F = dyn_V_fft[i][p];
  double sum = 0.0;
  for (int k = 0; k < N; ++k) {
    const double a = 2.0 * kPi * k * t / N;
    sum += std::cos(a) * F[k].real() - std::sin(a) * F[k].imag();
  }
  return (sum / N + mean) * kHartreePerMeV;
}

// Energy difference of two random frames; only the first N frames can be hit.
// The sign makes it the energy the carrier gains: as is for holes, negated for
// electrons.
double Transport::dyn_disorder_HOMOLUMO_calc_dE(double /*t*/, int i, int j) {
  std::mt19937 g = fresh_generator();
  const double r1 = uniform_2m32(g);
  const double r2 = uniform_2m32(g);
  check_HL_molecule(*this, i);
  check_HL_molecule(*this, j);
  const size_t fi = static_cast<size_t>(std::trunc(r1 * dyn_HL_count[i]));
  const size_t fj = static_cast<size_t>(std::trunc(r2 * dyn_HL_count[j]));
  const double d = (dyn_HL_frames[j][fj] - dyn_HL_frames[i][fi]) * kHartreePerMeV;
  return carrier_char == 104 ? d : -d;
}

// Synthesised difference; unlike the frame version it carries no sign by carrier.
double Transport::dyn_disorder_HOMOLUMO_calc_dE_byfft(double t, int i, int j) {
  std::mt19937 g = fresh_generator();
  const double r1 = uniform_2m32(g);
  const double r2 = uniform_2m32(g);
  check_HL_molecule(*this, i);
  check_HL_molecule(*this, j);
  const int n = dyn_HL_count[i];
  const double g_step = t / (n * dyn_HL_dt) / static_cast<double>(n / 2);
  const std::vector<Complex>& Fi = dyn_HL_fft[i];
  const std::vector<Complex>& Fj = dyn_HL_fft[j];
  const int kmax = std::min(n / 2, static_cast<int>(Fj.size()));
  double A = 0.0, B = 0.0;
  for (int k = 0; k < kmax; ++k) {
    const double a = 2.0 * kPi * (r1 + k * g_step);
    const double b = 2.0 * kPi * (k * g_step + r2);
    A += std::cos(a) * Fi[k].real() + std::sin(a) * Fi[k].imag();
    B += std::cos(b) * Fj[k].real() + std::sin(b) * Fj[k].imag();
  }
  return ((A - B) / n + dyn_HL_mean[i] - dyn_HL_mean[j]) * kHartreePerMeV;
}

// ---- static rates and buffers ---------------------------------------------------

void Transport::dyn_disorder_build_w0_no_V() {
  std::printf("Building w0_no_V...\n");
  if (w0_no_V == nullptr) {
    w0_no_V = new double*[nmols_uc];
    for (int i = 0; i < nmols_uc; ++i) w0_no_V[i] = new double[std::max(nneighbors[i], 1)];
    w0_no_V_rows_allocated = nmols_uc;
  }
  for (int i = 0; i < nmols_uc; ++i)
    for (int j = 0; j < nneighbors[i]; ++j) {
      const double dE = static_dE(*this, i, j) + field_term(*this, i, j);
      w0_no_V[i][j] = hop_rate_no_V(i, dE, lambda_total(*this, i, j));
    }
  std::printf("done\n");
}

void Transport::dyn_disorder_build_V2_buffer() {
  if (unique_2mol_calc_flag)
    dyn_disorder_build_V2_buffer_unique();
  else
    dyn_disorder_build_V2_buffer_full();
}

// Every sample is its own random-phase realisation at time s q, so a buffer is a
// distribution of V^2, not a continuous series in s. The first row is written
// one value a line.
void Transport::dyn_disorder_build_V2_buffer_full() {
  std::printf("Building v2_buffer_full...\n");
  dyn_V2_buffer_full.assign(nmols_uc, {});
  for (int i = 0; i < nmols_uc; ++i) {
    dyn_V2_buffer_full[i].assign(std::max(nneighbors[i], 0), std::vector<double>(buffer_len(*this)));
    for (int j = 0; j < nneighbors[i]; ++j) fill_V2(*this, dyn_V2_buffer_full[i][j], i, j);
  }
  if (!dyn_V2_buffer_full.empty() && !dyn_V2_buffer_full[0].empty())
    output_vector(dyn_V2_buffer_full[0][0].data(), dyn_buffer_size, 1, "dyn_V2_buffer_1.dat");
}

void Transport::dyn_disorder_build_V2_buffer_unique() {
  std::printf("Building dyn_V2_buffer_unique...\n");
  dyn_V2_buffer_unique.assign(std::max(pair_keylist_count, 0), std::vector<double>(buffer_len(*this)));
  for (int u = 0; u < pair_keylist_count; ++u) {
    int i, j;
    unique_pair_position(*this, u, &i, &j);
    fill_V2(*this, dyn_V2_buffer_unique[u], i, j);
  }
  if (!dyn_V2_buffer_unique.empty())
    output_vector(dyn_V2_buffer_unique[0].data(), dyn_buffer_size, 1, "dyn_V2_buffer_1.dat");
}

void Transport::dyn_disorder_build_w0_no_V_buffer() {
  if (unique_2mol_calc_flag)
    dyn_disorder_build_w0_no_V_buffer_unique();
  else
    dyn_disorder_build_w0_no_V_buffer_full();
}

// One rate evaluation per sample, each from two random frames.
void Transport::dyn_disorder_build_w0_no_V_buffer_full() {
  std::printf("Building dynamic disorder dyn_w0_no_V2_buffer_full...\n");
  dyn_w0_no_V_buffer_full.assign(nmols_uc, {});
  for (int i = 0; i < nmols_uc; ++i) {
    dyn_w0_no_V_buffer_full[i].assign(std::max(nneighbors[i], 0), std::vector<double>(buffer_len(*this)));
    for (int j = 0; j < nneighbors[i]; ++j) fill_rates(*this, dyn_w0_no_V_buffer_full[i][j], i, j);
  }
  if (!dyn_w0_no_V_buffer_full.empty() && !dyn_w0_no_V_buffer_full[0].empty())
    output_vector(dyn_w0_no_V_buffer_full[0][0].data(), dyn_buffer_size, 1, "dyn_w0_no_V_buffer_1.dat");
}

void Transport::dyn_disorder_build_w0_no_V_buffer_unique() {
  std::printf("Building dyn_w0_no_V_buffer_unique...\n");
  dyn_w0_no_V_buffer_unique.assign(std::max(pair_keylist_count, 0), std::vector<double>(buffer_len(*this)));
  for (int u = 0; u < pair_keylist_count; ++u) {
    int i, j;
    unique_pair_position(*this, u, &i, &j);
    fill_rates(*this, dyn_w0_no_V_buffer_unique[u], i, j);
  }
  if (!dyn_w0_no_V_buffer_unique.empty())
    output_vector(dyn_w0_no_V_buffer_unique[0].data(), dyn_buffer_size, 1, "dyn_w0_no_V_buffer_1.dat");
}

// ---- rates in time ------------------------------------------------------------------
// Mode 1 walks the V^2 buffer at the caller's phase plus time; modes 2 and 3 draw
// the energy sample afresh, independent of time, from a generator seeded per call.

void Transport::dyn_disorder_calc_w0(double t, double* phase, double* rates, int i) {
  const int mode = dyn_disorder_mode;
  if (mode < 1 || mode > 3) return;
  const int B = dyn_buffer_size;
  if (B < 1) TX_FATAL(txunit::transport, 1, stderr, "dyn_buffer_size (%d) must be at least 1\n", B);
  const int nn = nneighbors[i];
  double c = 0.0;
  if (mode != 2) c = static_cast<double>(B) / (first_pair_count(*this) * dyn_V_dt);
  std::mt19937 g;
  if (mode != 1) g.seed(kmc_seam::device_seed());
  for (int j = 0; j < nn; ++j) {
    if (mode == 1) {
      const size_t s = sample_index(B * phase[j] + c * t, B);
      if (w0_no_V == nullptr)
        TX_FATAL(txunit::transport, 1, stderr, "No w0_no_V rates for molecule %d, neighbor %d\n", i + 1, j + 1);
      rates[j] = buffer_row(*this, false, i, j)[s] * w0_no_V[i][j];
    } else if (mode == 2) {
      const double V = static_V(*this, i, j);
      rates[j] = V * V * buffer_row(*this, true, i, j)[canonical_index(g, B)];
    } else {
      const size_t s = sample_index(B * phase[j] + c * t, B);
      const size_t k = canonical_index(g, B);
      rates[j] = buffer_row(*this, true, i, j)[k] * buffer_row(*this, false, i, j)[s];
    }
  }
}
