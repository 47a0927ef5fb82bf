// The shell payloads of the reorganisation jobs against hand-written blocks, and the
// way the builders treat their output string and index.
#include <gtest/gtest.h>

#include <string>

#include "re_test_support.h"

namespace {

std::string payload_golden(const std::string& name) { return retest::golden("payloads/" + name); }

void make(Transport& t, int engine) {
  retest::set_run(t);
  retest::set_engine(t, engine);
}

// The payload that `build` leaves for engine `engine`.
template <typename Build>
std::string payload(int engine, Build build) {
  Transport t;
  make(t, engine);
  std::string out;
  build(t, out);
  return out;
}

TEST(ReJobStrings, GaussianStateRunsFormchkInsideTheRunBranch) {
  EXPECT_EQ(
      payload(1, [](Transport& t, std::string& out) { t.format_RE_gaussian_job_string(out, 0, "neutral", true); }),
      payload_golden("gaussian-mol1-neutral.sh"));
}

TEST(ReJobStrings, GaussianStateWithoutFormchkLeavesOutTheConversionLine) {
  EXPECT_EQ(
      payload(1, [](Transport& t, std::string& out) { t.format_RE_gaussian_job_string(out, 1, "neutral_eN", false); }),
      payload_golden("gaussian-mol2-neutral_eN.sh"));
}

TEST(ReJobStrings, OrcaStateRunsInScratchAndKeepsTheEmptyArgumentSlot) {
  const std::string out =
      payload(2, [](Transport& t, std::string& out) { t.format_RE_orca_job_string(out, 1, "cation"); });
  EXPECT_EQ(out, payload_golden("orca-mol2-cation.sh"));
  EXPECT_NE(out.find("orca re-mol2-cation.inp  > re-mol2-cation.out"), std::string::npos);
}

TEST(ReJobStrings, OrcaArgumentsStandBetweenInputAndRedirection) {
  Transport t;
  make(t, 2);
  t.qc_exe_args = "--quiet";
  std::string out;
  t.format_RE_orca_job_string(out, 0, "neutral");
  EXPECT_NE(out.find("\n    orca re-mol1-neutral.inp --quiet > re-mol1-neutral.out\n"), std::string::npos) << out;
}

TEST(ReJobStrings, QchemStateRunsWithThreadCountOfPpn) {
  EXPECT_EQ(payload(3, [](Transport& t, std::string& out) { t.format_RE_qchem_job_string(out, 1, "anion"); }),
            payload_golden("qchem-mol2-anion.sh"));
}

TEST(ReJobStrings, BdfStateRunsInATemporaryDirectoryOfItsOwn) {
  EXPECT_EQ(payload(4, [](Transport& t, std::string& out) { t.format_RE_bdf_job_string(out, 0, "neutral"); }),
            payload_golden("bdf-mol1-neutral.sh"));
}

// What post_data_read_treatment sets for the engine; a Gaussian run keeps "log".
TEST(ReJobStrings, GaussianOutputPathTakesTheRunsOutputExtension) {
  const std::string out = payload(1, [](Transport& t, std::string& out) {
    t.qc_log_ext = "out";
    t.format_RE_gaussian_job_string(out, 0, "neutral", true);
  });
  EXPECT_NE(out.find("python /work/run/scr/gaussian_log_check.py /work/run/RE/re-mol1-neutral.out\n"),
            std::string::npos)
      << out;
  EXPECT_EQ(out.find(".log"), std::string::npos) << out;
}

TEST(ReJobStrings, EveryBuilderReplacesWhatTheStringHeld) {
  Transport t;
  make(t, 1);
  std::string a = "old text\n";
  std::string b;
  t.format_RE_gaussian_job_string(a, 0, "neutral", true);
  t.format_RE_gaussian_job_string(b, 0, "neutral", true);
  EXPECT_EQ(a, b);
  for (auto builder : {&Transport::format_RE_orca_job_string, &Transport::format_RE_qchem_job_string,
                       &Transport::format_RE_bdf_job_string}) {
    std::string x = "old text\n";
    std::string y;
    (t.*builder)(x, 2, "anion");
    (t.*builder)(y, 2, "anion");
    EXPECT_EQ(x, y);
    EXPECT_EQ(x.find("old text"), std::string::npos);
  }
}

TEST(ReJobStrings, IndexIsZeroBasedAndNamesTheOneBasedMolecule) {
  Transport t;
  make(t, 1);
  std::string out;
  t.format_RE_gaussian_job_string(out, 6, "cation", true);
  EXPECT_NE(out.find("g16 re-mol7-cation.com\n"), std::string::npos) << out;
  EXPECT_NE(out.find("touch /work/run/RUN/ERROR-RE-re-mol7-cation\n"), std::string::npos) << out;
}

// The payload names the directories as words, whatever the run layout says.
TEST(ReJobStrings, DirectoryNamesStandAsWordsNotAsConfiguredNames) {
  Transport t;
  make(t, 3);
  t.job_scripts_REdir = "reorg";
  t.job_scripts_SCRdir = "scripts";
  t.job_scripts_RUNdir = "markers";
  std::string out;
  t.format_RE_qchem_job_string(out, 1, "anion");
  EXPECT_EQ(out, payload_golden("qchem-mol2-anion.sh"));
}

TEST(ReJobStrings, PayloadsPassTheShellSyntaxCheck) {
  txtest::TempDir dir;
  Transport t;
  make(t, 1);
  std::string out;
  t.format_RE_gaussian_job_string(out, 0, "anion", true);
  txtest::write_file("g.sh", out);
  t.format_RE_orca_job_string(out, 0, "anion");
  txtest::write_file("o.sh", out);
  t.format_RE_qchem_job_string(out, 0, "anion");
  txtest::write_file("q.sh", out);
  t.format_RE_bdf_job_string(out, 0, "anion");
  txtest::write_file("b.sh", out);
  for (const char* f : {"g.sh", "o.sh", "q.sh", "b.sh"}) EXPECT_EQ(retest::bash_n(f), 0) << f;
}

}  // namespace
