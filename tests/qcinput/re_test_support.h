// Shared set-up of the reorganisation-input tests: a small hand-built cell whose
// coordinates print exactly, the settings every expected file was worked out with,
// the families of operations, and small checks on generated files.
#ifndef TAVIX_TESTS_RE_TEST_SUPPORT_H
#define TAVIX_TESTS_RE_TEST_SUPPORT_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../topology/topology_fixtures.h"
#include "test_support.h"
#include "transport.h"

namespace retest {

using Names = std::vector<std::string>;

// Carbon monoxide, C (0, 0, 0) and O (0, 0, 1.125), and hydrogen chloride, Cl (2.5,
// -1.75, 3.0) and H (2.5, -1.75, 4.25), in angstrom, in a cubic cell of 8 angstrom:
// the fractional values are exact in binary, so the Cartesian ones come back exact.
inline topo::Molecule carbon_monoxide() { return {{6, 0.0, 0.0, 0.0}, {8, 0.0, 0.0, 0.140625}}; }
inline topo::Molecule hydrogen_chloride() {
  return {{17, 0.3125, -0.21875, 0.375}, {topo::H, 0.3125, -0.21875, 0.53125}};
}

// The molecules as the separation leaves them, with centres and masses.
inline void set_molecules(Transport& t, const std::vector<topo::Molecule>& mols) {
  topo::set_orthorhombic(t, 8.0, 8.0, 8.0);
  topo::set_molecules(t, mols);
  t.calc_x_com();
}

// The representatives of the reorganisation check, as RE_check_unitcell_same_mols
// leaves them.
inline void set_re_list(Transport& t, const std::vector<int>& list) {
  t.uc_mol_re_list = new int[t.nmols_uc > 0 ? t.nmols_uc : 1]();
  for (std::size_t k = 0; k < list.size(); ++k) t.uc_mol_re_list[k] = list[k];
  t.uc_mol_re_count = static_cast<int>(list.size());
}

// The settings of every expected file under tests/data/golden/qcinput/re (see the
// README there): PBS, both carriers, no four-point and no multipole work.
inline void set_run(Transport& t) {
  t.job_workdir = "/work/run";
  t.job_sched_type = 0;
  t.compute_engine = 1;
  t.chargetype = "a";
  t.qc_exe = "g16";
  t.formchk_exe = "formchk";
  t.orca_2mkl_exe = "orca_2mkl";
  t.qc_exe_args = "";
  t.qc_method = "b3lyp";
  t.qc_basis_re = "b3lyp/6-31g(d)";
  t.qc_memory = 2000;
  t.qc_nodes = 1;
  t.qc_ppn = 4;
  t.qc_inp_append = "extra-append\n";
  t.scratch = "/scratch";
  t.queue_name = "workq";
  t.walltime_days = 0;
  t.walltime_hours = 160;
  t.walltime_minutes = 0;
  t.walltime_seconds = 0;
  t.module_qc_flag = false;
  t.nodelist = "";
  t.RE_use_neutral_chk = false;
  t.RE_calc_lambda_4P = false;
  t.reorg_outer_flag = 0;
  t.lat_site_energy = 0;
}

// The same run for one engine (1 Gaussian, 2 ORCA, 3 Q-Chem, 4 BDF).
inline void set_engine(Transport& t, int engine) {
  t.compute_engine = engine;
  t.qc_basis_re = engine == 1 ? "b3lyp/6-31g(d)" : "def2-SVP";
  const char* exe[5] = {"", "g16", "orca", "qchem", "run.sh"};
  t.qc_exe = exe[engine];
}

// The run of the expected files on the two-molecule cell.
inline void set_cell(Transport& t, int engine) {
  set_run(t);
  set_engine(t, engine);
  set_molecules(t, {carbon_monoxide(), hydrogen_chloride()});
}

// Each family with its plain and unique operation.
struct Family {
  int engine;
  void (Transport::*plain)();
  void (Transport::*unique)();
  const char* ext;  // of the inputs
};

inline const Family kFamilies[] = {
    {1, &Transport::write_RE_gaussian_mol_gjf_and_job, &Transport::write_RE_gaussian_mol_gjf_and_job_unique, "com"},
    {1, &Transport::write_RE_gaussian_mol_gjf_and_job_separated,
     &Transport::write_RE_gaussian_mol_gjf_and_job_unique_separated, "com"},
    {2, &Transport::write_RE_orca_mol_inp_and_job_seperated, &Transport::write_RE_orca_mol_inp_and_job_unique_seperated,
     "inp"},
    {3, &Transport::write_RE_qchem_mol_inp_and_job_seperated,
     &Transport::write_RE_qchem_mol_inp_and_job_unique_seperated, "inp"},
    {4, &Transport::write_RE_bdf_mol_inp_and_job_seperated, &Transport::write_RE_bdf_mol_inp_and_job_unique_seperated,
     "inp"},
};

// "re-mol<m>-<state>.<ext>" for every molecule and state, in that order.
inline Names inputs_of(const std::vector<int>& mols, const Names& states, const char* ext) {
  Names names;
  for (int m : mols)
    for (const std::string& s : states) names.push_back("re-mol" + std::to_string(m) + "-" + s + "." + ext);
  return names;
}

// The markers a driver touches under /work/run/RUN, in order.
inline Names touched(const std::string& driver) {
  Names markers;
  const std::string text = txtest::read_file(driver);
  const std::string key = "os.system(\"touch /work/run/RUN/";
  for (std::size_t at = text.find(key); at != std::string::npos; at = text.find(key, at + 1)) {
    const std::size_t begin = at + key.size();
    markers.push_back(text.substr(begin, text.find('"', begin) - begin));
  }
  return markers;
}

// The molecule numbers of those markers ("running.re_mol3-anion" gives 3).
inline std::vector<int> submitted_molecules(const std::string& driver) {
  std::vector<int> mols;
  for (const std::string& m : touched(driver)) mols.push_back(std::stoi(m.substr(m.find("mol") + 3)));
  return mols;
}

inline std::string golden(const std::string& name) {
  const std::string path = txtest::data_path("golden/qcinput/re/" + name);
  EXPECT_TRUE(txtest::path_exists(path)) << "missing expected file " << name;
  return txtest::read_file(path);
}

inline void expect_golden(const std::string& written, const std::string& name) {
  EXPECT_TRUE(txtest::path_exists(written)) << written << " was not written";
  EXPECT_EQ(txtest::read_file(written), golden(name)) << written << " against " << name;
}

inline bool ends_with(const std::string& text, const std::string& tail) {
  return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

inline int py_compile(const std::string& path) {
  return txtest::run_command("python3 -m py_compile '" + path + "'").status;
}

inline int bash_n(const std::string& path) { return txtest::run_command("bash -n '" + path + "'").status; }

// Names of the plain files in `dir`, in byte order.
inline Names files_in(const std::string& dir) {
  const txtest::RunResult r = txtest::run_command("ls -1 '" + dir + "' 2>/dev/null | LC_ALL=C sort");
  Names names;
  std::string name;
  for (char c : r.out) {
    if (c == '\n') {
      if (!name.empty()) names.push_back(name);
      name.clear();
    } else {
      name += c;
    }
  }
  return names;
}

// A fatal report's text on the two streams: the position line of `unit` on standard
// output, then `message` on the stream that carries it.
inline void expect_fatal(const txtest::RunResult& r, int status, const char* unit, const std::string& message,
                         bool on_stdout = false) {
  const std::string head = std::string("\nERROR  transport : ") + unit + " : line # : \n";
  EXPECT_EQ(r.status, status);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), on_stdout ? head + message : head);
  EXPECT_EQ(r.err, on_stdout ? "" : message);
}

}  // namespace retest

#endif  // TAVIX_TESTS_RE_TEST_SUPPORT_H
