// tavix_mob.exe: diffusion tensor and mobility of a work directory's Monte Carlo run.
//
// The walk's second moments are fitted against time. Along a unit vector n the
// projection n.r is a one-dimensional walk, so <(n.r)^2> = 2 D_n t and D_n is half
// the slope; the average over a, b and c is the trace over three dimensions,
// MSD_total = 6 D t, that is D = slope/(2*3). The moments are taken about the mean
// displacement of the run, so that a drift under an applied field does not enter
// D; without a field the mean is zero up to noise. The per-direction moments need
// the single tracks (track_total.dat holds mean positions, not mean squares); the
// time axis is the t column of track_total.dat, the mean time of each row.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "suite_tools.h"

namespace suite_tools {

namespace {

// Component order of the symmetric tensors: xx, yy, zz, xy, yz, zx.
constexpr int kCompA[6] = {0, 1, 2, 0, 1, 2};
constexpr int kCompB[6] = {0, 1, 2, 1, 2, 0};

// k_B / e in volt per kelvin (exact SI values of k_B and e).
constexpr double kBoltzmannVoltPerKelvin = 1.380649e-23 / 1.602176634e-19;
// angstrom^2/ns to cm^2/s: 1e-16 cm^2 per angstrom^2 over 1e-9 s per ns.
constexpr double kAngstrom2PerNsToCm2PerS = 1e-16 / 1e-9;
constexpr double kPi = 3.141592653589793;

double mean_of(const std::vector<double>& v) {
  double s = 0.0;
  for (double x : v) s += x;
  return v.empty() ? 0.0 : s / static_cast<double>(v.size());
}

// Standard error of the mean of v.
double standard_error(const std::vector<double>& v) {
  const size_t n = v.size();
  if (n < 2) return 0.0;
  const double m = mean_of(v);
  double ss = 0.0;
  for (double x : v) ss += (x - m) * (x - m);
  return std::sqrt(ss / static_cast<double>(n - 1) / static_cast<double>(n));
}

double quad(const double M[3][3], const double n[3]) {
  double s = 0.0;
  for (int a = 0; a < 3; ++a)
    for (int b = 0; b < 3; ++b) s += n[a] * M[a][b] * n[b];
  return s;
}

void unit(double v[3]) {
  const double r = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
  for (int a = 0; a < 3; ++a) v[a] /= r;
}

// ---- the plot -----------------------------------------------------------------

struct Curve {
  const char* label;
  const char* colour;
  std::vector<double> y;  // angstrom^2 per fitted row
  double a, b;            // fitted line a + b t
};

// A nice step for about `n` ticks over [0, hi].
double tick_step(double hi, int n) {
  if (!(hi > 0.0)) return 1.0;
  const double raw = hi / n;
  const double p = std::pow(10.0, std::floor(std::log10(raw)));
  const double f = raw / p;
  return (f < 1.5 ? 1.0 : f < 3.5 ? 2.0 : f < 7.5 ? 5.0 : 10.0) * p;
}

std::string msd_svg(const std::vector<double>& t, const std::vector<Curve>& curves, const std::string& title) {
  const double W = 720, H = 480, L = 90, R = 150, T = 50, B = 60;
  double tmax = 0.0, ymax = 0.0;
  for (double x : t) tmax = std::max(tmax, x);
  for (const Curve& c : curves) {
    for (double y : c.y) ymax = std::max(ymax, y);
    ymax = std::max(ymax, c.a + c.b * tmax);
  }
  if (!(tmax > 0.0)) tmax = 1.0;
  if (!(ymax > 0.0)) ymax = 1.0;
  const double xs = tick_step(tmax, 5), ys = tick_step(ymax, 5);
  tmax = std::ceil(tmax / xs) * xs;
  ymax = std::ceil(ymax / ys) * ys;
  auto X = [&](double v) { return L + (W - L - R) * v / tmax; };
  auto Y = [&](double v) { return H - B - (H - T - B) * std::min(std::max(v, 0.0), ymax) / ymax; };

  std::string s;
  s += formatString("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.0f\" height=\"%.0f\" "
                    "viewBox=\"0 0 %.0f %.0f\" font-family=\"sans-serif\" font-size=\"13\">\n", W, H, W, H);
  s += formatString("<rect x=\"0\" y=\"0\" width=\"%.0f\" height=\"%.0f\" fill=\"white\"/>\n", W, H);
  s += formatString("<text x=\"%.1f\" y=\"28\" text-anchor=\"middle\" font-size=\"15\">%s</text>\n", (W + L - R) / 2,
                    title.c_str());
  // Axes, ticks and labels.
  s += formatString("<path d=\"M%.1f %.1f V%.1f H%.1f\" fill=\"none\" stroke=\"black\"/>\n", L, T, H - B, W - R);
  for (double v = 0.0; v <= tmax * (1 + 1e-9); v += xs) {
    s += formatString("<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\" stroke=\"black\"/>\n", X(v), H - B, X(v),
                      H - B + 5);
    s += formatString("<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"middle\">%g</text>\n", X(v), H - B + 20, v);
  }
  for (double v = 0.0; v <= ymax * (1 + 1e-9); v += ys) {
    s += formatString("<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\" stroke=\"black\"/>\n", L - 5, Y(v), L,
                      Y(v));
    s += formatString("<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"end\">%g</text>\n", L - 8, Y(v) + 4, v);
  }
  s += formatString("<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"middle\">t (ns)</text>\n", (W + L - R) / 2, H - 15);
  s += formatString("<text x=\"20\" y=\"%.1f\" text-anchor=\"middle\" transform=\"rotate(-90 20 %.1f)\">"
                    "MSD (angstrom^2)</text>\n", (H - B + T) / 2, (H - B + T) / 2);
  // Data as dots, fits as lines, a legend on the right.
  for (size_t k = 0; k < curves.size(); ++k) {
    const Curve& c = curves[k];
    s += formatString("<g fill=\"%s\">\n", c.colour);
    for (size_t i = 0; i < t.size() && i < c.y.size(); ++i)
      s += formatString("<circle cx=\"%.2f\" cy=\"%.2f\" r=\"2.5\"/>\n", X(t[i]), Y(c.y[i]));
    s += "</g>\n";
    // The line ends where it leaves the plot.
    double t1 = tmax;
    if (c.b > 0.0 && c.a + c.b * t1 > ymax) t1 = (ymax - c.a) / c.b;
    s += formatString("<line x1=\"%.2f\" y1=\"%.2f\" x2=\"%.2f\" y2=\"%.2f\" stroke=\"%s\" stroke-width=\"1.5\"/>\n",
                      X(0.0), Y(c.a), X(t1), Y(c.a + c.b * t1), c.colour);
    const double ly = T + 20 + 22 * static_cast<double>(k);
    s += formatString("<circle cx=\"%.1f\" cy=\"%.1f\" r=\"3\" fill=\"%s\"/>\n", W - R + 20, ly - 4, c.colour);
    s += formatString("<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\" stroke=\"%s\" stroke-width=\"1.5\"/>\n",
                      W - R + 12, ly - 4, W - R + 28, ly - 4, c.colour);
    s += formatString("<text x=\"%.1f\" y=\"%.1f\">%s</text>\n", W - R + 34, ly, c.label);
  }
  s += formatString("<text x=\"%.1f\" y=\"%.1f\" font-size=\"11\">dots: data</text>\n", W - R + 12,
                    T + 30 + 22.0 * static_cast<double>(curves.size()));
  s += formatString("<text x=\"%.1f\" y=\"%.1f\" font-size=\"11\">lines: fits</text>\n", W - R + 12,
                    T + 45 + 22.0 * static_cast<double>(curves.size()));
  s += "</svg>\n";
  return s;
}

void print_usage(const char* prog) {
  std::printf("Mobility from the Monte Carlo tracks\n\n");
  std::printf("Usage: %s\n", prog);
  std::printf("  Run in a carrier work directory after tavix_mc.exe: reads track/track_total.dat and the\n");
  std::printf("  single tracks, writes mob_a.dat, mob_b.dat, mob_c.dat, mob.dat, mob_direction_all.dat\n");
  std::printf("  and msd.svg.\n\n");
}

[[noreturn]] void fail(const std::string& message) {
  TX_FATAL(txunit::transport, 1, stderr, "%s\n", message.c_str());
}

}  // namespace

bool fit_diffusion(const std::vector<double>& time, const std::vector<TrackRows>& tracks, DiffusionFit& fit,
                   std::string& error) {
  fit = DiffusionFit();
  const size_t nrows = time.size();
  std::vector<size_t> rows;  // the zero row and rows without a finite time are left out
  for (size_t s = 1; s < nrows; ++s)
    if (std::isfinite(time[s])) rows.push_back(s);
  if (rows.size() < 3) {
    error = formatString("%d snapshot rows with a finite time; the fit needs at least 3",
                         static_cast<int>(rows.size()));
    return false;
  }
  const size_t N = tracks.size();
  if (N < 2) {
    error = formatString("%d track(s); the spread of the displacement needs at least 2", static_cast<int>(N));
    return false;
  }
  for (const TrackRows& tr : tracks)
    if (tr.t.size() != nrows || tr.x.size() != 3 * nrows) {
      error = "the tracks and the time axis differ in their number of rows";
      return false;
    }

  const size_t m = rows.size();
  fit.ntraj = static_cast<int>(N);
  for (size_t s : rows) fit.t.push_back(time[s]);
  // Mean displacement per fitted row.
  std::vector<double> mean(3 * m, 0.0);
  for (const TrackRows& tr : tracks)
    for (size_t r = 0; r < m; ++r)
      for (int a = 0; a < 3; ++a) mean[3 * r + a] += tr.x[3 * rows[r] + a];
  for (double& v : mean) v /= static_cast<double>(N);

  // Per trajectory and component, the scaled product (x_a - mean_a)(x_b - mean_b)
  // whose average over the tracks is the unbiased covariance; its slope over two is
  // that trajectory's share of D. The fit is linear in y, so the mean of these
  // slopes is the slope of the mean curve.
  const double scale = static_cast<double>(N) / static_cast<double>(N - 1);
  fit.per_traj.assign(N, std::array<double, 6>{});
  std::vector<double> y(m), curve[6];
  for (auto& c : curve) c.assign(m, 0.0);
  for (size_t k = 0; k < N; ++k) {
    for (int c = 0; c < 6; ++c) {
      for (size_t r = 0; r < m; ++r) {
        const double* x = &tracks[k].x[3 * rows[r]];
        y[r] = scale * (x[kCompA[c]] - mean[3 * r + kCompA[c]]) * (x[kCompB[c]] - mean[3 * r + kCompB[c]]);
        curve[c][r] += y[r] / static_cast<double>(N);
      }
      double a, b, sd;
      LinearRegression(fit.t.data(), y.data(), static_cast<int>(m), &a, &b, &sd);
      fit.per_traj[k][c] = b / 2.0;
    }
  }
  for (int c = 0; c < 6; ++c) {
    double a, b, sd;
    LinearRegression(fit.t.data(), curve[c].data(), static_cast<int>(m), &a, &b, &sd);
    std::vector<double> slopes(N);
    for (size_t k = 0; k < N; ++k) slopes[k] = fit.per_traj[k][c];
    const int i = kCompA[c], j = kCompB[c];
    fit.D[i][j] = fit.D[j][i] = b / 2.0;
    fit.D_err[i][j] = fit.D_err[j][i] = standard_error(slopes);
    fit.intercept[i][j] = fit.intercept[j][i] = a;
    fit.msd[i][j] = curve[c];
    fit.msd[j][i] = curve[c];
  }
  return true;
}

double directional_D(const DiffusionFit& fit, const double n[3]) { return quad(fit.D, n); }

double directional_D_error(const DiffusionFit& fit, const double n[3]) {
  std::vector<double> d(fit.per_traj.size());
  for (size_t k = 0; k < d.size(); ++k) {
    const auto& p = fit.per_traj[k];
    double s = 0.0;
    for (int c = 0; c < 6; ++c) s += (c < 3 ? 1.0 : 2.0) * n[kCompA[c]] * n[kCompB[c]] * p[c];
    d[k] = s;
  }
  return standard_error(d);
}

double einstein_mobility(double D, double temperature) {
  return D * kAngstrom2PerNsToCm2PerS / (kBoltzmannVoltPerKelvin * temperature);
}

int tavix_mob_main(int argc, char** argv) {
  const char* prog = argc > 0 ? argv[0] : "tavix_mob.exe";
  for (int i = 1; i < argc; ++i)
    if (std::strcmp(argv[i], "-h") == 0 || std::strcmp(argv[i], "--help") == 0) {
      print_usage(prog);
      return 0;
    }

  Transport t;
  t.read_tavix_inp(kControlFile, false);
  t.read_crystal_strcuture_files(false, false);
  const double T = run_temperature(t);
  const int carrier = run_carrier(t);
  const char* who = carrier_name(carrier);

  const std::string dir = t.trackdir;
  const std::string total_path = dir + "/track_total.dat";
  if (!file_exists(total_path.c_str()))
    fail(formatString("Failed to open input file %s: no finished Monte Carlo run here (run tavix_mc.exe first)",
                      total_path.c_str()));
  std::string error;
  TrackRows total;
  if (!read_track(total_path, total, error)) fail(error);

  const std::vector<std::string> paths = list_tracks(dir);
  std::printf("Reading %d tracks in %s/...\n", static_cast<int>(paths.size()), dir.c_str());
  std::vector<TrackRows> tracks(paths.size());
  for (size_t k = 0; k < paths.size(); ++k) {
    if (!read_track(paths[k], tracks[k], error)) fail(error);
    if (tracks[k].t.size() != total.t.size())
      fail(formatString("'%s' has %d rows, '%s' has %d: the tracks are not of one run", paths[k].c_str(),
                        static_cast<int>(tracks[k].t.size()), total_path.c_str(), static_cast<int>(total.t.size())));
  }
  DiffusionFit fit;
  if (!fit_diffusion(total.t, tracks, fit, error)) fail(formatString("%s: %s", total_path.c_str(), error.c_str()));

  // Unit vectors of the cell axes (columns of latt_f2c).
  double axis[3][3];
  for (int k = 0; k < 3; ++k) {
    for (int a = 0; a < 3; ++a) axis[k][a] = t.latt_f2c[a][k];
    unit(axis[k]);
  }
  const char* const names[3] = {"a", "b", "c"};
  const double t0 = fit.t.front(), t1 = fit.t.back();
  const std::string fit_range =
      formatString("%d rows from t = %g to %g ns, %d trajectories", static_cast<int>(fit.t.size()), t0, t1, fit.ntraj);

  std::vector<std::pair<std::string, std::string>> files;
  std::vector<Curve> curves;
  const char* const colours[3] = {"#d62728", "#1f77b4", "#2ca02c"};
  std::printf("\n  %s mobility at T = %g K:\n", who, T);
  for (int k = 0; k < 3; ++k) {
    const double* n = axis[k];
    const double D = directional_D(fit, n), dD = directional_D_error(fit, n);
    const double mu = einstein_mobility(D, T), dmu = einstein_mobility(dD, T);
    const double icpt = quad(fit.intercept, n);
    std::string text = formatString("%s mobility along %s: mu_%s = %12.6e cm^2/Vs at T = %g K (standard error %.2e "
                                    "cm^2/Vs, %d trajectories)\n",
                                    who, names[k], names[k], mu, T, dmu, fit.ntraj);
    text += formatString("# D_%s = %12.6e angstrom^2/ns = %12.6e cm^2/s (standard error %.2e angstrom^2/ns)\n",
                         names[k], D, D * kAngstrom2PerNsToCm2PerS, dD);
    text += formatString("# fit MSD_%s = %g + %g t (angstrom^2, t in ns) over %s\n", names[k], icpt, 2.0 * D,
                         fit_range.c_str());
    text += formatString("# direction %s, Cartesian unit vector: %.6f %.6f %.6f\n", names[k], n[0], n[1], n[2]);
    files.emplace_back(formatString("mob_%s.dat", names[k]), text);
    std::printf("  mu_%s = %12.6e cm^2/Vs (+- %.2e)\n", names[k], mu, dmu);

    Curve c{names[k], colours[k], {}, icpt, 2.0 * D};
    for (size_t r = 0; r < fit.t.size(); ++r) {
      double M[3][3];
      for (int a = 0; a < 3; ++a)
        for (int b = 0; b < 3; ++b) M[a][b] = fit.msd[a][b][r];
      c.y.push_back(quad(M, n));
    }
    curves.push_back(c);
  }

  // The average: a third of the trace, with its error from the per-trajectory traces.
  const double Dav = (fit.D[0][0] + fit.D[1][1] + fit.D[2][2]) / 3.0;
  std::vector<double> traces(fit.per_traj.size());
  for (size_t k = 0; k < traces.size(); ++k)
    traces[k] = (fit.per_traj[k][0] + fit.per_traj[k][1] + fit.per_traj[k][2]) / 3.0;
  const double dDav = standard_error(traces);
  const double mu_av = einstein_mobility(Dav, T);
  {
    std::string text = formatString("%s mobility, average of a, b, c: mu = %12.6e cm^2/Vs at T = %g K (standard error "
                                    "%.2e cm^2/Vs, %d trajectories)\n",
                                    who, mu_av, T, einstein_mobility(dDav, T), fit.ntraj);
    text += formatString("# D = %12.6e angstrom^2/ns = %12.6e cm^2/s, MSD_total/(2*3) over %s\n", Dav,
                         Dav * kAngstrom2PerNsToCm2PerS, fit_range.c_str());
    text += "# diffusion tensor, Cartesian, angstrom^2/ns:\n";
    for (int a = 0; a < 3; ++a)
      text += formatString("#   %14.6e %14.6e %14.6e\n", fit.D[a][0], fit.D[a][1], fit.D[a][2]);
    text += "# mobility tensor, Cartesian, cm^2/Vs:\n";
    for (int a = 0; a < 3; ++a)
      text += formatString("#   %14.6e %14.6e %14.6e\n", einstein_mobility(fit.D[a][0], T),
                           einstein_mobility(fit.D[a][1], T), einstein_mobility(fit.D[a][2], T));
    files.emplace_back("mob.dat", text);
    std::printf("  mu   = %12.6e cm^2/Vs (+- %.2e)\n\n", mu_av, einstein_mobility(dDav, T));
  }

  // Mobility over directions in the three planes, from the fitted tensor: in the
  // plane of axes p and q the direction at angle theta from p towards q.
  {
    std::string text = formatString("# %s mobility over directions in the ab, bc and ca planes, T = %g K\n", who, T);
    text += "# theta: degrees from the first axis towards the second, in their plane\n";
    const int planes[3][2] = {{0, 1}, {1, 2}, {2, 0}};
    for (const auto& pl : planes) {
      const double* p = axis[pl[0]];
      double q[3];
      const double pq = p[0] * axis[pl[1]][0] + p[1] * axis[pl[1]][1] + p[2] * axis[pl[1]][2];
      for (int a = 0; a < 3; ++a) q[a] = axis[pl[1]][a] - pq * p[a];
      unit(q);
      text += formatString("\n# plane %s%s\n#  theta          nx          ny          nz    mu(cm^2/Vs)\n", names[pl[0]],
                           names[pl[1]]);
      for (int deg = 0; deg <= 360; deg += 5) {
        const double th = deg * kPi / 180.0;
        double n[3];
        for (int a = 0; a < 3; ++a) n[a] = std::cos(th) * p[a] + std::sin(th) * q[a];
        text += formatString("%8d  %10.6f  %10.6f  %10.6f  %14.6e\n", deg, n[0], n[1], n[2],
                             einstein_mobility(directional_D(fit, n), T));
      }
    }
    files.emplace_back("mob_direction_all.dat", text);
  }
  files.emplace_back("msd.svg", msd_svg(fit.t, curves, formatString("Mean squared displacement, %s, T = %g K", who, T)));

  for (const auto& f : files) {
    std::printf("Writing file '%s'...\n", f.first.c_str());
    if (!replace_file(f.first, f.second)) fail(formatString("Failed to open output file %s", f.first.c_str()));
  }
  return 0;
}

}  // namespace suite_tools
