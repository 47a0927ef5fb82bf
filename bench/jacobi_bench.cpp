// jacobi_nr on the inertia tensors that molecule equivalence diagonalises: an
// anthracene molecule (14 C, 10 H, ideal geometry) in a set of orientations, as
// the molecules of a unit cell are.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "txutil.h"

namespace {

struct Atom {
  double x[3];  // angstrom
  double mass;  // amu
};

// Three fused hexagons, C-C 1.40 angstrom, C-H 1.08 angstrom, in the xy plane.
std::vector<Atom> anthracene() {
  const double cc = 1.40;
  const double ch = 1.08;
  const double pi = 3.141592653589793;
  const double spacing = std::sqrt(3.0) * cc;
  std::vector<Atom> carbons;
  std::vector<int> ring_of;
  for (int ring = 0; ring < 3; ++ring) {
    const double cx = (ring - 1) * spacing;
    for (int k = 0; k < 6; ++k) {
      const double ang = pi / 6 + k * pi / 3;
      const double p[3] = {cx + cc * std::cos(ang), cc * std::sin(ang), 0.0};
      bool seen = false;
      for (const Atom& a : carbons)
        if (std::hypot(a.x[0] - p[0], a.x[1] - p[1]) < 0.1) seen = true;
      if (!seen) {
        carbons.push_back({{p[0], p[1], p[2]}, 12.011});
        ring_of.push_back(ring);
      }
    }
  }
  std::vector<Atom> atoms = carbons;
  for (std::size_t i = 0; i < carbons.size(); ++i) {
    int bonded = 0;
    for (std::size_t j = 0; j < carbons.size(); ++j)
      if (i != j && std::hypot(carbons[i].x[0] - carbons[j].x[0], carbons[i].x[1] - carbons[j].x[1]) < 1.5)
        ++bonded;
    if (bonded != 2) continue;
    const double cx = (ring_of[i] - 1) * spacing;
    const double dx = carbons[i].x[0] - cx;
    const double dy = carbons[i].x[1];
    const double len = std::hypot(dx, dy);
    atoms.push_back({{carbons[i].x[0] + ch * dx / len, carbons[i].x[1] + ch * dy / len, 0.0}, 1.008});
  }
  return atoms;
}

struct Tensor {
  double t[3][3];
};

std::vector<Tensor> inertia_tensors(int count) {
  const std::vector<Atom> mol = anthracene();
  std::vector<Tensor> out;
  for (int c = 0; c < count; ++c) {
    double axis[3] = {std::cos(0.37 * c + 0.1), std::sin(0.91 * c + 0.2), 0.5 + 0.1 * c};
    const double len = get_magnitude(axis);
    for (double& a : axis) a /= len;
    double r[3][3];
    rot_matrix_from_dir_vector_and_angle(r, axis, 17.0 + 23.0 * c);
    Tensor it = {};
    for (const Atom& a : mol) {
      double p[3];
      mat_vec_mul(r, a.x, p);
      const double r2 = get_dot(p, p);
      for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) it.t[i][j] += a.mass * ((i == j ? r2 : 0.0) - p[i] * p[j]);
    }
    out.push_back(it);
  }
  return out;
}

}  // namespace

static void BM_jacobi_inertia(benchmark::State& state) {
  const std::vector<Tensor> tensors = inertia_tensors(16);
  std::size_t next = 0;
  for (auto _ : state) {
    Tensor work = tensors[next];
    next = (next + 1) % tensors.size();
    double d[3], v[3][3];
    int nrot = 0;
    jacobi_nr(work.t, 3, d, v, &nrot);
    eigsrt_nr(d, v, 3);
    benchmark::DoNotOptimize(d);
    benchmark::DoNotOptimize(v);
  }
}
BENCHMARK(BM_jacobi_inertia);
