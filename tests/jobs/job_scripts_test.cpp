// Job-script writers: scheduler names, dispatch and its fatal reports, the
// directories the writers make, array index texts, module lines, the dormant
// verbose lines, and the scheduler settings as the control reader leaves them.
#include "job_scripts.h"

#include <dirent.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tavix_output.h"
#include "test_support.h"

using txtest::mask_line_numbers;
using txtest::read_file;
using txtest::run_forked;
using txtest::TempDir;

namespace {

const char* const kSchedNames[4] = {"pbs", "slurm", "lsf", "local"};
const std::string kHead = "\nERROR  transport : job_scripts : line # : \n";

std::unique_ptr<Jobscript> job_on(int sched) {
  auto j = std::make_unique<Jobscript>();
  j->job_sched_type = sched;
  j->job_workdir = "/w";
  return j;
}

// One call of each public writer. Quantum-chemistry scripts are "job_a" under
// job_scripts_JOBSdir; calculation scripts have the base "run".
struct WriterCall {
  std::string what;
  bool qc;
  std::function<void(Jobscript&)> call;
};

const int kThree[3] = {3, 10, 200};

std::vector<WriterCall> all_writers() {
  const char* m = "RUN/running.a";
  return {
      {"gaussian_HL", true, [m](Jobscript& j) { j.write_gaussian_HL_job("job_a", 1, 4, "a", "a", m); }},
      {"orca_HL", true, [m](Jobscript& j) { j.write_orca_HL_job("job_a", 1, 4, "a", "a", m); }},
      {"qchem_HL", true, [m](Jobscript& j) { j.write_qchem_HL_job("job_a", 1, 4, "a", "a", m); }},
      {"bdf_HL", true, [m](Jobscript& j) { j.write_bdf_HL_job("job_a", 1, 4, "a", "a", m); }},
      {"gaussian_HL_array", true,
       [m](Jobscript& j) { j.write_gaussian_HL_job_array("job_a", 1, 4, "a", "a", m, 3, kThree); }},
      {"orca_HL_array", true, [m](Jobscript& j) { j.write_orca_HL_job_array("job_a", 1, 4, "a", "a", m, 3, kThree); }},
      {"qchem_HL_array", true,
       [m](Jobscript& j) { j.write_qchem_HL_job_array("job_a", 1, 4, "a", "a", m, 3, nullptr); }},
      {"bdf_HL_array", true, [m](Jobscript& j) { j.write_bdf_HL_job_array("job_a", 1, 4, "a", "a", m, 3, nullptr); }},
      {"gaussian_RE", true, [m](Jobscript& j) { j.write_gaussian_RE_job("job_a", 1, 4, "g16 a.com\n", "a", m); }},
      {"orca_RE", true, [m](Jobscript& j) { j.write_orca_RE_job("job_a", 1, 4, "a", "a", m, "orca a.inp\n"); }},
      {"qchem_RE", true, [m](Jobscript& j) { j.write_qchem_RE_job("job_a", 1, 4, "a", "a", m, "qchem a.inp\n"); }},
      {"bdf_RE", true, [m](Jobscript& j) { j.write_bdf_RE_job("job_a", 1, 4, "a", "a", m, "bdf a.inp\n"); }},
      {"RE_mps", true, [m](Jobscript& j) { j.write_RE_mps_job("job_a", 1, 4, "x", "mps", m, "tavix_log2mps.exe\n"); }},
      {"MC", false, [m](Jobscript& j) { j.write_MC_job("run", 1, 4, "tavix_mc.exe", "a", m); }},
      {"ME", false, [m](Jobscript& j) { j.write_ME_job("run", 1, 4, "tavix_meq.exe", "a", m); }},
      {"calc_mob", false, [m](Jobscript& j) { j.write_calc_mob_job("run", 1, 4, "a", m, "tavix_mob.exe"); }},
      {"calc_getRE", false, [m](Jobscript& j) { j.write_calc_getRE_job("run", 1, 4, "a", m, "tavix_x.exe"); }},
      {"calc_transint", false,
       [m](Jobscript& j) { j.write_calc_transint_job("run", 1, 4, "a", m, "tavix_t.exe", "data"); }},
      {"calc_transint_array", false,
       [m](Jobscript& j) { j.write_calc_transint_job_array("run", 1, 4, "a", m, 2, nullptr, "tavix_t.exe", "data"); }},
      {"calc_siteEner", false,
       [m](Jobscript& j) { j.write_calc_siteEner_job("run", 1, 4, "a", m, "tavix_s.exe", "data"); }},
  };
}

std::string script_of(const Jobscript& j, const WriterCall& w) {
  const std::string ext = kSchedNames[j.job_sched_type];
  return w.qc ? j.job_scripts_JOBSdir + "/job_a." + ext : "run." + ext;
}

// Names in directory `path`, without "." and "..".
std::set<std::string> entries(const std::string& path) {
  std::set<std::string> names;
  DIR* d = opendir(path.c_str());
  if (d == nullptr) return names;
  while (dirent* e = readdir(d)) {
    std::string n = e->d_name;
    if (n != "." && n != "..") names.insert(n);
  }
  closedir(d);
  return names;
}

// The line of `text` that begins with `prefix`, or "" if none does.
std::string line_starting(const std::string& text, const std::string& prefix) {
  std::istringstream in(text);
  std::string l;
  while (std::getline(in, l))
    if (l.compare(0, prefix.size(), prefix) == 0) return l;
  return "";
}

bool has_line(const std::string& text, const std::string& line) {
  return ("\n" + text).find("\n" + line + "\n") != std::string::npos;
}

}  // namespace

// ---- scheduler names ------------------------------------------------------------

TEST(ParseSchedulingType, MatchesEachNameInOrderWithoutRegardToCase) {
  Jobscript j;
  const char* spellings[4] = {"PBS", "Slurm", "lsf", "LoCaL"};
  for (int k = 0; k < 4; ++k) {
    j.sched_type = spellings[k];
    j.parse_scheduling_type();
    EXPECT_EQ(j.job_sched_type, k) << spellings[k];
  }
}

TEST(ParseSchedulingType, UnknownNameSilentlySelectsPbs) {
  txtest::RunResult r = run_forked([] {
    Jobscript j;
    j.job_sched_type = 2;
    j.sched_type = "foo";
    j.parse_scheduling_type();
    std::exit(j.job_sched_type == 0 ? 0 : 3);
  });
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, "");
}

TEST(GetFileName, TextBehindTheLastSlash) {
  Jobscript j;
  EXPECT_EQ(j.getFileName("jobs/job_a.pbs"), "job_a.pbs");
  EXPECT_EQ(j.getFileName("/w/jobs/job_a.pbs"), "job_a.pbs");
  EXPECT_EQ(j.getFileName("/w/jobs/"), "");
}

TEST(GetFileName, BareNameYieldsAnEmptyString) {
  Jobscript j;
  EXPECT_EQ(j.getFileName("job_a.pbs"), "");
  EXPECT_EQ(j.getFileName(""), "");
}

// ---- dispatch and fatal reports ---------------------------------------------------

TEST(JobDispatch, PublicWriterWritesWhatTheCurrentSchedulersMemberWrites) {
  for (int s = 0; s < 4; ++s) {
    TempDir dir;
    auto j = job_on(s);
    j->write_MC_job("public", 1, 4, "tavix_mc.exe", "a", "RUN/running.a");
    switch (s) {
      case 0:
        j->write_MC_job_pbs("member", 1, 4, "tavix_mc.exe", "a", "RUN/running.a");
        break;
      case 1:
        j->write_MC_job_slurm("member", 1, 4, "tavix_mc.exe", "a", "RUN/running.a");
        break;
      case 2:
        j->write_MC_job_lsf("member", 1, 4, "tavix_mc.exe", "a", "RUN/running.a");
        break;
      case 3:
        j->write_MC_job_local("member", 1, 4, "tavix_mc.exe", "a", "RUN/running.a");
        break;
    }
    const std::string ext = kSchedNames[s];
    EXPECT_EQ(entries("."), (std::set<std::string>{"public." + ext, "member." + ext}));
    EXPECT_EQ(read_file("public." + ext), read_file("member." + ext));
  }
}

TEST(JobDispatch, SchedulerMemberTakesTheExtensionOfTheCurrentScheduler) {
  TempDir dir;
  auto j = job_on(Jobscript::sched_pbs);
  j->write_MC_job_lsf("run", 1, 4, "tavix_mc.exe", "a", "RUN/running.a");
  EXPECT_EQ(read_file("run.pbs").substr(0, 16), "#BSUB -W 160:00\n");
}

TEST(JobDispatch, UnknownSchedulerIndexIsFatalForEveryWriter) {
  for (const WriterCall& w : all_writers()) {
    for (int bad : {4, -1}) {
      TempDir dir;
      txtest::RunResult r = run_forked([&] {
        auto j = job_on(bad);
        w.call(*j);
      });
      EXPECT_EQ(r.status, 255) << w.what;
      EXPECT_EQ(mask_line_numbers(r.out), kHead) << w.what;
      EXPECT_EQ(r.err, "Unknown job scheduling type!\n") << w.what;
      // The quantum-chemistry writers make the jobs directory before they look.
      EXPECT_EQ(entries("."), w.qc ? std::set<std::string>{"jobs"} : std::set<std::string>{}) << w.what;
    }
  }
}

TEST(JobDispatch, ScriptThatCannotBeOpenedIsFatal) {
  TempDir dir;
  txtest::RunResult r = run_forked([] {
    auto j = job_on(Jobscript::sched_slurm);
    j->write_calc_mob_job("missing/get_mob", 1, 4, "mob", "RUN/running.a", "tavix_mob.exe");
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open output file missing/get_mob.slurm\n");
}

TEST(JobDispatch, JobsDirectoryThatCannotBeMadeShowsAsTheFailureToOpen) {
  TempDir dir;
  txtest::RunResult r = run_forked([] {
    auto j = job_on(Jobscript::sched_pbs);
    j->job_scripts_JOBSdir = "deep/jobs";  // one level is made at most
    j->write_bdf_HL_job("job_a", 1, 4, "a", "a", "RUN/running.a");
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open output file deep/jobs/job_a.pbs\n");
}

// ---- directories --------------------------------------------------------------------

TEST(JobDirectories, QuantumChemistryWritersCreateTheJobsDirectory) {
  for (const WriterCall& w : all_writers()) {
    if (!w.qc) continue;
    TempDir dir;
    auto j = job_on(Jobscript::sched_lsf);
    j->job_scripts_JOBSdir = "myjobs";
    w.call(*j);
    EXPECT_EQ(entries("."), std::set<std::string>{"myjobs"}) << w.what;
    EXPECT_EQ(entries("myjobs"), std::set<std::string>{"job_a.lsf"}) << w.what;
  }
}

TEST(JobDirectories, CalculationWritersCreateNothing) {
  for (const WriterCall& w : all_writers()) {
    if (w.qc) continue;
    TempDir dir;
    auto j = job_on(Jobscript::sched_local);
    w.call(*j);
    EXPECT_EQ(entries("."), std::set<std::string>{"run.local"}) << w.what;
  }
}

// ---- array index text ---------------------------------------------------------------

TEST(ArrayIndexText, NullListGivesOneToCount) {
  TempDir dir;
  auto j = job_on(Jobscript::sched_pbs);
  j->write_qchem_HL_job_array("job_a", 1, 4, "a", "a", "RUN/running.a", 7, nullptr);
  EXPECT_EQ(line_starting(read_file("jobs/job_a.pbs"), "#PBS -t"), "#PBS -t 1-7");
}

TEST(ArrayIndexText, ListIsJoinedByCommasWithTheLastCommaCut) {
  TempDir dir;
  auto j = job_on(Jobscript::sched_pbs);
  const int one[1] = {3};
  j->write_qchem_HL_job_array("job_a", 1, 4, "a", "a", "RUN/running.a", 1, one);
  EXPECT_EQ(line_starting(read_file("jobs/job_a.pbs"), "#PBS -t"), "#PBS -t 3");
  j->write_qchem_HL_job_array("job_a", 1, 4, "a", "a", "RUN/running.a", 3, kThree);
  EXPECT_EQ(line_starting(read_file("jobs/job_a.pbs"), "#PBS -t"), "#PBS -t 3,10,200");
}

TEST(ArrayIndexText, IndexesOfMoreThanFiveDigitsAreWrittenWhole) {
  TempDir dir;
  auto j = job_on(Jobscript::sched_slurm);
  const int big[3] = {1234567, 99999, 7};
  j->write_calc_transint_job_array("run", 1, 4, "t", "RUN/running.t", 3, big, "tavix_t.exe", "data");
  EXPECT_EQ(line_starting(read_file("run.slurm"), "#SBATCH --array"), "#SBATCH --array=1234567,99999,7");
}

TEST(ArrayIndexText, EmptyListGivesAnEmptyText) {
  TempDir dir;
  auto j = job_on(Jobscript::sched_lsf);
  j->write_bdf_HL_job_array("job_a", 1, 4, "a", "b", "RUN/running.a", 0, kThree);
  EXPECT_TRUE(has_line(read_file("jobs/job_a.lsf"), "#BSUB -J HL-b[]"));
}

TEST(ArrayIndexText, JobSlotLimitZeroLeavesNoPercentPartInArrayLines) {
  TempDir dir;
  const char* prefixes[3] = {"#PBS -t", "#SBATCH --array", "#BSUB -J"};
  const char* zero[3] = {"#PBS -t 1-4", "#SBATCH --array=1-4", "#BSUB -J HL-b[1-4]"};
  const char* three[3] = {"#PBS -t 1-4%3", "#SBATCH --array=1-4%3", "#BSUB -J HL-b[1-4]%3"};
  for (int s = 0; s < 3; ++s) {
    auto j = job_on(s);
    const std::string path = std::string("jobs/job_a.") + kSchedNames[s];
    j->write_gaussian_HL_job_array("job_a", 1, 4, "a", "b", "RUN/running.a", 4, nullptr);
    EXPECT_EQ(line_starting(read_file(path), prefixes[s]), zero[s]);
    j->job_slot_limit = 3;
    j->write_gaussian_HL_job_array("job_a", 1, 4, "a", "b", "RUN/running.a", 4, nullptr);
    EXPECT_EQ(line_starting(read_file(path), prefixes[s]), three[s]);
  }
}

TEST(ArrayIndexText, LocalCountBelowOneGivesNoBlocks) {
  TempDir dir;
  auto j = job_on(Jobscript::sched_local);
  j->write_qchem_HL_job_array("job_a", 1, 4, "a", "a", "RUN/running.a", 0, nullptr);
  EXPECT_EQ(read_file("jobs/job_a.local"),
            "#!/bin/sh\n\necho \"Ending job run at `date`\"\necho \"------------------------\"\n\n");
  j->write_calc_transint_job_array("run", 1, 4, "t", "RUN/running.t", -2, nullptr, "tavix_t.exe", "data");
  EXPECT_EQ(read_file("run.local"),
            "#!/bin/sh\n\necho \"Starting job run at `date`\"\n\ncd data\n\n"
            "echo \"Ending job run at `date`\"\necho \"------------------------\"\n\n");
}

TEST(ArrayIndexText, LocalBlocksFollowTheList) {
  TempDir dir;
  auto j = job_on(Jobscript::sched_local);
  j->write_gaussian_HL_job_array("job_a", 1, 4, "a", "a", "RUN/running.a", 3, kThree);
  const std::string text = read_file("jobs/job_a.local");
  EXPECT_TRUE(has_line(text, "# mol-3"));
  EXPECT_TRUE(has_line(text, "# mol-10"));
  EXPECT_TRUE(has_line(text, "# mol-200"));
  EXPECT_TRUE(has_line(text, "    g16 a-200.com"));
  EXPECT_TRUE(has_line(text, "rm -f /w/RUN/running.a-10"));
  EXPECT_LT(text.find("# mol-3"), text.find("# mol-10"));
  EXPECT_LT(text.find("# mol-10"), text.find("# mol-200"));
}

// ---- deliberate texts -----------------------------------------------------------------

TEST(JobTexts, OrcaCommandLineKeepsTheTwoBlanksOfTheEmptyArguments) {
  TempDir dir;
  auto j = job_on(Jobscript::sched_pbs);
  j->qc_exe = "orca";
  j->write_orca_HL_job("job_a", 1, 4, "a", "a", "RUN/running.a");
  EXPECT_TRUE(has_line(read_file("jobs/job_a.pbs"), "    orca a.inp  > a.out"));
  j->qc_exe_args = "-v";
  j->write_orca_HL_job("job_a", 1, 4, "a", "a", "RUN/running.a");
  EXPECT_TRUE(has_line(read_file("jobs/job_a.pbs"), "    orca a.inp -v > a.out"));
}

TEST(JobTexts, OrcaScratchLineWithBlanksIsKeptAndStillPassesBashSyntaxCheck) {
  TempDir dir;
  auto j = job_on(Jobscript::sched_pbs);
  j->write_orca_HL_job("job_a", 1, 4, "a", "a", "RUN/running.a");
  const std::string text = read_file("jobs/job_a.pbs");
  // A shell runs "SCRDIR" as a command with two words; `bash -n` checks only syntax.
  EXPECT_TRUE(has_line(text, "    SCRDIR = /tmp/tavix-HL-$PBS_JOBID"));
  EXPECT_TRUE(has_line(text, "DataDir = /w/HL"));
  EXPECT_TRUE(has_line(text, "    cd ${DataDIR}"));
  EXPECT_EQ(txtest::run_command("bash -n jobs/job_a.pbs").status, 0);
}

TEST(JobTexts, GaussianSlurmArrayNamesItsErrorFileWithThePbsVariable) {
  TempDir dir;
  auto j = job_on(Jobscript::sched_slurm);
  j->write_gaussian_HL_job_array("job_a", 1, 4, "a", "a", "RUN/running.a", 2, nullptr);
  std::string text = read_file("jobs/job_a.slurm");
  EXPECT_TRUE(has_line(text, "        touch /w/RUN/ERROR-HL_a-${PBS_ARRAYID}"));
  EXPECT_TRUE(has_line(text, "    g16 a-${SLURM_ARRAY_TASK_ID}.com"));
  j->write_qchem_HL_job_array("job_a", 1, 4, "a", "a", "RUN/running.a", 2, nullptr);
  text = read_file("jobs/job_a.slurm");
  EXPECT_TRUE(has_line(text, "        touch /w/RUN/ERROR-HL_a-${SLURM_ARRAY_TASK_ID}"));
}

TEST(JobTexts, PlainTransferIntegralJobDoesNotDependOnTheMooFlag) {
  TempDir dir;
  auto j = job_on(Jobscript::sched_pbs);
  j->write_calc_transint_job("off", 1, 4, "t", "RUN/running.t", "tavix_t.exe -batch x", "data");
  j->set_job_moo_flag(true);
  j->write_calc_transint_job("on", 1, 4, "t", "RUN/running.t", "tavix_t.exe -batch x", "data");
  EXPECT_EQ(read_file("off.pbs"), read_file("on.pbs"));
}

TEST(JobTexts, LocalMasterEquationJobIgnoresThePayload) {
  TempDir dir;
  auto j = job_on(Jobscript::sched_local);
  j->write_ME_job("run", 1, 4, "something else", "e", "RUN/running.me_e");
  const std::string text = read_file("run.local");
  EXPECT_TRUE(has_line(text, "tavix_meq.exe"));
  EXPECT_EQ(text.find("something else"), std::string::npos);
}

// ---- module lines ---------------------------------------------------------------------

TEST(JobModules, NoModuleLineWithoutItsFlag) {
  for (int s = 0; s < 4; ++s) {
    for (const WriterCall& w : all_writers()) {
      TempDir dir;
      auto j = job_on(s);
      w.call(*j);
      EXPECT_EQ(read_file(script_of(*j, w)).find("module load"), std::string::npos) << w.what << " " << s;
    }
  }
}

TEST(JobModules, CalculationJobsOnLocalLoadTheQuantumChemistryModuleInstead) {
  for (const WriterCall& w : all_writers()) {
    if (w.qc) continue;
    for (int s = 0; s < 4; ++s) {
      TempDir dir;
      auto j = job_on(s);
      j->module_qc_flag = true;
      j->module_tavix_flag = true;
      j->module_mpich2_flag = true;
      w.call(*j);
      const std::string text = read_file(script_of(*j, w));
      const bool suite = s != Jobscript::sched_local || w.what == "MC" || w.what == "ME";
      EXPECT_EQ(has_line(text, "module load tavix/2022B-mpich2"), suite) << w.what << " " << s;
      EXPECT_EQ(has_line(text, "module load mpich2/1.5-gnu-8.5.0"), suite) << w.what << " " << s;
      EXPECT_EQ(has_line(text, "module load gaussian/g16.c01-avx2"), !suite) << w.what << " " << s;
    }
  }
}

TEST(JobModules, EachModuleLineFollowsItsOwnFlag) {
  TempDir dir;
  auto j = job_on(Jobscript::sched_pbs);
  j->module_mpich2_flag = true;
  j->write_MC_job("run", 1, 4, "tavix_mc.exe", "a", "RUN/running.a");
  const std::string text = read_file("run.pbs");
  EXPECT_FALSE(has_line(text, "module load tavix/2022B-mpich2"));
  EXPECT_NE(text.find("\nmodule load mpich2/1.5-gnu-8.5.0\n\necho \"Starting job run at `date`\"\n"),
            std::string::npos);
}

// ---- verbose lines --------------------------------------------------------------------

TEST(JobVerbose, WritersAreSilentByDefault) {
  for (int s = 0; s < 4; ++s) {
    for (const WriterCall& w : all_writers()) {
      TempDir dir;
      auto j = job_on(s);
      EXPECT_EQ(txtest::capture_stdout([&] { w.call(*j); }), "") << w.what;
    }
  }
}

TEST(JobVerbose, SwitchedOnEachMemberNamesProgramSchedulerAndPath) {
  TempDir dir;
  auto j = job_on(Jobscript::sched_pbs);
  j->job_verbose = true;
  auto say = [&](int s, const std::function<void()>& f) {
    j->job_sched_type = s;
    return txtest::capture_stdout(f);
  };
  const char* m = "RUN/running.a";
  EXPECT_EQ(say(0, [&] { j->write_gaussian_HL_job("job_a", 1, 4, "a", "a", m); }),
            "Writing gaussian job PBS script jobs/job_a.pbs...\n");
  EXPECT_EQ(say(1, [&] { j->write_orca_HL_job_array("job_a", 1, 4, "a", "a", m, 1, nullptr); }),
            "Writing ORCA job SLURM script jobs/job_a.slurm...\n");
  EXPECT_EQ(say(2, [&] { j->write_qchem_RE_job("job_a", 1, 4, "a", "a", m, ""); }),
            "Writing Q-Chem job LSF script jobs/job_a.lsf...\n");
  EXPECT_EQ(say(3, [&] { j->write_bdf_HL_job("job_a", 1, 4, "a", "a", m); }),
            "Writing BDF job LOCAL script jobs/job_a.local...\n");
  EXPECT_EQ(say(0, [&] { j->write_RE_mps_job("job_re-mps", 1, 4, "x", "mps", m, ""); }),
            "Writing RE mps job PBS script jobs/job_re-mps.pbs...\n");
  EXPECT_EQ(say(2, [&] { j->write_orca_RE_job("job_a", 1, 4, "a", "a", m, ""); }),
            "Writing ORCA job LSF script jobs/job_a.lsf...\n");
  EXPECT_EQ(say(1, [&] { j->write_calc_siteEner_job("run", 1, 4, "a", m, "x", "data"); }),
            "Writing gaussian job SLURM script run.slurm...\n");
  EXPECT_EQ(say(3, [&] { j->write_ME_job("run", 1, 4, "x", "a", m); }),
            "Writing gaussian job LOCAL script run.local...\n");
}

// ---- scheduler settings as the control reader leaves them -------------------------------

namespace {

const char* const kEnvNames[] = {"TAVIX_JOB_SCHED", "TAVIX_JOB_QUEUE", "TAVIX_QC_EXE",       "TAVIX_QC_NODES",
                                 "TAVIX_QC_PPN",    "TAVIX_MODULE_QC", "TAVIX_MODULE_TAVIX", "TAVIX_MODULE_MPICH2"};

class JobSettingsFromControlFile : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* n : kEnvNames) unsetenv(n);
  }
  // Reads `keys` inside a &transport section, picks the scheduler and writes a
  // Monte Carlo job "run"; returns the script.
  std::string mc_script_after(Transport& t, const std::string& keys) {
    txtest::write_file("tavix.inp", "&transport\n" + keys + "/\n");
    EXPECT_EQ(t.read_tavix_inp("tavix.inp", false), 1);
    t.parse_scheduling_type();
    t.write_MC_job("run", 1, 4, "tavix_mc.exe", "a", "RUN/running.a");
    return read_file(std::string("run.") + t.job_script_exts[t.job_sched_type]);
  }
  TempDir dir_;
};

}  // namespace

TEST_F(JobSettingsFromControlFile, UpperCaseSlurmIsAcceptedButKeepsDaysZeroAndTheWholeHours) {
  Transport t;
  const std::string text = mc_script_after(t, "sched_type = SLURM\n");
  EXPECT_EQ(t.job_sched_type, Jobscript::sched_slurm);
  EXPECT_EQ(line_starting(text, "#SBATCH --time"), "#SBATCH --time=0-160:00:00");
}

TEST_F(JobSettingsFromControlFile, DefaultWalltimeUnderSlurmReadsSixDaysSixteenHours) {
  Transport t;
  EXPECT_EQ(line_starting(mc_script_after(t, "sched_type = slurm\n"), "#SBATCH --time"), "#SBATCH --time=6-16:00:00");
}

TEST_F(JobSettingsFromControlFile, DefaultWalltimeUnderLsfDropsTheSeconds) {
  Transport t;
  EXPECT_EQ(line_starting(mc_script_after(t, "sched_type = lsf\n"), "#BSUB -W"), "#BSUB -W 160:00");
}

TEST_F(JobSettingsFromControlFile, UnknownSchedulerNameWritesPbsScriptsWithNoMessage) {
  txtest::RunResult r = run_forked([this] {
    Transport t;
    mc_script_after(t, "sched_type = foo\n");
  });
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, "");
  EXPECT_EQ(read_file("run.pbs").substr(0, 18), "#PBS -S /bin/bash\n");
}

TEST_F(JobSettingsFromControlFile, NodelistUnderLsfHasBlanksAndUnderPbsItsCommas) {
  {
    Transport t;
    EXPECT_TRUE(has_line(mc_script_after(t, "sched_type = lsf\nnodelist = n1,n2\n"), "#BSUB -m 'n1 n2'"));
  }
  {
    Transport t;
    EXPECT_TRUE(has_line(mc_script_after(t, "sched_type = pbs\nnodelist = n1,n2\n"), "#PBS -l nodes=n1,n2"));
  }
}
