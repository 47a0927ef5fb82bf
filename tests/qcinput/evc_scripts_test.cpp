// prepare_RE.py with run_RE.py and the normal-mode jobs, and get_RE.py: expected
// files per engine and carrier, plain and unique (tests/data/golden/qcinput/evc/),
// the scripts through the interpreter's compiler and the shell's syntax check, and
// the two Python scripts run on a small directory tree.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "evc_test_support.h"
#include "test_support.h"
#include "transport.h"

namespace {

using evctest::expect_bash_syntax;
using evctest::expect_py_compiles;

void expect_golden(const std::string& produced, const std::string& golden) {
  evctest::expect_golden(produced, "evc/" + golden);
}

// The run of the expected files: working directory /home/user/run, one node of 28
// processes, queue X28Cv4, 160 hours (6 days 16 hours on Slurm), no modules.
void set_run(Transport& t, int sched, int n, const char* chargetype, int engine) {
  t.job_workdir = "/home/user/run";
  t.job_sched_type = sched;
  t.queue_name = "X28Cv4";
  t.walltime_days = sched == Jobscript::sched_slurm ? 6 : 0;
  t.walltime_hours = sched == Jobscript::sched_slurm ? 16 : 160;
  t.walltime_minutes = 0;
  t.walltime_seconds = 0;
  t.qc_nodes = 1;
  t.qc_ppn = 28;
  t.module_qc_flag = false;
  t.module_tavix_flag = false;
  t.module_mpich2_flag = false;
  t.nodelist.clear();
  t.nmols_uc = n;
  t.chargetype = chargetype;
  t.compute_engine = engine;
  t.use_evc_dint = false;
  ASSERT_EQ(txtest::run_command("mkdir -p scr").status, 0);
}

// ---- prepare_RE.py, run_RE.py and the jobs ---------------------------------------

TEST(PrepareEvcFiles, GaussianBothCarriersOfTwoMoleculesOnPbs) {
  txtest::TempDir dir;
  Transport t;
  set_run(t, Jobscript::sched_pbs, 2, "a", 1);
  t.write_prepare_evc_files("prepare_RE.py");
  expect_golden("scr/prepare_RE.py", "gaussian_a/scr/prepare_RE.py");
  expect_golden("scr/run_RE.py", "gaussian_a/scr/run_RE.py");
  expect_golden("evc/mol1/elec/job_get_NM.pbs", "gaussian_a/evc/mol1/elec/job_get_NM.pbs");
  for (const char* job : {"evc/mol1/hole/job_get_NM.pbs", "evc/mol2/elec/job_get_NM.pbs", "evc/mol2/hole/job_get_NM.pbs"}) {
    ASSERT_TRUE(txtest::path_exists(job)) << job;
    expect_bash_syntax(job);
  }
  // The jobs differ only in their name and marker.
  const std::string mol2_hole = txtest::read_file("evc/mol2/hole/job_get_NM.pbs");
  EXPECT_NE(mol2_hole.find("#PBS -o stdout-evc_mol2_hole\n"), std::string::npos);
  EXPECT_NE(mol2_hole.find("rm -f /home/user/run/RUN/running.run_evc_mol2_hole\n"), std::string::npos);
  expect_py_compiles("scr/prepare_RE.py");
  expect_py_compiles("scr/run_RE.py");
  expect_bash_syntax("evc/mol1/elec/job_get_NM.pbs");
}

TEST(PrepareEvcFiles, OrcaElectronsLocalWithInternalCoordinateModes) {
  txtest::TempDir dir;
  Transport t;
  set_run(t, Jobscript::sched_local, 1, "e", 2);
  t.use_evc_dint = true;
  t.write_prepare_evc_files("prepare_RE.py");
  expect_golden("scr/prepare_RE.py", "orca_e/scr/prepare_RE.py");
  expect_golden("scr/run_RE.py", "orca_e/scr/run_RE.py");
  expect_golden("evc/mol1/elec/job_get_NM.local", "orca_e/evc/mol1/elec/job_get_NM.local");
  expect_bash_syntax("evc/mol1/elec/job_get_NM.local");
  EXPECT_FALSE(txtest::path_exists("evc/mol1/hole"));
}

TEST(PrepareEvcFiles, ChargetypeHMakesOnlyHoleDirectories) {
  txtest::TempDir dir;
  Transport t;
  set_run(t, Jobscript::sched_local, 1, "h", 3);
  t.write_prepare_evc_files("prepare_RE.py");
  expect_golden("scr/prepare_RE.py", "qchem_h/scr/prepare_RE.py");
  expect_golden("scr/run_RE.py", "qchem_h/scr/run_RE.py");
  EXPECT_TRUE(txtest::path_exists("evc/mol1/hole/job_get_NM.local"));
  EXPECT_FALSE(txtest::path_exists("evc/mol1/elec"));
  EXPECT_EQ(txtest::read_file("scr/prepare_RE.py").find("elec"), std::string::npos);
  EXPECT_EQ(txtest::read_file("scr/run_RE.py").find("elec"), std::string::npos);
}

TEST(PrepareEvcFiles, UniqueFormCoversTheListedMoleculesUnderTheirNumbers) {
  txtest::TempDir dir;
  Transport t;
  set_run(t, Jobscript::sched_slurm, 3, "a", 4);
  t.uc_mol_re_list = new int[1]{2};
  t.uc_mol_re_count = 1;
  t.write_prepare_evc_files_unique("prepare_RE.py");
  expect_golden("scr/prepare_RE.py", "bdf_unique/scr/prepare_RE.py");
  expect_golden("scr/run_RE.py", "bdf_unique/scr/run_RE.py");
  EXPECT_TRUE(txtest::path_exists("evc/mol2/elec/job_get_NM.slurm"));
  EXPECT_TRUE(txtest::path_exists("evc/mol2/hole/job_get_NM.slurm"));
  EXPECT_FALSE(txtest::path_exists("evc/mol1"));
  EXPECT_FALSE(txtest::path_exists("evc/mol3"));
  expect_bash_syntax("evc/mol2/hole/job_get_NM.slurm");
}

TEST(PrepareEvcFiles, GaussianCheckpointCopyFollowsTheSourceExtensionOnly) {
  txtest::TempDir dir;
  Transport t;
  set_run(t, Jobscript::sched_local, 1, "e", 1);
  t.fchk_ext = "fch";
  t.write_prepare_evc_files("prepare_RE.py");
  EXPECT_NE(txtest::read_file("scr/prepare_RE.py")
                .find("shutil.copy(\"../../RE/re-mol1-anion.fch\", \"elec/re-mol1-anion.fchk\")\n"),
            std::string::npos);
}

TEST(PrepareEvcFiles, OtherEvcDirectoryNameIsCreatedAndEntered) {
  txtest::TempDir dir;
  Transport t;
  set_run(t, Jobscript::sched_local, 1, "e", 2);
  t.evc_dir = "modes";
  t.write_prepare_evc_files("prep.py");
  const std::string text = txtest::read_file("scr/prep.py");
  EXPECT_NE(text.find("if not os.path.isdir(\"modes\"):\n    os.mkdir(\"modes\", access_rights)\n\nos.chdir(\"modes\")\n"
                      "evcdir = os.getcwd()\n\n"),
            std::string::npos)
      << text;
  EXPECT_TRUE(txtest::path_exists("modes/mol1/elec/job_get_NM.local"));
  EXPECT_NE(txtest::read_file("scr/run_RE.py").find("os.chdir(\"/home/user/run/modes/mol1/elec\")\n"),
            std::string::npos);
}

TEST(PrepareEvcFiles, ScriptThatCannotBeOpenedIsFatal) {
  txtest::TempDir dir;
  // There is no scr directory.
  evctest::expect_fatal_open([](Transport& t) { t.write_prepare_evc_files("prepare_RE.py"); },
                             "Failed to open output file scr/prepare_RE.py\n");
}

TEST(PrepareEvcFiles, UnknownSchedulerIsFatalBeforeAnySubmissionLine) {
  txtest::TempDir dir;
  ASSERT_EQ(txtest::run_command("mkdir scr").status, 0);
  const txtest::RunResult r = evctest::forked([](Transport& t) {
    t.job_sched_type = 7;
    t.write_prepare_evc_files("prepare_RE.py");
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(r.err, "Unknown job scheduling type!\n");
}

// prepare_RE.py run in a working directory with finished relaxation outputs.
TEST(PrepareEvcFiles, PreparedScriptCopiesInputAndOutputsIntoTheCarrierDirectory) {
  txtest::TempDir dir;
  Transport t;
  set_run(t, Jobscript::sched_local, 1, "e", 1);
  t.write_prepare_evc_files("prepare_RE.py");
  ASSERT_EQ(txtest::run_command("mkdir RE").status, 0);
  txtest::write_file("RE/evc-e-mol1.inp", "&evc\n/\n");
  for (const char* f : {"re-mol1-anion.fchk", "re-mol1-anion.log", "re-mol1-neutral.fchk", "re-mol1-neutral.log"})
    txtest::write_file(std::string("RE/") + f, f);
  const txtest::RunResult r = txtest::run_command("python3 scr/prepare_RE.py");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out, "Prepare for evc calculations...\n  Treating mol1...\n");
  EXPECT_EQ(txtest::read_file("evc/mol1/elec/evc.inp"), "&evc\n/\n");
  for (const char* f : {"re-mol1-anion.fchk", "re-mol1-anion.log", "re-mol1-neutral.fchk", "re-mol1-neutral.log"})
    EXPECT_EQ(txtest::read_file(std::string("evc/mol1/elec/") + f), f);
}

// ---- get_RE.py -------------------------------------------------------------------

TEST(GetReFile, GaussianBothCarriersOfTwoMolecules) {
  txtest::TempDir dir;
  Transport t;
  set_run(t, Jobscript::sched_pbs, 2, "a", 1);
  t.write_get_re_py_file("get_RE.py");
  expect_golden("scr/get_RE.py", "gaussian_a/scr/get_RE.py");
  expect_py_compiles("scr/get_RE.py");
}

TEST(GetReFile, ChargetypeHReadsOnlyHoleDirectories) {
  txtest::TempDir dir;
  Transport t;
  set_run(t, Jobscript::sched_local, 1, "h", 3);
  t.write_get_re_py_file("get_RE.py");
  expect_golden("scr/get_RE.py", "qchem_h/scr/get_RE.py");
  expect_py_compiles("scr/get_RE.py");
}

TEST(GetReFile, UniqueFormCoversTheListedMoleculesUnderTheirNumbers) {
  txtest::TempDir dir;
  Transport t;
  set_run(t, Jobscript::sched_slurm, 3, "a", 4);
  t.uc_mol_re_list = new int[1]{2};
  t.uc_mol_re_count = 1;
  t.write_get_re_py_file_unique("get_RE.py");
  expect_golden("scr/get_RE.py", "bdf_unique/scr/get_RE.py");
  expect_py_compiles("scr/get_RE.py");
}

TEST(GetReFile, ScriptThatCannotBeOpenedIsFatal) {
  txtest::TempDir dir;
  evctest::expect_fatal_open([](Transport& t) { t.write_get_re_py_file("get_RE.py"); },
                             "Failed to open output file scr/get_RE.py\n");
}

// get_RE.py run over a finished normal-mode directory. The energies of the line are
// in cm-1: 100 and 200 times 0.1239842 meV give 12.39842 and 24.79684, 37.19526 in all.
TEST(GetReFile, CollectedScriptWritesEnergiesInMevAndCopiesTheModes) {
  txtest::TempDir dir;
  Transport t;
  set_run(t, Jobscript::sched_local, 1, "e", 1);
  t.write_get_re_py_file("get_RE.py");
  ASSERT_EQ(txtest::run_command("mkdir -p evc/mol1/elec data").status, 0);
  txtest::write_file("evc/mol1/elec/evc.cart.dat",
                     "header\n Total reorganization energy (cm-1):      100.0      200.0\n Total reorganization energy 1 1\n");
  txtest::write_file("evc/mol1/elec/NM.dat", "modes\n");
  const txtest::RunResult r = txtest::run_command("python3 scr/get_RE.py");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out, "Calculating NM data ...\n  Treating mol1...\n");
  const std::string lambda =
      "elec:\n"
      "lam lam1 lam2 [meV]\n"
      "     37.19526000      12.39842000      24.79684000\n"
      "# reorganization energies: lam lam1 lam2 [meV]\n";
  EXPECT_EQ(txtest::read_file("evc/mol1/elec/lambda.dat"), lambda);
  EXPECT_EQ(txtest::read_file("data/mol1_lambda-e.dat"), lambda);
  EXPECT_EQ(txtest::read_file("data/NM1-e.dat"), "modes\n");
  EXPECT_EQ(txtest::read_file("evc/mol1_NM-e.dat"), "modes\n");
}

}  // namespace
