// Transport: the treatment that follows reading the control file, the bring-up of
// a Monte Carlo run, and the per-pair data files that earlier stages of the
// workflow leave in the working directory (rates, transfer integrals, site
// energies, normal modes, outer reorganisation energies, carrier and temperature).
//
// All files are plain text in the working directory. Every pair file is laid out
// as: a root count; per root a neighbor count; then one row per neighbor. The
// counts must match the neighbor list, since the rows are stored per neighbor.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "array_release.h"
#include "transport.h"

namespace {

constexpr double kHartreePerMeV = 3.675e-5;
constexpr double kHartreePerCm = 4.556e-6;
constexpr double kHartreePerVoltElectron = 0.03675;  // field term, per volt times the electron charge
constexpr double kMeterPerAngstrom = 1e-10;
constexpr double kHartreeToMeV = 27.2114 * 1000.0;

const char* const kChargeFile = "charge.inp";
const char* const kTempFile = "temp.inp";
const char* const kW0File = "w0.dat";
const char* const kChargeMessage = "chargetype in charge.inp should be either 'e' or 'h'\n";

// A W file is read 254 characters at a time, as its writer's lines are bounded.
constexpr int kWLineBuffer = 255;

// An open data file read line by line; the line count names the place of a
// failure. Every failure ends the process with the file's status.
class DataFile {
 public:
  DataFile(FILE* fp, const char* name, int status, bool bounded_lines = false)
      : fp_(fp), name_(name), status_(status), bounded_(bounded_lines) {}
  ~DataFile() { std::fclose(fp_); }
  DataFile(const DataFile&) = delete;
  DataFile& operator=(const DataFile&) = delete;

  const char* name() const { return name_.c_str(); }

  // The next line without its line end. A bounded file gives at most 254
  // characters a piece, so a longer line counts as more than one.
  std::string next() {
    std::string text;
    if (!read(text))
      TX_FATAL(txunit::transport, status_, stdout, "Failed to read '%s' line %d: unexpected end of file\n", name(),
               line_);
    return text;
  }

  // False at the end of the file.
  bool read(std::string& text) {
    ++line_;
    text.clear();
    char buf[kWLineBuffer];
    bool got = false;
    while (std::fgets(buf, sizeof buf, fp_) != nullptr) {
      got = true;
      text += buf;
      if (bounded_ || (!text.empty() && text.back() == '\n')) break;
    }
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    return got;
  }

  // A count line: its leading integer, 0 when it has none.
  int next_count() { return leading_int(next()); }

  // A line whose first field is a number ("%lf"); the rest of the line is not read.
  double next_value() {
    const std::string text = next();
    const char* p = text.c_str();
    double v = 0.0;
    if (!scan_number(p, &v)) fail("no number");
    return v;
  }

  [[noreturn]] void fail(const char* what) {
    TX_FATAL(txunit::transport, status_, stdout, "Failed to read '%s' line %d: %s\n", name(), line_, what);
  }

  // The counts of a pair file must be those of the structure and neighbor list.
  void expect_count(int read, int expected) {
    if (read != expected)
      TX_FATAL(txunit::transport, status_, stdout, "Data in '%s' incomptible: %d : %d should be equal!\n", name(), read,
               expected);
  }

  // One "%lf" of scanf: leading white space skipped, a number as strtod reads it.
  static bool scan_number(const char*& p, double* v) {
    char* end = nullptr;
    const double x = strtod_c(p, &end);
    if (end == p) return false;
    *v = x;
    p = end;
    return true;
  }

  // One "%s" of scanf, without a fixed buffer: white space skipped, then the run
  // of non-blank characters.
  static bool scan_word(const char*& p, std::string* w) {
    while (*p != '\0' && std::isspace(static_cast<unsigned char>(*p))) ++p;
    if (*p == '\0') return false;
    const char* start = p;
    while (*p != '\0' && !std::isspace(static_cast<unsigned char>(*p))) ++p;
    w->assign(start, p);
    return true;
  }

 private:
  FILE* fp_;
  std::string name_;
  int status_;
  bool bounded_;
  int line_ = 0;
};

// "%lf%s%lf%s%lf%s" on one W row: the number of fields converted, as sscanf
// counts them, stopping at the first that fails.
int scan_w_row(const std::string& text, double value[3], std::string unit[3]) {
  const char* p = text.c_str();
  int n = 0;
  for (int k = 0; k < 3; ++k) {
    if (!DataFile::scan_number(p, &value[k])) return n;
    ++n;
    if (!DataFile::scan_word(p, &unit[k])) return n;
    ++n;
  }
  return n;
}

// Factor from a W file's rate unit to 1/ns; an unknown unit is taken as 1/ns.
double w_unit_scale(const std::string& unit) {
  std::vector<char> buf(unit.begin(), unit.end());
  buf.push_back('\0');
  const std::string u = c_trim(buf.data());
  if (iequals(u, "1/s")) return 1e-9;
  if (iequals(u, "1/ps")) return 1000.0;
  return 1.0;  // "1/ns" and every unit not recognised
}

// The first line of a file, without its line end; empty for an empty file.
std::string first_line(FILE* fp) {
  DataFile f(fp, "", 0);
  std::string text;
  f.read(text);
  return text;
}

std::string lower_case(std::string s) {
  for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

int lower_char(char c) { return std::tolower(static_cast<unsigned char>(c)); }

// Truncation toward zero of tsimu/tsnap + 0.5. A quotient that is no finite int
// (tsnap = 0 gives an infinity or a NaN) has no count: converting it would be
// undefined, so it ends the run instead.
int snapshot_count(double tsimu, double tsnap) {
  const double q = tsimu / tsnap + 0.5;
  if (!(q > -2147483648.0 && q < 2147483647.0))
    TX_FATAL(txunit::transport, 1, stdout, "tsimu = %g ns and tsnap = %g ns give no number of snapshots\n", tsimu,
             tsnap);
  return static_cast<int>(q);
}

// Rows of per-neighbor doubles, zero-filled.
double** neighbor_rows(int nmols, const int* nneighbors, int per_neighbor) {
  double** rows = new double*[nmols];
  for (int i = 0; i < nmols; ++i) rows[i] = new double[static_cast<size_t>(per_neighbor) * nneighbors[i]]();
  return rows;
}

}  // namespace

// ---- set-up after reading ------------------------------------------------------

void Transport::post_data_read_treatment(bool verbose) {
  carrier_char = chargetype.empty() ? 0 : lower_char(chargetype[0]);
  nsnap = snapshot_count(tsimu, tsnap);

  if (compute_engine != 1) RE_use_neutral_chk = false;
  set_data_mol_output_level(data_mol_output_level);
  if (lower_case(qc_basis).find("zindos") != std::string::npos && use_moo) set_job_moo_flag(true);
  if (lower_case(qc_basis_re).find("zindos") != std::string::npos) {
    qc_basis_re = "b3lyp STO-3g";
    if (verbose) std::printf("\nINFO: QC_basis_re is adjusted to '%s'\n\n", qc_basis_re.c_str());
  }

  if (reorg_outer_flag == 2 && static_cast<int>(reorg_outer_radii.size()) < nmols_uc)
    TX_FATAL(txunit::transport, 1, stderr,
             "reorg_outer: Number of radiuses (%d) is LESS than number of molecules (%d)\n",
             static_cast<int>(reorg_outer_radii.size()), nmols_uc);
  if (reorg_outer_flag == 3 && (qc_exe.find("g09") != std::string::npos || qc_exe.find("g16") != std::string::npos) &&
      !(qc_basis_re.find("MK") != std::string::npos && qc_basis_re.find("6/33=2") != std::string::npos &&
        qc_basis_re.find("6/42=6") != std::string::npos)) {
    const char* const pop = " Pop=MK IOp(6/33=2,6/42=6,7/33=1)";
    qc_basis_re += pop;
    if (verbose) std::printf("\nINFO: append basis_re with%s\n", pop);
  }

  calc_x_com();
  calc_homo();
  parse_scheduling_type();

  if (!homo_adjustment.empty() && static_cast<int>(homo_adjustment.size()) != nmols_uc)
    TX_FATAL(txunit::transport, 1, stdout,
             "homo_adjustment: Number of input parameters (%d) is NOT equal to nmols_uc (%d)\n",
             static_cast<int>(homo_adjustment.size()), nmols_uc);
  if (!lumo_adjustment.empty() && static_cast<int>(lumo_adjustment.size()) != nmols_uc)
    TX_FATAL(txunit::transport, 1, stdout,
             "lumo_adjustment: Number of input parameters (%d) is NOT equal to nmols_uc (%d)\n",
             static_cast<int>(lumo_adjustment.size()), nmols_uc);

  if (compute_engine == 1)
    qc_log_ext = "log";
  else if (compute_engine >= 2 && compute_engine <= 4)
    qc_log_ext = "out";
  post_read_done = true;
}

void Transport::calc_homo() {
  release_array(homo_index);
  homo_index = new int[std::max(nmols_uc, 0)];
  const bool moo = get_job_moo_flag();
  for (int i = 0; i < nmols_uc; ++i) {
    int electrons = 0;
    for (int a = 0; a < mol_natoms[i]; ++a) {
      const int z = mol_atypes[i][a];  // the element index is the atomic number
      if (moo && z >= 3 && z <= 10)
        electrons += z - 2;
      else if (moo && z >= 11 && z <= 18)
        electrons += z - 10;
      else
        electrons += z;  // heavier elements keep their core even with moo, as the count stands
    }
    homo_index[i] = electrons / 2;
  }
  homo_ready = true;
}

// ---- Monte Carlo bring-up ------------------------------------------------------

void Transport::MC_init() {
  if (mc_ready) return;
  std::printf("Initializing MC...\n");
  create_directory(trackdir);

  // A list already on the object is kept: building again would drop the first one's
  // rows without releasing them.
  if (!neighbor_built) build_neighbor_list(read_neighbor_dat, false);
  max_nneighbors = 0;
  for (int i = 0; i < nmols_uc; ++i) max_nneighbors = std::max(max_nneighbors, nneighbors[i]);

  calc_homo();
  read_charge_inp();
  read_MC_w0();
  write_MC_w0(w0, nmols_uc);
  write_MC_hoprates("hoprates.dat");

  if (V_dynamic_disorder && HOMOLUMO_dynamic_disorder)
    dyn_disorder_mode = 3;
  else if (V_dynamic_disorder)
    dyn_disorder_mode = 1;
  else if (HOMOLUMO_dynamic_disorder)
    dyn_disorder_mode = 2;
  else
    dyn_disorder_mode = 0;

  if (dyn_disorder_mode != 0) {
    std::printf("Initializing dynamic disorder...\n");
    std::printf("  V_dynamic_disorder  = %d\n", static_cast<int>(V_dynamic_disorder));
    std::printf("  HL_dynamic_disorder = %d\n", static_cast<int>(HOMOLUMO_dynamic_disorder));
    if (unique_2mol_calc_flag) dyn_disorder_build_unique_pairs();
    dyn_disorder_init_prefix(false);
    if (V_dynamic_disorder) dyn_disorder_read_dyn_V_data(false);
    if (HOMOLUMO_dynamic_disorder) dyn_disorder_read_dyn_HL_data(false);
    if (V_dynamic_disorder) {
      dyn_disorder_build_w0_no_V();
      dyn_disorder_build_V2_buffer();
    }
    if (HOMOLUMO_dynamic_disorder) dyn_disorder_build_w0_no_V_buffer();
    // Zero phases at t = 0 read sample 0 of every buffer: the rates of time zero.
    std::vector<double> phases(std::max(max_nneighbors, 1), 0.0);
    for (int i = 0; i < nmols_uc; ++i) dyn_disorder_calc_w0(0.0, phases.data(), w0[i], i);
    write_MC_hoprates_dyn("hoprates-dyn.dat");
  }

  neighbor_nkeys = 0;
  for (int i = 0; i < nmols_uc; ++i) neighbor_nkeys += nneighbors[i];
  nsnap = snapshot_count(tsimu, tsnap);
  if (nsnap < 0)
    TX_FATAL(txunit::transport, 1, stdout, "tsimu = %g ns and tsnap = %g ns give a negative number of snapshots\n",
             tsimu, tsnap);
  const size_t n = static_cast<size_t>(nsnap) + 1;
  // The walkers fill every track entry they write; zero-filled all the same, so
  // that nothing indeterminate can ever be read.
  track_istep = new int[n]();
  track_t = new double[n]();
  track_x = new double[3 * n]();
  track_r2 = new double[n]();
  ave_istep = new int[n]();
  ave_t = new double[n]();
  ave_x = new double[3 * n]();
  ave_r2 = new double[n]();

  // Deliberately after the rates: a temperature from temp.inp changes nothing
  // already computed.
  const double t = read_temp_inp();
  if (t > 0.0) temp = t;

  std::printf("  chargetype = %s\n", mc_chargetype.c_str());
  std::printf("  temp       = %g\n", temp);
  std::printf("  nsimu      = %d\n", nsimu);
  std::printf("  tsimu      = %g ns\n", tsimu);
  std::printf("  tsnap      = %g ns\n", tsnap);
  mc_ready = true;
}

void Transport::read_charge_inp() {
  FILE* fp = std::fopen(kChargeFile, "r");
  if (fp == nullptr) TX_FATAL(txunit::transport, -1, stdout, "Failed to open input file %s\n", kChargeFile);
  std::printf("Reading file '%s'...\n", kChargeFile);
  std::string text = first_line(fp);
  trim(text);
  const char c = text.empty() ? '\0' : text[0];
  if (mc_chargetype.empty())
    mc_chargetype.assign(1, c);
  else
    mc_chargetype[0] = c;
}

double Transport::read_temp_inp() {
  FILE* fp = std::fopen(kTempFile, "r");
  if (fp == nullptr) return 300.0;
  std::printf("Reading input file %s...\n", kTempFile);
  const std::string text = first_line(fp);
  const char* p = text.c_str();
  double t = 0.0;  // a first line without a number reads as 0, which MC_init ignores
  DataFile::scan_number(p, &t);
  return t;
}

// Rows of a W file: three value-unit pairs. Only the second is read, the rate;
// the rate tool writes the pair's transfer integral in meV first and the
// centre-of-mass distance in angstrom third, and both are skipped.
// The unit of a molecule's first row scales all of its rows.
void Transport::read_MC_w0() {
  std::printf("Reading W files...\n");
  const int c = mc_chargetype.empty() ? 0 : lower_char(mc_chargetype[0]);
  const char* name = c == 'e' ? "WL.dat" : c == 'h' ? "WH.dat" : nullptr;
  if (name == nullptr) {
    std::printf("INFO: MC chargetype = %s\n", mc_chargetype.c_str());
    TX_FATAL(txunit::transport, -1, stdout, "CHARGETYPE IS NOT SET CORRECTLY!\n");
  }
  FILE* fp = std::fopen(name, "r");
  if (fp == nullptr) TX_FATAL(txunit::transport, -1, stdout, "Failed to open input file %s\n", name);
  DataFile f(fp, name, -1, true);
  if (!neighbor_built)
    TX_FATAL(txunit::transport, -1, stdout, "The neighbor list must be built before reading %s\n", name);

  if (w0 == nullptr) {
    w0 = neighbor_rows(nmols_uc, nneighbors, 1);
    run_rows_allocated = nmols_uc;
  }
  f.expect_count(f.next_count(), nmols_uc);
  if (debug_flag) std::printf("w0 unit scales in '%s':\n", name);
  double value[3];
  std::string unit[3];
  for (int i = 0; i < nmols_uc; ++i) {
    f.expect_count(f.next_count(), nneighbors[i]);
    double scale = 1.0;
    for (int j = 0; j < nneighbors[i]; ++j) {
      unit[1].clear();
      if (scan_w_row(f.next(), value, unit) < 3) f.fail("no rate in the second value-unit pair");
      if (j == 0) scale = w_unit_scale(unit[1]);
      w0[i][j] = scale * value[1];
    }
    if (debug_flag) std::printf("  s: %g\n", scale);
  }
}

void Transport::write_MC_w0(double** w, int /*n: the shape comes from the neighbor list*/) {
  FILE* fp = std::fopen(kW0File, "w+t");
  if (fp == nullptr) TX_FATAL(txunit::transport, 1, stderr, "Failed to open output file %s\n", kW0File);
  std::fprintf(fp, "%d\n", nmols_uc);
  for (int i = 0; i < nmols_uc; ++i) {
    std::fprintf(fp, "%d\n", nneighbors[i]);
    for (int j = 0; j < nneighbors[i]; ++j) std::fprintf(fp, " %14.6e 1/ns\n", w[i][j]);
  }
  std::fclose(fp);
}

namespace {

// The pair table of hoprates.dat and hoprates-dyn.dat; `V` (meV per root and
// neighbor) adds the transfer-integral column.
void write_pair_table(Transport& t, const char* file, const std::vector<std::vector<double>>* V) {
  FILE* fp = std::fopen(file, "wt");
  if (fp == nullptr) TX_FATAL(txunit::transport, -1, stdout, "Failed to open output file \"%s\"\n", file);
  std::printf("Writing file '%s'...\n", file);
  std::fprintf(fp, "# nroot, root_mol_info, nnei, neighbors_info\n");
  std::fprintf(fp, "# r = molecular COM distance, cindex = neighbor cell index\n");
  std::fprintf(fp, "%d\n", t.nmols_uc);
  for (int i = 0; i < t.nmols_uc; ++i) {
    std::fprintf(fp, "%d %8.4f %8.4f %8.4f  # root\n", i + 1, t.mol_x_com[i][0], t.mol_x_com[i][1], t.mol_x_com[i][2]);
    if (V)
      std::fprintf(fp, "%4d #     dx        dy        dz         r    cindex        transint             hoprate\n",
                   t.nneighbors[i]);
    else
      std::fprintf(fp, "%4d #     dx        dy        dz         r    cindex        hoprate\n", t.nneighbors[i]);
    for (int j = 0; j < t.nneighbors[i]; ++j) {
      // The fractional root-to-neighbor displacement of the list, in angstrom.
      double d[3];
      mat_vec_mul(t.latt_f2c, &t.neighbor_df[i][3 * j], d);
      const double r = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
      if (V)
        std::fprintf(fp, "%4d  %8.4f  %8.4f  %8.4f  %8.4f  %2d %2d %2d  %14.6e meV  %14.6e 1/ns\n",
                     t.neighbor_id[i][j] + 1, d[0], d[1], d[2], r, t.neighbor_cx[i][j], t.neighbor_cy[i][j],
                     t.neighbor_cz[i][j], (*V)[i][j], t.w0[i][j]);
      else
        std::fprintf(fp, "%4d  %8.4f  %8.4f  %8.4f  %8.4f  %2d %2d %2d  %14.6e 1/ns\n", t.neighbor_id[i][j] + 1, d[0],
                     d[1], d[2], r, t.neighbor_cx[i][j], t.neighbor_cy[i][j], t.neighbor_cz[i][j], t.w0[i][j]);
    }
  }
  std::fclose(fp);
}

}  // namespace

void Transport::write_MC_hoprates(const char* file) {
  FILE* cf = std::fopen(kChargeFile, "r");
  if (cf == nullptr) TX_FATAL(txunit::transport, 1, stdout, "%s", kChargeMessage);
  const std::string charge = first_line(cf);
  if (debug_level) {
    std::printf("Reading charge file '%s'...\n", kChargeFile);
    std::printf("  charge = %s\n", charge.c_str());
  }
  const char c = charge.empty() ? '\0' : charge[0];
  const char* name = c == 'e' ? "VL.dat" : c == 'h' ? "VH.dat" : nullptr;
  if (name == nullptr) TX_FATAL(txunit::transport, 1, stdout, "%s", kChargeMessage);

  FILE* fp = std::fopen(name, "r");
  if (fp == nullptr) TX_FATAL(txunit::transport, -1, stdout, "Failed to open input file %s\n", name);
  std::vector<std::vector<double>> V(nmols_uc);
  {
    DataFile f(fp, name, -1);
    f.expect_count(f.next_count(), nmols_uc);
    for (int i = 0; i < nmols_uc; ++i) {
      f.expect_count(f.next_count(), nneighbors[i]);
      for (int j = 0; j < nneighbors[i]; ++j) V[i].push_back(f.next_value());  // meV, as read; the unit is not read
    }
  }
  write_pair_table(*this, file, &V);
}

void Transport::write_MC_hoprates_dyn(const char* file) { write_pair_table(*this, file, nullptr); }

// ---- per-pair data of the rate builders ----------------------------------------

void Transport::dyn_disorder_init_prefix(bool verbose) {
  std::printf("General dynamic disorder initialization...\n");
  if (!neighbor_built)
    TX_FATAL(txunit::transport, 1, stdout, "The neighbor list must be built before the pair data are read\n");
  // What this operation owns starts afresh, so that a second call leaks nothing.
  release_rows(lambda_outer, run_rows_allocated);
  release_rows(neighbor_dx, run_rows_allocated);
  release_rows(dE_field, run_rows_allocated);
  release_array(neighbor_key_offset);
  release_array(S_m);
  release_array(freq_m);
  const int n = nmols_uc;

  // 1. Temperature, taken as it stands (0 and negative values included).
  if (FILE* fp = std::fopen(kTempFile, "r")) {
    temp = strtod_c(first_line(fp));
    if (verbose) {
      std::printf("Reading temperature file %s...\n", kTempFile);
      std::printf("  temp = %g\n", temp);
    }
  }

  // 2. Carrier.
  if (FILE* fp = std::fopen(kChargeFile, "r")) {
    const std::string charge = first_line(fp);
    carrier_char = charge.empty() ? 0 : lower_char(charge[0]);
    if (verbose) {
      std::printf("Reading charge file %s...\n", kChargeFile);
      std::printf("  charge = %s\n", charge.c_str());
    }
  }
  if (carrier_char != 'e' && carrier_char != 'h') TX_FATAL(txunit::transport, 1, stdout, "%s", kChargeMessage);
  const bool electron = carrier_char == 'e';

  // 3. Applied field. The field components are taken along the cell axes while the
  // displacement stays Cartesian; the mix is deliberate.
  if (appE_flag) {
    if (verbose) std::printf("Calculating app_elec_F COM...\n");
    neighbor_dx = neighbor_rows(n, nneighbors, 3);
    dE_field = neighbor_rows(n, nneighbors, 1);
    run_rows_allocated = n;
    for (int r = 0; r < 3; ++r)
      for (int c = 0; c < 3; ++c) field_axes[r][c] = latt_3x3[r][c] / latt_lengths[c];
    double e[3];
    for (int c = 0; c < 3; ++c)
      e[c] = field_axes[0][c] * app_elec_F[0] + field_axes[1][c] * app_elec_F[1] + field_axes[2][c] * app_elec_F[2];
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < nneighbors[i]; ++j) {
        const int id = neighbor_id[i][j];
        const int cell[3] = {neighbor_cx[i][j], neighbor_cy[i][j], neighbor_cz[i][j]};
        double df[3];
        for (int k = 0; k < 3; ++k) df[k] = mol_x_s_com[id][k] + cell[k] - mol_x_s_com[i][k];
        double* dx = &neighbor_dx[i][3 * j];
        mat_vec_mul(latt_f2c, df, dx);
        dE_field[i][j] = (e[0] * dx[0] + e[1] * dx[1] + e[2] * dx[2]) * kMeterPerAngstrom * kHartreePerVoltElectron;
      }
  }

  // 4. Outer reorganisation energies, meV per pair.
  if (reorg_outer_flag != 0) {
    const char* name = electron ? "reorg_lambda_outer-e.dat" : "reorg_lambda_outer-h.dat";
    if (verbose) {
      std::printf("Reading RE outer energies...\n");
      std::printf("Reading RE file %s...\n", name);
    }
    FILE* fp = std::fopen(name, "r");
    // The words of an output file, for an input file: the report stands so.
    if (fp == nullptr) TX_FATAL(txunit::transport, 1, stdout, "Failed to open output file %s\n", name);
    DataFile f(fp, name, 1);
    lambda_outer = neighbor_rows(n, nneighbors, 1);
    run_rows_allocated = n;
    f.expect_count(f.next_count(), n);
    for (int i = 0; i < n; ++i) {
      f.expect_count(f.next_count(), nneighbors[i]);
      for (int j = 0; j < nneighbors[i]; ++j) lambda_outer[i][j] = f.next_value() * kHartreePerMeV;
    }
  }

  // 5. Per-molecule containers.
  nm_freq.assign(n, std::vector<double>());
  nm_lambda.assign(n, std::vector<double>());
  nm_S.assign(n, std::vector<double>());
  V_pair.assign(n, std::vector<double>());
  dE_pair.assign(n, std::vector<double>());
  nNM.assign(n, 0);
  nV.assign(n, 0);
  nE.assign(n, 0);

  // 6. Transfer integrals, meV per pair; the unit word is not read.
  {
    const char* name = electron ? "VL.dat" : "VH.dat";
    FILE* fp = std::fopen(name, "r");
    if (fp == nullptr) TX_FATAL(txunit::transport, 1, stdout, "Failed to open input file %s\n", name);
    if (verbose) std::printf("Reading V file %s...\n", name);
    DataFile f(fp, name, 1);
    f.expect_count(f.next_count(), n);
    for (int i = 0; i < n; ++i) {
      nV[i] = f.next_count();
      if (verbose) std::printf("  nV = %d\n", nV[i]);
      f.expect_count(nV[i], nneighbors[i]);
      for (int j = 0; j < nV[i]; ++j) V_pair[i].push_back(f.next_value() * kHartreePerMeV);
      dE_pair[i].assign(nV[i], 0.0);
    }
  }

  // 7. Site-energy differences, meV per pair; without the file they stay zero.
  if (lat_site_energy) {
    const char* name = electron ? "EL.dat" : "EH.dat";
    if (FILE* fp = std::fopen(name, "r")) {
      if (verbose) std::printf("Reading E file %s...\n", name);
      DataFile f(fp, name, 1);
      f.expect_count(f.next_count(), n);
      for (int i = 0; i < n; ++i) {
        nE[i] = f.next_count();
        if (verbose) std::printf("  nE = %d\n", nE[i]);
        f.expect_count(nE[i], nneighbors[i]);
        for (int j = 0; j < nE[i]; ++j) dE_pair[i][j] = f.next_value() * kHartreePerMeV;
      }
    }
  }

  // 8. Normal modes: a line not read, then per molecule a count and rows of
  // frequency (cm-1), reorganisation energy (cm-1) and Huang-Rhys factor.
  {
    const char* name = electron ? "NM-e.dat" : "NM-h.dat";
    if (verbose) std::printf("Reading NM file %s...\n", name);
    FILE* fp = std::fopen(name, "r");
    if (fp == nullptr) TX_FATAL(txunit::transport, 1, stdout, "Failed to open input file %s\n", name);
    DataFile f(fp, name, 1);
    f.next();
    max_nNM = 0;
    for (int i = 0; i < n; ++i) {
      nNM[i] = f.next_count();
      if (verbose) std::printf("  nNM = %d\n", nNM[i]);
      if (nNM[i] < 0) f.fail("negative number of modes");
      max_nNM = std::max(max_nNM, nNM[i]);
      for (int k = 0; k < nNM[i]; ++k) {
        const std::string text = f.next();
        const char* p = text.c_str();
        double v[3];
        for (double& x : v)
          if (!DataFile::scan_number(p, &x)) f.fail("three numbers are needed: frequency, lambda, S");
        nm_freq[i].push_back(v[0]);
        nm_lambda[i].push_back(v[1]);
        nm_S[i].push_back(v[2]);
      }
    }
  }

  // 9. cm-1 to hartree; the Huang-Rhys factors have no unit.
  for (int i = 0; i < n; ++i)
    for (int k = 0; k < nNM[i]; ++k) {
      nm_freq[i][k] *= kHartreePerCm;
      nm_lambda[i][k] *= kHartreePerCm;
    }

  // 10. The outer term enters quantum rates through the frequencies: every
  // neighbor's share is added in turn, accumulating. Kept as it stands.
  if (reorg_outer_flag != 0 && !strcasestr_n(ratetype.c_str(), "marcus", 4)) {
    for (int i = 0; i < n; ++i) {
      double Ssum = 0.0;
      for (int k = 0; k < nNM[i]; ++k) Ssum += nm_S[i][k];
      for (int j = 0; j < nneighbors[i]; ++j)
        for (int k = 0; k < nNM[i]; ++k) nm_freq[i][k] += nm_S[i][k] * lambda_outer[i][j] / Ssum;
    }
  }

  // 11. Total reorganisation energy per molecule, negative modes left out.
  lambda_mol.assign(n, 0.0);
  for (int i = 0; i < n; ++i) {
    for (int k = 0; k < nNM[i]; ++k) {
      const double lam = nm_lambda[i][k];
      if (lam < 0.0) {
        std::printf("Warning: lam < 0.0 (%d %g)\n", k, lam);
        continue;
      }
      lambda_mol[i] += lam;
    }
    if (verbose) std::printf("  Total reorganization energy is %g meV\n", lambda_mol[i] * kHartreeToMeV);
  }

  // 12. The free kernels' globals.
  ratetype_m = ratetype;
  temperature_m = temp;
  maxt_m = maxt;
  S_m = new double[max_nNM]();
  freq_m = new double[max_nNM]();

  // 13. Key offsets and the positions of the unique pairs.
  neighbor_key_offset = new int[std::max(n, 0)];
  int offset = 0;
  for (int i = 0; i < n; ++i) {
    neighbor_key_offset[i] = offset;
    offset += nneighbors[i];
  }
  unique_pair_index.clear();
  if (unique_2mol_calc_flag)
    for (int k = 0; k < pair_keylist_count; ++k) unique_pair_index[pair_keylist[k]] = k;

  // 14. Rate rows.
  if (w0 == nullptr) {
    w0 = neighbor_rows(n, nneighbors, 1);
    run_rows_allocated = n;
  }
  if (V_dynamic_disorder && w0_no_V == nullptr) {
    w0_no_V = neighbor_rows(n, nneighbors, 1);
    w0_no_V_rows_allocated = n;
  }
}
