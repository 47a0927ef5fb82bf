// The four-point single points of the Gaussian route: one input, the jobs and their
// driver, and when the families write them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "re_test_support.h"

namespace {

using retest::expect_fatal;
using retest::expect_golden;
using retest::files_in;
using retest::Names;
using retest::set_cell;

TEST(ReFourPoint, InputIsASinglePointOnTheCheckpointGeometry) {
  txtest::TempDir dir;
  Transport t;
  set_cell(t, 1);
  ASSERT_EQ(txtest::run_command("mkdir RE").status, 0);
  t.write_RE_gaussian_lambda_4P_com(0, "neutral_hN", "1 2");
  t.write_RE_gaussian_lambda_4P_com(1, "anion_nC", "0 1");
  expect_golden("RE/re-mol1-neutral_hN.com", "four_point/re-mol1-neutral_hN.com");
  expect_golden("RE/re-mol2-anion_nC.com", "four_point/re-mol2-anion_nC.com");
}

TEST(ReFourPoint, JobChainsElectronThenHoleSinglePointsWithoutFormchk) {
  txtest::TempDir dir;
  Transport t;
  set_cell(t, 1);
  t.write_RE_gaussian_lambda_4P_job({1, 2});
  EXPECT_EQ(files_in("jobs"), (Names{"job_re-mol1_lambda_4P.pbs", "job_re-mol2_lambda_4P.pbs"}));
  expect_golden("jobs/job_re-mol2_lambda_4P.pbs", "jobs/job_re-mol2_lambda_4P.pbs");
  expect_golden("scr/mol_RE_lambda_4P.py", "drivers/lambda_4P.py");
  EXPECT_EQ(retest::bash_n("jobs/job_re-mol1_lambda_4P.pbs"), 0);
  EXPECT_EQ(retest::py_compile("scr/mol_RE_lambda_4P.py"), 0);
}

TEST(ReFourPoint, GaussianFamiliesWriteTheSinglePointsOfEachCarrier) {
  struct Case {
    const char* chargetype;
    Names single_points;  // of molecule 1
  };
  const Case cases[] = {
      {"a", {"re-mol1-anion_nC.com", "re-mol1-cation_nC.com", "re-mol1-neutral_eN.com", "re-mol1-neutral_hN.com"}},
      {"e", {"re-mol1-anion_nC.com", "re-mol1-neutral_eN.com"}},
      {"h", {"re-mol1-cation_nC.com", "re-mol1-neutral_hN.com"}},
  };
  for (auto write :
       {&Transport::write_RE_gaussian_mol_gjf_and_job, &Transport::write_RE_gaussian_mol_gjf_and_job_separated}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(c.chargetype);
      txtest::TempDir dir;
      Transport t;
      set_cell(t, 1);
      t.chargetype = c.chargetype;
      t.RE_calc_lambda_4P = true;
      (t.*write)();
      Names found;
      for (const std::string& f : files_in("RE"))
        if (f.find("mol1-") != std::string::npos && f.find("_") != std::string::npos) found.push_back(f);
      EXPECT_EQ(found, c.single_points);
      const std::string driver = txtest::read_file("scr/mol_RE_lambda_4P.py");
      EXPECT_NE(driver.find("running.re_mol2_lambda_4P"), std::string::npos);
      const std::string job = txtest::read_file("jobs/job_re-mol1_lambda_4P.pbs");
      EXPECT_EQ(job.find("formchk"), std::string::npos);
    }
  }
  txtest::TempDir dir;
  Transport t;
  set_cell(t, 1);
  t.RE_calc_lambda_4P = true;
  t.write_RE_gaussian_mol_gjf_and_job();
  expect_golden("RE/re-mol2-anion_nC.com", "four_point/re-mol2-anion_nC.com");
}

TEST(ReFourPoint, UniqueGaussianRunGivesSinglePointsToTheRepresentativesOnly) {
  txtest::TempDir dir;
  Transport t;
  set_cell(t, 1);
  retest::set_re_list(t, {2});
  t.RE_calc_lambda_4P = true;
  t.chargetype = "e";
  t.write_RE_gaussian_mol_gjf_and_job_unique_separated();
  EXPECT_EQ(files_in("RE"),
            (Names{"re-mol2-anion.com", "re-mol2-anion_nC.com", "re-mol2-neutral.com", "re-mol2-neutral_eN.com"}));
  EXPECT_EQ(files_in("jobs"), (Names{"job_re-mol2-anion.pbs", "job_re-mol2-neutral.pbs", "job_re-mol2_lambda_4P.pbs"}));
}

TEST(ReFourPoint, WithoutTheSwitchNoSinglePointOrDriverIsWritten) {
  txtest::TempDir dir;
  Transport t;
  set_cell(t, 1);
  t.RE_calc_lambda_4P = false;
  t.write_RE_gaussian_mol_gjf_and_job();
  EXPECT_EQ(files_in("RE").size(), 6u);
  EXPECT_FALSE(txtest::path_exists("scr/mol_RE_lambda_4P.py"));
}

// The single points need Gaussian checkpoints; the other engines have no such input.
TEST(ReFourPoint, OrcaRunWritesNoFourPointInputWhateverTheSwitch) {
  const std::pair<int, void (Transport::*)()> engines[] = {
      {2, &Transport::write_RE_orca_mol_inp_and_job_seperated},
      {3, &Transport::write_RE_qchem_mol_inp_and_job_seperated},
      {4, &Transport::write_RE_bdf_mol_inp_and_job_seperated},
      {2, &Transport::write_RE_orca_mol_inp_and_job_unique_seperated},
  };
  for (const auto& e : engines) {
    SCOPED_TRACE(e.first);
    txtest::TempDir dir;
    Transport t;
    set_cell(t, e.first);
    retest::set_re_list(t, {1, 2});
    t.RE_calc_lambda_4P = true;
    (t.*e.second)();
    for (const std::string& f : files_in("RE")) EXPECT_EQ(f.find('_'), std::string::npos) << f;
    EXPECT_EQ(files_in("RE").size(), 6u);
    EXPECT_EQ(files_in("scr"), (Names{"mol_RE_anion_cation.py", "mol_RE_neutral.py"}));
  }
}

TEST(ReFourPoint, InputThatCannotBeOpenedIsFatalWithStatusMinusOne) {
  txtest::TempDir dir;
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    set_cell(t, 1);
    t.job_scripts_REdir = "missing";
    t.write_RE_gaussian_lambda_4P_com(0, "cation_nC", "0 1");
  });
  expect_fatal(r, 255, "transport", "Failed to open output file missing/re-mol1-cation_nC.com\n");
}

TEST(ReFourPoint, DriverThatCannotBeOpenedIsFatalWithStatusOne) {
  txtest::TempDir dir;
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    set_cell(t, 1);
    t.job_scripts_SCRdir = "missing/scr";
    t.write_RE_gaussian_lambda_4P_job({1});
  });
  expect_fatal(r, 1, "transport", "Failed to open output file missing/scr/mol_RE_lambda_4P.py\n");
}

}  // namespace
