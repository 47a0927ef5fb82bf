// The reorganisation families on a hand-built cell: which inputs, job scripts and
// drivers each writes, their text against hand-written files, the carrier choice,
// the unique runs, and the failures.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "re_test_support.h"

namespace {

using retest::expect_fatal;
using retest::expect_golden;
using retest::files_in;
using retest::inputs_of;
using retest::kFamilies;
using retest::Names;
using retest::set_cell;
using retest::submitted_molecules;

// Four molecules, two of each kind: the reorganisation check makes 1 and 3 the
// representatives (same atom count and mass as 2 and 4 respectively).
void set_four_molecule_cell(Transport& t, int engine) {
  retest::set_run(t);
  retest::set_engine(t, engine);
  retest::set_molecules(t, {retest::carbon_monoxide(), retest::carbon_monoxide(), retest::hydrogen_chloride(),
                            retest::hydrogen_chloride()});
}

void expect_scripts_pass_checks(const Names& drivers) {
  for (const std::string& d : drivers) EXPECT_EQ(retest::py_compile("scr/" + d), 0) << d;
  for (const std::string& j : files_in("jobs")) EXPECT_EQ(retest::bash_n("jobs/" + j), 0) << j;
}

const Names kDrivers = {"mol_RE_anion_cation.py", "mol_RE_neutral.py"};
const Names kGaussianInputs = {"re-mol1-anion.com", "re-mol1-cation.com", "re-mol1-neutral.com",
                               "re-mol2-anion.com", "re-mol2-cation.com", "re-mol2-neutral.com"};

// ---- Gaussian, anion and cation chained -------------------------------------------

TEST(ReFamilies, GaussianCombinedWritesTwoJobsAMoleculeAndBothDrivers) {
  txtest::TempDir dir;
  Transport t;
  set_cell(t, 1);
  t.write_RE_gaussian_mol_gjf_and_job();
  EXPECT_EQ(files_in("RE"), kGaussianInputs);
  EXPECT_EQ(files_in("jobs"), (Names{"job_re-mol1_anion_cation.pbs", "job_re-mol1_neutral.pbs",
                                     "job_re-mol2_anion_cation.pbs", "job_re-mol2_neutral.pbs"}));
  EXPECT_EQ(files_in("scr"), kDrivers);
  expect_golden("scr/mol_RE_neutral.py", "drivers/gaussian-combined-neutral.py");
  expect_golden("scr/mol_RE_anion_cation.py", "drivers/gaussian-combined-anion_cation.py");
  expect_golden("jobs/job_re-mol1_neutral.pbs", "jobs/job_re-mol1_neutral.pbs");
  expect_golden("jobs/job_re-mol2_anion_cation.pbs", "jobs/job_re-mol2_anion_cation.pbs");
  expect_scripts_pass_checks(kDrivers);
}

TEST(ReFamilies, GaussianCombinedJobOfElectronWorkChainsOnlyTheAnion) {
  txtest::TempDir dir;
  Transport t;
  set_cell(t, 1);
  t.chargetype = "e";
  t.write_RE_gaussian_mol_gjf_and_job();
  const std::string job = txtest::read_file("jobs/job_re-mol2_anion_cation.pbs");
  EXPECT_NE(job.find("g16 re-mol2-anion.com"), std::string::npos);
  EXPECT_EQ(job.find("cation.com"), std::string::npos);
  expect_golden("scr/mol_RE_anion_cation.py", "drivers/gaussian-combined-anion_cation.py");
}

// ---- one job a state ---------------------------------------------------------------

struct SeparatedCase {
  int engine;
  void (Transport::*write)();
  const char* ext;
  Names jobs;  // of the two molecules, both carriers
  const char* neutral_driver;
  const char* charged_driver;
};

const SeparatedCase kSeparated[] = {
    {1,
     &Transport::write_RE_gaussian_mol_gjf_and_job_separated,
     "com",
     {"job_re-mol1-anion.pbs", "job_re-mol1-cation.pbs", "job_re-mol1-neutral.pbs", "job_re-mol2-anion.pbs",
      "job_re-mol2-cation.pbs", "job_re-mol2-neutral.pbs"},
     "drivers/gaussian-separated-neutral.py",
     "drivers/gaussian-separated-anion_cation.py"},
    {2,
     &Transport::write_RE_orca_mol_inp_and_job_seperated,
     "inp",
     {"job_re_mol1-anion.pbs", "job_re_mol1-cation.pbs", "job_re_mol1-neutral.pbs", "job_re_mol2-anion.pbs",
      "job_re_mol2-cation.pbs", "job_re_mol2-neutral.pbs"},
     "drivers/orca-neutral.py",
     "drivers/orca-anion_cation.py"},
    {3,
     &Transport::write_RE_qchem_mol_inp_and_job_seperated,
     "inp",
     {"job_re-mol1-anion.pbs", "job_re-mol1-cation.pbs", "job_re-mol1-neutral.pbs", "job_re-mol2-anion.pbs",
      "job_re-mol2-cation.pbs", "job_re-mol2-neutral.pbs"},
     "drivers/qchem-bdf-neutral.py",
     "drivers/qchem-bdf-anion_cation.py"},
    {4,
     &Transport::write_RE_bdf_mol_inp_and_job_seperated,
     "inp",
     {"job_re-mol1-anion.pbs", "job_re-mol1-cation.pbs", "job_re-mol1-neutral.pbs", "job_re-mol2-anion.pbs",
      "job_re-mol2-cation.pbs", "job_re-mol2-neutral.pbs"},
     "drivers/qchem-bdf-neutral.py",
     "drivers/qchem-bdf-anion_cation.py"},
};

TEST(ReFamilies, SeparatedFamiliesWriteOneJobAStateAndTheDriversAsWorkedOutByHand) {
  for (const SeparatedCase& c : kSeparated) {
    SCOPED_TRACE(c.engine);
    txtest::TempDir dir;
    Transport t;
    set_cell(t, c.engine);
    (t.*c.write)();
    EXPECT_EQ(files_in("RE"), inputs_of({1, 2}, {"anion", "cation", "neutral"}, c.ext));
    EXPECT_EQ(files_in("jobs"), c.jobs);
    EXPECT_EQ(files_in("scr"), kDrivers);
    expect_golden("scr/mol_RE_neutral.py", c.neutral_driver);
    expect_golden("scr/mol_RE_anion_cation.py", c.charged_driver);
    expect_scripts_pass_checks(kDrivers);
  }
}

TEST(ReFamilies, SeparatedJobScriptsCarryTheirStatePayloadInTheEngineFrame) {
  struct JobCase {
    int engine;
    void (Transport::*write)();
    const char* script;
    const char* golden;
  };
  const JobCase cases[] = {
      {2, &Transport::write_RE_orca_mol_inp_and_job_seperated, "jobs/job_re_mol2-cation.pbs",
       "jobs/job_re_mol2-cation.pbs"},
      {3, &Transport::write_RE_qchem_mol_inp_and_job_seperated, "jobs/job_re-mol2-anion.pbs",
       "jobs/job_re-mol2-anion.pbs"},
      {4, &Transport::write_RE_bdf_mol_inp_and_job_seperated, "jobs/job_re-mol1-neutral.pbs",
       "jobs/job_re-mol1-neutral-bdf.pbs"},
  };
  for (const JobCase& c : cases) {
    SCOPED_TRACE(c.script);
    txtest::TempDir dir;
    Transport t;
    set_cell(t, c.engine);
    (t.*c.write)();
    expect_golden(c.script, c.golden);
  }
}

TEST(ReFamilies, GaussianSeparatedStateJobHoldsOneStateOnly) {
  txtest::TempDir dir;
  Transport t;
  set_cell(t, 1);
  t.write_RE_gaussian_mol_gjf_and_job_separated();
  const std::string job = txtest::read_file("jobs/job_re-mol1-cation.pbs");
  EXPECT_NE(job.find("#PBS -o stdout-mol1-cation\n"), std::string::npos);
  EXPECT_NE(job.find("    g16 re-mol1-cation.com\n    formchk re-mol1-cation.chk\n"), std::string::npos);
  EXPECT_EQ(job.find("anion"), std::string::npos);
  EXPECT_NE(job.find("rm -f /work/run/RUN/running.re_mol1-cation\n"), std::string::npos);
}

// ---- carriers ----------------------------------------------------------------------

TEST(ReFamilies, ElectronWorkWritesNeutralAndAnionInputsAndStillTheChargedDriver) {
  for (const SeparatedCase& c : kSeparated) {
    SCOPED_TRACE(c.engine);
    txtest::TempDir dir;
    Transport t;
    set_cell(t, c.engine);
    t.chargetype = "e";
    (t.*c.write)();
    EXPECT_EQ(files_in("RE"), inputs_of({1, 2}, {"anion", "neutral"}, c.ext));
    EXPECT_EQ(files_in("scr"), kDrivers);
    const std::string charged = txtest::read_file("scr/mol_RE_anion_cation.py");
    EXPECT_EQ(charged.find("cation"), std::string::npos) << charged;
  }
  txtest::TempDir dir;
  Transport t;
  set_cell(t, 1);
  t.chargetype = "e";
  t.write_RE_gaussian_mol_gjf_and_job_separated();
  expect_golden("scr/mol_RE_anion_cation.py", "drivers/gaussian-separated-anion_cation-electrons.py");
}

TEST(ReFamilies, HoleWorkWritesNeutralAndCationInputsOnly) {
  txtest::TempDir dir;
  Transport t;
  set_cell(t, 2);
  t.chargetype = "h";
  t.write_RE_orca_mol_inp_and_job_seperated();
  EXPECT_EQ(files_in("RE"), inputs_of({1, 2}, {"cation", "neutral"}, "inp"));
  EXPECT_EQ(files_in("jobs"), (Names{"job_re_mol1-cation.pbs", "job_re_mol1-neutral.pbs", "job_re_mol2-cation.pbs",
                                     "job_re_mol2-neutral.pbs"}));
}

TEST(ReFamilies, CarrierIsTheFirstLetterInAnyCase) {
  const std::pair<const char*, Names> cases[] = {
      {"Electrons", {"anion", "neutral"}},
      {"HOLE", {"cation", "neutral"}},
      {"All", {"anion", "cation", "neutral"}},
      {"x", {"neutral"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.first);
    txtest::TempDir dir;
    Transport t;
    set_cell(t, 3);
    t.chargetype = c.first;
    t.write_RE_qchem_mol_inp_and_job_seperated();
    EXPECT_EQ(files_in("RE"), inputs_of({1, 2}, c.second, "inp"));
  }
}

TEST(ReFamilies, UnknownCarrierLeavesTheChargedDriverWithoutJobs) {
  txtest::TempDir dir;
  Transport t;
  set_cell(t, 4);
  t.chargetype = "x";
  t.write_RE_bdf_mol_inp_and_job_seperated();
  expect_golden("scr/mol_RE_anion_cation.py", "drivers/empty.py");
  EXPECT_EQ(retest::py_compile("scr/mol_RE_anion_cation.py"), 0);
}

// ---- schedulers and directories -----------------------------------------------------

TEST(ReFamilies, DriverUsesTheSubmitCommandAndExtensionOfTheScheduler) {
  txtest::TempDir dir;
  Transport t;
  set_cell(t, 3);
  t.job_sched_type = 2;
  t.write_RE_qchem_mol_inp_and_job_seperated();
  expect_golden("scr/mol_RE_neutral.py", "drivers/qchem-bdf-neutral-lsf.py");
  EXPECT_TRUE(txtest::path_exists("jobs/job_re-mol1-neutral.lsf"));
}

TEST(ReFamilies, ConfiguredDirectoriesHoldInputsScriptsAndDrivers) {
  txtest::TempDir dir;
  Transport t;
  set_cell(t, 1);
  t.job_scripts_REdir = "reorg";
  t.job_scripts_SCRdir = "scripts";
  t.job_scripts_JOBSdir = "batch";
  t.job_scripts_RUNdir = "markers";
  t.write_RE_gaussian_mol_gjf_and_job_separated();
  EXPECT_EQ(files_in("reorg"), kGaussianInputs);
  EXPECT_EQ(files_in("scripts"), kDrivers);
  const std::string driver = txtest::read_file("scripts/mol_RE_neutral.py");
  EXPECT_NE(driver.find("os.chdir(\"reorg\")\n"), std::string::npos) << driver;
  EXPECT_NE(driver.find("os.system(\"touch /work/run/markers/running.re_mol1-neutral\")\n"
                        "os.system(\"qsub ../batch/job_re-mol1-neutral.pbs\")\n"),
            std::string::npos)
      << driver;
}

// ---- unique runs ----------------------------------------------------------------------

TEST(ReFamilies, UniqueRunsWriteAndSubmitOnlyTheRepresentatives) {
  for (const retest::Family& c : kFamilies) {
    SCOPED_TRACE(c.engine);
    txtest::TempDir dir;
    Transport t;
    set_four_molecule_cell(t, c.engine);
    t.uc_mol_seq = new int[4]{1, 2, 3, 4};
    t.uc_mol_re_list = new int[4]();
    t.RE_check_unitcell_same_mols(false);
    ASSERT_EQ(t.uc_mol_re_count, 2);
    ASSERT_EQ(t.uc_mol_re_list[0], 1);
    ASSERT_EQ(t.uc_mol_re_list[1], 3);
    (t.*c.unique)();
    EXPECT_EQ(files_in("RE"), inputs_of({1, 3}, {"anion", "cation", "neutral"}, c.ext));
    EXPECT_EQ(submitted_molecules("scr/mol_RE_neutral.py"), (std::vector<int>{1, 3}));
    EXPECT_EQ(submitted_molecules("scr/mol_RE_anion_cation.py"),
              c.plain == &Transport::write_RE_gaussian_mol_gjf_and_job ? (std::vector<int>{1, 3})
                                                                       : (std::vector<int>{1, 3, 1, 3}));
    expect_scripts_pass_checks(kDrivers);
    // The representatives keep their own numbers and coordinates.
    const std::string mol3 = txtest::read_file(std::string("RE/re-mol3-neutral.") + c.ext);
    EXPECT_NE(mol3.find(c.engine == 4 ? "Cl    2.50000000" : "Cl    2.5000"), std::string::npos) << mol3;
  }
}

TEST(ReFamilies, PlainRunsWriteEveryMoleculeWhateverTheRepresentatives) {
  for (const retest::Family& c : kFamilies) {
    SCOPED_TRACE(c.engine);
    txtest::TempDir dir;
    Transport t;
    set_four_molecule_cell(t, c.engine);
    retest::set_re_list(t, {1, 3});
    (t.*c.plain)();
    EXPECT_EQ(files_in("RE"), inputs_of({1, 2, 3, 4}, {"anion", "cation", "neutral"}, c.ext));
    EXPECT_EQ(submitted_molecules("scr/mol_RE_neutral.py"), (std::vector<int>{1, 2, 3, 4}));
  }
}

TEST(ReFamilies, UniqueRunWithOneRepresentativeHasOneNeutralJob) {
  for (const retest::Family& c : kFamilies) {
    SCOPED_TRACE(c.engine);
    txtest::TempDir dir;
    Transport t;
    set_four_molecule_cell(t, c.engine);
    retest::set_re_list(t, {1});
    (t.*c.unique)();
    EXPECT_EQ(submitted_molecules("scr/mol_RE_neutral.py"), (std::vector<int>{1}));
    Names neutral_jobs;
    for (const std::string& j : files_in("jobs"))
      if (j.find("neutral") != std::string::npos) neutral_jobs.push_back(j);
    EXPECT_EQ(neutral_jobs.size(), 1u);
  }
}

// ---- failures --------------------------------------------------------------------------

TEST(ReFamilies, RepresentativeOutsideTheCellIsFatal) {
  txtest::TempDir dir;
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    set_cell(t, 2);
    retest::set_re_list(t, {1, 3});
    t.write_RE_orca_mol_inp_and_job_unique_seperated();
  });
  expect_fatal(r, 255, "transport",
               "write_RE_orca_mol_inp_and_job_unique_seperated: uc_mol_re_list entry 3 is outside 1..2\n");
  EXPECT_FALSE(txtest::path_exists("RE"));
}

TEST(ReFamilies, DriverThatCannotBeOpenedIsFatalWithStatusOne) {
  for (const SeparatedCase& c : kSeparated) {
    SCOPED_TRACE(c.engine);
    txtest::TempDir dir;
    const txtest::RunResult r = txtest::run_forked([&] {
      Transport t;
      set_cell(t, c.engine);
      t.job_scripts_SCRdir = "missing/scr";
      (t.*c.write)();
    });
    expect_fatal(r, 1, "transport", "Failed to open output file missing/scr/mol_RE_neutral.py\n");
    // Nothing is cleaned up: the inputs and job scripts written before stay.
    EXPECT_EQ(files_in("RE").size(), 6u);
  }
}

TEST(ReFamilies, InputThatCannotBeOpenedIsFatalWithStatusMinusOne) {
  txtest::TempDir dir;
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    set_cell(t, 1);
    t.job_scripts_REdir = "missing/RE";
    t.write_RE_gaussian_mol_gjf_and_job();
  });
  expect_fatal(r, 255, "fileio", "Failed to open output file missing/RE/re-mol1-neutral.com\n");
}

TEST(ReFamilies, DriverWriterRejectsAnUnknownScheduler) {
  txtest::TempDir dir;
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    retest::set_run(t);
    t.job_sched_type = 4;
    t.write_RE_driver_py("x.py", {}, false, stderr);
  });
  expect_fatal(r, 255, "transport", "Unknown job scheduling type!\n");
}

}  // namespace
