// Molecule separation of a real crystal: calixdiquinone (COD 7052819), the
// largest fixture at 440 atoms in four molecules, and its 3x3x3 supercell of
// 11,880 atoms in 108 molecules, written by write_supercell_cif from the
// molecules made whole and read back as a P1 crystal. Measured: the walk of
// separate_cif_molecules alone, and read_crystal_strcuture_files in crystal
// mode, which builds the molecule arrays and makes every molecule whole.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "fileio.h"

namespace {

std::string fixture(const std::string& name) {
  const std::string here = __FILE__;
  return here.substr(0, here.rfind('/')) + "/../tests/data/cif/" + name;
}

FileIO& calixdiquinone_cell() {
  static FileIO io;
  static bool ready = false;
  if (!ready) {
    io.read_data_cif(fixture("calixdiquinone_COD7052819_blankline.cif").c_str(), false);
    io.mol_input_mode = 2;
    io.read_crystal_strcuture_files(false, false);
    ready = true;
  }
  return io;
}

FileIO& calixdiquinone_supercell() {
  static FileIO io;
  static bool ready = false;
  if (!ready) {
    FileIO& cell = calixdiquinone_cell();
    char dir[] = "/tmp/tavix_bench_XXXXXX";
    if (mkdtemp(dir) == nullptr) std::abort();
    const std::string path = std::string(dir) + "/supercell.cif";
    cell.write_supercell_cif(path.c_str(), cell.nmols_uc, cell.mol_natoms, cell.mol_elem, cell.mol_x_s, 3, 3, 3);
    io.read_data_cif(path.c_str(), false);
    std::remove(path.c_str());
    rmdir(dir);
    io.mol_input_mode = 2;
    ready = true;
  }
  return io;
}

void separate(benchmark::State& state, FileIO& io) {
  for (auto _ : state) {
    io.separate_cif_molecules(false);
    benchmark::DoNotOptimize(io.uc_mol_atoms.data());
  }
  state.counters["atoms"] = io.cif_natoms;
  state.counters["molecules"] = static_cast<double>(io.uc_mol_natoms.size());
}

void read_molecules(benchmark::State& state, FileIO& io) {
  io.separate_cif_molecules(false);
  for (auto _ : state) {
    io.read_crystal_strcuture_files(false, false);
    benchmark::DoNotOptimize(io.mol_x);
  }
  state.counters["atoms"] = io.cif_natoms;
  state.counters["molecules"] = io.nmols_uc;
}

void BM_SeparateCifMolecules_Cell440(benchmark::State& state) { separate(state, calixdiquinone_cell()); }
void BM_SeparateCifMolecules_Supercell11880(benchmark::State& state) { separate(state, calixdiquinone_supercell()); }
void BM_ReadCrystalStructureFiles_Cell440(benchmark::State& state) { read_molecules(state, calixdiquinone_cell()); }
void BM_ReadCrystalStructureFiles_Supercell11880(benchmark::State& state) {
  read_molecules(state, calixdiquinone_supercell());
}

}  // namespace

BENCHMARK(BM_SeparateCifMolecules_Cell440)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SeparateCifMolecules_Supercell11880)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadCrystalStructureFiles_Cell440)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadCrystalStructureFiles_Supercell11880)->Unit(benchmark::kMillisecond);
