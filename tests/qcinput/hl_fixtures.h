// Shared set-up of the HOMO/LUMO input tests: the four engines' operations as a
// table, and a hand-built two-molecule crystal whose neighbor list is read from
// a hand-written neighbor.dat, so that every coordinate of every input can be
// worked out by hand.
#ifndef TAVIX_TESTS_QCINPUT_HL_FIXTURES_H
#define TAVIX_TESTS_QCINPUT_HL_FIXTURES_H

#include <dirent.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include "../topology/topology_fixtures.h"
#include "test_support.h"
#include "transport.h"

namespace hl {

using Op = void (Transport::*)();

// The seven operations of one engine, in the order of the interface table.
struct Engine {
  const char* name;    // golden folder: "gaussian", "orca", "qchem", "bdf"
  const char* ext;     // input extension
  const char* family;  // golden folder of its drivers: Gaussian's, or the later engines' shared form
  Op mol;
  Op uc;
  Op uc_unique;
  Op nei;
  Op nei_unique;
  Op pair;
  Op pair_unique;
};

// Names the engine in test output instead of dumping its bytes.
inline void PrintTo(const Engine& e, std::ostream* os) { *os << e.name; }

inline const std::vector<Engine>& engines() {
  static const std::vector<Engine> all = {
      {"gaussian", "com", "gaussian", &Transport::write_HL_gaussian_mol_gif,
       &Transport::write_HL_gaussian_mol_one_gjf_and_job_uc,
       &Transport::write_HL_gaussian_mol_one_gjf_and_job_uc_unique,
       &Transport::write_HL_gaussian_mol_one_gjf_and_job_nei,
       &Transport::write_HL_gaussian_mol_one_gjf_and_job_nei_unique, &Transport::write_HL_gaussian_2mol_gjf_and_job,
       &Transport::write_HL_gaussian_2mol_gif_and_job_unique},
      {"orca", "inp", "orca", &Transport::write_HL_orca_mol_inp, &Transport::write_HL_orca_mol_one_inp_and_job_uc,
       &Transport::write_HL_orca_mol_one_inp_and_job_uc_unique, &Transport::write_HL_orca_mol_one_inp_and_job_nei,
       &Transport::write_HL_orca_mol_one_inp_and_job_nei_unique, &Transport::write_HL_orca_2mol_inp_and_job,
       &Transport::write_HL_orca_2mol_inp_and_job_unique},
      {"qchem", "inp", "orca", &Transport::write_HL_qchem_mol_inp, &Transport::write_HL_qchem_mol_one_inp_and_job_uc,
       &Transport::write_HL_qchem_mol_one_inp_and_job_uc_unique, &Transport::write_HL_qchem_mol_one_inp_and_job_nei,
       &Transport::write_HL_qchem_mol_one_inp_and_job_nei_unique, &Transport::write_HL_qchem_2mol_inp_and_job,
       &Transport::write_HL_qchem_2mol_inp_and_job_unique},
      {"bdf", "inp", "orca", &Transport::write_HL_bdf_mol_inp, &Transport::write_HL_bdf_mol_one_inp_and_job_uc,
       &Transport::write_HL_bdf_mol_one_inp_and_job_uc_unique, &Transport::write_HL_bdf_mol_one_inp_and_job_nei,
       &Transport::write_HL_bdf_mol_one_inp_and_job_nei_unique, &Transport::write_HL_bdf_2mol_inp_and_job,
       &Transport::write_HL_bdf_2mol_inp_and_job_unique},
  };
  return all;
}

inline std::string engine_name(const ::testing::TestParamInfo<Engine>& info) { return info.param.name; }

constexpr const char* kWorkdir = "/home/user/run";
constexpr const char* kAppend = "-- appended --\n";

// Run settings of the goldens (README of tests/data/golden/qcinput/hl): PBS,
// 1 node, 4 processes, 2000 MB. Gaussian takes its route from qc_basis; its
// qc_method is set to something else to show that it is not read.
inline void set_run(Transport& t, const Engine& e) {
  t.job_workdir = kWorkdir;
  t.job_sched_type = Jobscript::sched_pbs;
  t.qc_nodes = 1;
  t.qc_ppn = 4;
  t.qc_memory = 2000;
  t.qc_inp_append = kAppend;
  if (std::string(e.name) == "gaussian") {
    t.qc_method = "PBE0";
    t.qc_basis = "B3LYP/6-31G(d)";
  } else {
    t.qc_method = "B3LYP";
    t.qc_basis = "def2-SVP";
  }
}

// Orthorhombic cell 4 x 6 x 8 angstrom. Molecule 1 is CO, molecule 2 water.
// Neighbors (one-based, cell shift): root 1: (2; 0 0 0), (1; 1 0 0); root 2:
// (1; 0 -1 0), (2; -1 0 1). Keys 1..4 in that order.
inline void set_hand_crystal(Transport& t) {
  constexpr int O = 8;
  topo::set_orthorhombic(t, 4.0, 6.0, 8.0);
  topo::set_molecules(t, {{{topo::C, 0.125, 0.25, 0.5}, {O, 0.375, 0.25, 0.5}},
                          {{O, 0.5, 0.75, 0.25}, {topo::H, 0.75, 0.75, 0.25}, {topo::H, 0.5, 0.875, 0.25}}});
  txtest::write_file("neighbor.dat",
                     topo::neighbor_dat({{{1, 0, 0, 0}, {0, 1, 0, 0}}, {{0, 0, -1, 0}, {1, -1, 0, 1}}}));
  txtest::capture_stdout([&] { t.build_neighbor_list(true, false); });
}

// The unique lists of the goldens, set by hand: molecule 2 stands for both,
// keys 3 and 4 (both of root 2) for all pairs; inputs named by key.
inline void set_unique_lists(Transport& t, std::vector<int> mols, std::vector<int> keys) {
  t.HL_unique_mol = 1;
  t.uc_mol_unique_count = static_cast<int>(mols.size());
  std::copy(mols.begin(), mols.end(), t.uc_mol_unique_list);
  delete[] t.pair_keylist;
  t.pair_keylist = new int[keys.size()];
  std::copy(keys.begin(), keys.end(), t.pair_keylist);
  t.pair_keylist_count = static_cast<int>(keys.size());
}

// Sorted names of the regular files in `dir`; empty when it does not exist.
inline std::vector<std::string> files_in(const std::string& dir) {
  std::vector<std::string> names;
  DIR* d = opendir(dir.c_str());
  if (d == nullptr) return names;
  while (dirent* entry = readdir(d)) {
    const std::string name = entry->d_name;
    if (name != "." && name != ".." && name != "__pycache__") names.push_back(name);
  }
  closedir(d);
  std::sort(names.begin(), names.end());
  return names;
}

// A test of one engine in a fresh directory of its own, with the engine's
// operations called on `t`.
class EngineTest : public ::testing::TestWithParam<Engine> {
 protected:
  void call(Op Engine::*op) { (t.*(GetParam().*op))(); }
  std::string input(const std::string& base) const { return base + "." + GetParam().ext; }
  std::string engine() const { return GetParam().name; }

  txtest::TempDir dir;
  Transport t;
};

inline std::string golden(const std::string& relative) {
  return txtest::read_file(txtest::data_path("golden/qcinput/hl/" + relative));
}

}  // namespace hl

#endif  // TAVIX_TESTS_QCINPUT_HL_FIXTURES_H
