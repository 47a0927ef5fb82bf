// The four-point route: inputs, jobs, drivers and RE_run.py for a singlet and a
// triplet excited state against tests/data/golden/qcinput/reorg4p/, the scripts
// through the interpreter's compiler and the shell's syntax check, and RE_run.py
// run end to end with stand-ins for the quantum-chemistry program.
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
  evctest::expect_golden(produced, "reorg4p/" + golden);
}

void copy_water_gjf() { txtest::write_file("water.gjf", txtest::read_file(txtest::data_path("golden/qcinput/reorg4p/water.gjf"))); }

// The singlet case of the expected files: local runs, 4000 MB, 8 processes.
void set_singlet(Transport& t) {
  t.job_workdir = "/home/user/run4p";
  t.job_sched_type = Jobscript::sched_local;
  t.module_qc_flag = false;
  t.nodelist.clear();
  t.qc_exe = "g16";
  t.formchk_exe = "formchk";
  t.compute_engine = 1;
  t.qc_nodes = 1;
  t.qc_ppn = 8;
  t.qc_memory = 4000;
  t.qc_basis_re = "b3lyp/6-31g(d)";
  t.qc_es_opt = "TD(nstates=3)";
  t.qc_gs_tddft = "TD(nstates=3)";
  t.qc_es_tddft = "TD(triplet)";
  t.qc_es_mult = 1;
}

// The triplet case: Slurm on X16Cv3 for 160 hours with the Gaussian module, the
// sample values of the four-point control template.
void set_triplet(Transport& t) {
  set_singlet(t);
  t.job_sched_type = Jobscript::sched_slurm;
  t.queue_name = "X16Cv3";
  t.walltime_days = 6;
  t.walltime_hours = 16;
  t.walltime_minutes = 0;
  t.walltime_seconds = 0;
  t.module_qc_flag = true;
  t.module_qc = "gaussian/g16.c01-avx2";
  t.qc_ppn = 20;
  t.qc_memory = 54096;
  t.qc_basis_re = "b3lyp 6-31g(d)";
  t.qc_es_opt = "TD(triplet)";
  t.qc_gs_tddft = "TD(triplet)";
  t.qc_es_mult = 3;
}

std::string ls(const std::string& pattern) { return txtest::run_command("ls -1 " + pattern).out; }

TEST(Reorg4pInputFiles, SingletWritesThreeInputsJobsAndDrivers) {
  txtest::TempDir dir;
  copy_water_gjf();
  Transport t;
  set_singlet(t);
  const std::string out = txtest::capture_stdout([&] { t.reorg4p_write_input_files(".", false); });
  EXPECT_EQ(out,
            "Generate input files for reorganization calculation by 4P method...\n"
            "Using Gaussian input file water.gjf...\n"
            "Generate .com files...\n"
            "Generate script files...\n"
            "Successfuly done.\n");
  for (const char* f : {"re-gs.com", "re-es.com", "re-gs-tddft.com", "RE_run.py", "jobs/re-gs.py", "jobs/re-es.py",
                        "jobs/re-gs-tddft.py", "jobs/re-gs.local", "jobs/re-es.local", "jobs/re-gs-tddft.local"})
    expect_golden(f, std::string("mult1/") + f);
  EXPECT_EQ(ls("*.com"), "re-es.com\nre-gs-tddft.com\nre-gs.com\n");
  EXPECT_EQ(ls("jobs"), "gaussian_log_check.py\nre-es.local\nre-es.py\nre-gs-tddft.local\nre-gs-tddft.py\nre-gs.local\nre-gs.py\n");
}

TEST(Reorg4pInputFiles, TripletWritesFourInputsJobsAndDrivers) {
  txtest::TempDir dir;
  copy_water_gjf();
  Transport t;
  set_triplet(t);
  txtest::capture_stdout([&] { t.reorg4p_write_input_files("water.gjf", false); });
  for (const char* f : {"re-gs.com", "re-es.com", "re-gs-tddft.com", "re-es-tddft.com", "RE_run.py", "jobs/re-gs.py",
                        "jobs/re-es.py", "jobs/re-gs-tddft.py", "jobs/re-es-tddft.py", "jobs/re-gs.slurm",
                        "jobs/re-es.slurm", "jobs/re-gs-tddft.slurm", "jobs/re-es-tddft.slurm"})
    expect_golden(f, std::string("mult3/") + f);
  EXPECT_EQ(ls("*.com"), "re-es-tddft.com\nre-es.com\nre-gs-tddft.com\nre-gs.com\n");
  EXPECT_EQ(ls("jobs/*.py"), "jobs/gaussian_log_check.py\njobs/re-es-tddft.py\njobs/re-es.py\njobs/re-gs-tddft.py\n"
                             "jobs/re-gs.py\n");
}

TEST(Reorg4pInputFiles, CheckerIsTheGaussianEndTestInTheJobsDirectory) {
  txtest::TempDir dir;
  copy_water_gjf();
  Transport t;
  set_singlet(t);
  txtest::capture_stdout([&] { t.reorg4p_write_input_files(".", false); });
  EXPECT_EQ(txtest::read_file("jobs/gaussian_log_check.py"),
            txtest::read_file(txtest::data_path("golden/checkers/gaussian_log_check.py")));
  EXPECT_FALSE(txtest::path_exists("scr/gaussian_log_check.py"));
}

TEST(Reorg4pInputFiles, EveryScriptCompilesAndEveryJobPassesTheShellCheck) {
  txtest::TempDir dir;
  copy_water_gjf();
  Transport t;
  set_triplet(t);
  txtest::capture_stdout([&] { t.reorg4p_write_input_files(".", false); });
  for (const char* f : {"RE_run.py", "jobs/gaussian_log_check.py", "jobs/re-gs.py", "jobs/re-es.py",
                        "jobs/re-gs-tddft.py", "jobs/re-es-tddft.py"})
    expect_py_compiles(f);
  for (const char* f : {"jobs/re-gs.slurm", "jobs/re-es.slurm", "jobs/re-gs-tddft.slurm", "jobs/re-es-tddft.slurm"})
    expect_bash_syntax(f);
}

TEST(Reorg4pInputFiles, FirstGjfOfTheDirectoryIsTaken) {
  txtest::TempDir dir;
  copy_water_gjf();
  txtest::write_file("b.gjf", "#P hf/sto-3g\n\nother\n\n0 1\nHe 0.0 0.0 0.0\n\n");
  txtest::write_file("a.gjf", "#P hf/sto-3g\n\nfirst\n\n0 1\nNe 0.0 0.0 0.0\n\n");
  Transport t;
  set_singlet(t);
  const std::string out = txtest::capture_stdout([&] { t.reorg4p_write_input_files(".", false); });
  EXPECT_NE(out.find("Using Gaussian input file a.gjf...\n"), std::string::npos);
  EXPECT_NE(txtest::read_file("re-gs.com").find("\n0 1\nNe 0.0 0.0 0.0\n\n"), std::string::npos);
}

TEST(Reorg4pInputFiles, AtomBlockEndsAtItsBlankLineAfterATwoLineRoute) {
  txtest::TempDir dir;
  txtest::write_file("user.com",
                     "%mem=1GB\n#P b3lyp/6-31g(d)\n# opt freq\n\ntitle\n\n0 1\r\nC 0.0 0.0 0.0\r\n"
                     "O 0.0 0.0 1.2\r\n   \r\n1 2 2.0\n\nextra\n");
  Transport t;
  set_singlet(t);
  txtest::capture_stdout([&] { t.reorg4p_write_input_files("user.com", false); });
  const std::string text = txtest::read_file("re-es.com");
  const std::string tail = "\nexcited state opt.\n\n0 1\nC 0.0 0.0 0.0\nO 0.0 0.0 1.2\n\n";
  ASSERT_GE(text.size(), tail.size());
  EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
}

TEST(Reorg4pInputFiles, VerboseNamesTheAtomCountAndEachInput) {
  txtest::TempDir dir;
  copy_water_gjf();
  Transport t;
  set_triplet(t);
  const std::string out = txtest::capture_stdout([&] { t.reorg4p_write_input_files(".", true); });
  EXPECT_NE(out.find("Using Gaussian input file water.gjf...\n  3 atom lines\nGenerate .com files...\n  re-gs.com\n"
                     "  re-es.com\n  re-gs-tddft.com\n  re-es-tddft.com\nGenerate script files...\n"),
            std::string::npos)
      << out;
}

TEST(Reorg4pInputFiles, NoGjfInTheDirectoryIsFatal) {
  txtest::TempDir dir;
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    t.reorg4p_write_input_files(".", false);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), evctest::kFatalHead);
  EXPECT_EQ(r.err, "Failed to find any Gaussian com file!\n");
}

TEST(Reorg4pInputFiles, InputThatCannotBeOpenedIsFatal) {
  txtest::TempDir dir;
  copy_water_gjf();
  ASSERT_EQ(txtest::run_command("mkdir re-es.com").status, 0);
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    t.reorg4p_write_input_files("water.gjf", false);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_NE(txtest::mask_line_numbers(r.out).find("\nERROR  transport : fileio : line # : \n"), std::string::npos);
  EXPECT_EQ(r.err, "Failed to open output file re-es.com\n");
}

TEST(Reorg4pInputFiles, RunScriptThatCannotBeOpenedIsFatal) {
  txtest::TempDir dir;
  copy_water_gjf();
  ASSERT_EQ(txtest::run_command("mkdir RE_run.py").status, 0);
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    t.job_sched_type = Jobscript::sched_local;
    t.reorg4p_write_input_files("water.gjf", false);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(r.err, "Failed to open output file RE_run.py\n");
}

TEST(Reorg4pJobString, ReplacesTheTextAndLeavesFormchkOutOnRequest) {
  Transport t;
  set_singlet(t);
  std::string out = "stale";
  t.reorg4p_format_RE_gau_job_string(out, "gs-tddft", false);
  EXPECT_EQ(out,
            "python jobs/gaussian_log_check.py re-gs-tddft.log\n"
            "if [ -f re-gs-tddft.log.ok ]; then\n"
            "    echo \"Normal termination of Gaussian detected, skip the current run.\"\n"
            "    rm -f re-gs-tddft.log.ok\n"
            "else\n"
            "    echo \"Run Gaussian job re-gs-tddft...\"\n"
            "    g16 re-gs-tddft.com\n"
            "    python jobs/gaussian_log_check.py re-gs-tddft.log\n"
            "    if [ -f re-gs-tddft.log.ok ]; then\n"
            "        rm -f re-gs-tddft.log.ok\n"
            "    else\n"
            "        touch ERROR-RE-re-gs-tddft\n"
            "    fi\n"
            "fi\n");
  t.reorg4p_format_RE_gau_job_string(out, "es", true);
  EXPECT_NE(out.find("    g16 re-es.com\n    formchk re-es.chk\n    python jobs/"), std::string::npos);
  EXPECT_EQ(out.find("gs-tddft"), std::string::npos);
}

TEST(Reorg4pRunScript, OtherEnginesHandOverOutFiles) {
  txtest::TempDir dir;
  Transport t;
  set_singlet(t);
  t.compute_engine = 2;
  t.reorg4p_write_RE_run_py_file();
  EXPECT_NE(txtest::read_file("RE_run.py")
                .find("os.system('python $TAVIX_ROOT/scripts/tavix_reorg_4P.py --gs re-gs.out --es re-es.out "
                      "--gs2 re-gs-tddft.out')\n\n"),
            std::string::npos);
  t.qc_es_mult = 3;
  t.reorg4p_write_RE_run_py_file();
  EXPECT_NE(txtest::read_file("RE_run.py")
                .find("tavix_reorg_4P.py --mult 3 --gs re-gs.out --es re-es.out --gs2 re-gs-tddft.out "
                      "--es2 re-es-tddft.out')\n\n"),
            std::string::npos);
}

// ---- RE_run.py run end to end -------------------------------------------------------

// A working directory with the route written for local runs, a stand-in for the
// quantum-chemistry program (`program_body` runs with the input base in $base), and
// an installation whose tavix_reorg_4P.py records its arguments. False when no
// `python` is on the path, which the jobs call.
bool set_up_local_route(const std::string& program_body) {
  if (txtest::run_command("command -v python").status != 0) return false;
  copy_water_gjf();
  txtest::write_file("fake_qc", "#!/bin/sh\nbase=${1%.com}\n" + program_body);
  EXPECT_EQ(txtest::run_command("chmod +x fake_qc && mkdir -p root/scripts").status, 0);
  txtest::write_file("root/scripts/tavix_reorg_4P.py",
                     "import sys\nopen('reorg4p_args.txt', 'w').write(' '.join(sys.argv[1:]) + '\\n')\n");
  Transport t;  // its working directory is this one
  set_singlet(t);
  t.job_workdir = txtest::run_command("pwd -P").out;
  t.job_workdir.pop_back();
  t.qc_exe = t.job_workdir + "/fake_qc";
  t.formchk_exe = "true";
  txtest::capture_stdout([&] { t.reorg4p_write_input_files("water.gjf", false); });
  return true;
}

TEST(Reorg4pRunScript, LeftoverMarkersAreRemovedFirstAndTheRunGoesThrough) {
  txtest::TempDir dir;
  if (!set_up_local_route("echo ' Normal termination of Gaussian 16' > $base.log\ntouch $base.chk\n"))
    GTEST_SKIP() << "no python on the path";
  txtest::write_file("ERROR-RE-re-gs", "");
  txtest::write_file("running.re_old", "");
  const txtest::RunResult r = txtest::run_command("TAVIX_ROOT=\"$PWD/root\" python3 RE_run.py");
  ASSERT_EQ(r.status, 0) << r.out << r.err;
  EXPECT_NE(r.out.find("\nSuccessfully done at "), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("\nDURATION: 0 days 0 hours 0 minutes "), std::string::npos) << r.out;
  EXPECT_EQ(ls("ERROR-* running.* 2>/dev/null"), "");
  EXPECT_EQ(txtest::read_file("reorg4p_args.txt"), "--gs re-gs.log --es re-es.log --gs2 re-gs-tddft.log\n");
  EXPECT_TRUE(txtest::path_exists("re-gs-tddft.log"));
}

TEST(Reorg4pRunScript, FailedJobStopsTheRunWhileAnotherIsStillRunning) {
  txtest::TempDir dir;
  if (!set_up_local_route("touch running.other\n")) GTEST_SKIP() << "no python on the path";
  const txtest::RunResult r = txtest::run_command("TAVIX_ROOT=\"$PWD/root\" python3 RE_run.py");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "\nERROR occurs in running TAVIX calculations.\nCheck ERROR-* to locate the problem.\nSTOP\n\n");
  EXPECT_TRUE(txtest::path_exists("ERROR-RE-re-gs"));
  EXPECT_FALSE(txtest::path_exists("reorg4p_args.txt"));
}

TEST(Reorg4pRunScript, MissingInstallationRootStopsBeforeAnyJob) {
  txtest::TempDir dir;
  Transport t;
  set_singlet(t);
  t.reorg4p_write_RE_run_py_file();
  txtest::write_file("running.re_gs", "");
  const txtest::RunResult r = txtest::run_command("env -u TAVIX_ROOT python3 RE_run.py");
  EXPECT_EQ(r.status, 1);
  const std::string box =
      "+------------------------------------------------+\n"
      "|  Please set environment variable TAVIX_ROOT !  |\n"
      "+------------------------------------------------+\n";
  ASSERT_GE(r.out.size(), box.size());
  EXPECT_EQ(r.out.substr(r.out.size() - box.size()), box);
  EXPECT_TRUE(txtest::path_exists("running.re_gs"));
}

}  // namespace
