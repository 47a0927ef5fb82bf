// The multipole job of the Gaussian route, its driver, when the families write it,
// and the configuration files of the conversion and polarisation tools.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "re_test_support.h"

namespace {

using retest::expect_fatal;
using retest::expect_golden;
using retest::files_in;
using retest::Names;
using retest::set_cell;

TEST(ReMultipole, JobConvertsEveryStateOfEveryMoleculeAndHasItsOwnDriver) {
  txtest::TempDir dir;
  Transport t;
  set_cell(t, 1);
  t.chargetype = "e";  // the conversions do not follow the carrier
  t.write_RE_gaussian_mps_job({1, 2});
  expect_golden("jobs/job_re-mps.pbs", "jobs/job_re-mps.pbs");
  expect_golden("scr/mol_RE_mps.py", "drivers/mps.py");
  EXPECT_EQ(retest::bash_n("jobs/job_re-mps.pbs"), 0);
  EXPECT_EQ(retest::py_compile("scr/mol_RE_mps.py"), 0);
}

TEST(ReMultipole, GaussianFamiliesWriteTheJobForDielectricOuterSphereOrSiteEnergies) {
  struct Case {
    int reorg_outer;
    int site_energy;
    bool expected;
  };
  const Case cases[] = {{3, 0, true}, {0, 1, true}, {3, 1, true}, {0, 0, false}, {1, 0, false}, {2, 0, false}};
  for (auto write :
       {&Transport::write_RE_gaussian_mol_gjf_and_job, &Transport::write_RE_gaussian_mol_gjf_and_job_separated}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(c.reorg_outer * 10 + c.site_energy);
      txtest::TempDir dir;
      Transport t;
      set_cell(t, 1);
      t.reorg_outer_flag = c.reorg_outer;
      t.lat_site_energy = c.site_energy;
      (t.*write)();
      EXPECT_EQ(txtest::path_exists("jobs/job_re-mps.pbs"), c.expected);
      EXPECT_EQ(txtest::path_exists("scr/mol_RE_mps.py"), c.expected);
      if (c.expected) expect_golden("scr/mol_RE_mps.py", "drivers/mps.py");
    }
  }
}

TEST(ReMultipole, UniqueRunConvertsTheRepresentativesOnly) {
  txtest::TempDir dir;
  Transport t;
  set_cell(t, 1);
  retest::set_re_list(t, {2});
  t.reorg_outer_flag = 3;
  t.write_RE_gaussian_mol_gjf_and_job_unique();
  const std::string job = txtest::read_file("jobs/job_re-mps.pbs");
  EXPECT_NE(job.find("cd ${DataDir}\ntavix_log2mps.exe -inp re-mol2-neutral.log\n"
                     "tavix_log2mps.exe -inp re-mol2-cation.log\ntavix_log2mps.exe -inp re-mol2-anion.log\n\n\n\n"
                     "rm -f /work/run/RUN/running.re_mps\n"),
            std::string::npos)
      << job;
  EXPECT_EQ(job.find("mol1"), std::string::npos);
}

TEST(ReMultipole, OtherEnginesWriteNoMultipoleJob) {
  const std::pair<int, void (Transport::*)()> engines[] = {
      {2, &Transport::write_RE_orca_mol_inp_and_job_seperated},
      {3, &Transport::write_RE_qchem_mol_inp_and_job_seperated},
      {4, &Transport::write_RE_bdf_mol_inp_and_job_seperated},
  };
  for (const auto& e : engines) {
    txtest::TempDir dir;
    Transport t;
    set_cell(t, e.first);
    t.reorg_outer_flag = 3;
    t.lat_site_energy = 1;
    (t.*e.second)();
    EXPECT_FALSE(txtest::path_exists("scr/mol_RE_mps.py"));
    for (const std::string& j : files_in("jobs")) EXPECT_EQ(j.find("mps"), std::string::npos) << j;
  }
}

// Deliberately on standard output, unlike every other driver's failure.
TEST(ReMultipole, DriverThatCannotBeOpenedReportsOnStandardOutputWithStatusOne) {
  txtest::TempDir dir;
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    set_cell(t, 1);
    t.job_scripts_SCRdir = "missing/scr";
    t.write_RE_gaussian_mps_job({1, 2});
  });
  expect_fatal(r, 1, "transport", "Failed to open output file missing/scr/mol_RE_mps.py\n", true);
  EXPECT_TRUE(txtest::path_exists("jobs/job_re-mps.pbs"));
}

// ---- configuration files ------------------------------------------------------------

TEST(ReMultipole, Log2mpsConfigurationNamesTheOutputAndTheMultipoleFile) {
  txtest::TempDir dir;
  Transport t;
  set_cell(t, 1);
  ASSERT_EQ(txtest::run_command("mkdir RE").status, 0);
  t.write_RE_log2mps_xml_file_one(0);
  expect_golden("RE/re-mol1-neutral_log2mps.xml", "multipole/re-mol1-neutral_log2mps.xml");
  t.write_RE_log2mps_xml_file_one(1, "cation");
  EXPECT_EQ(txtest::read_file("RE/re-mol2-cation_log2mps.xml"),
            "<options>\n    <log2mps>\n        <package>gaussian</package>\n"
            "        <logfile>re-mol2-cation.log</logfile>\n        <mpsfile>re-mol2-cation.mps</mpsfile>\n"
            "    </log2mps>\n</options>\n");
}

TEST(ReMultipole, MolpolConfigurationNamesInputOutputAndPolarisationFiles) {
  txtest::TempDir dir;
  Transport t;
  set_cell(t, 1);
  ASSERT_EQ(txtest::run_command("mkdir RE").status, 0);
  t.write_RE_molpol_xml_file_one(1, "cation");
  expect_golden("RE/re-mol2-cation_molpol.xml", "multipole/re-mol2-cation_molpol.xml");
  t.write_RE_molpol_xml_file_one(0);
  EXPECT_TRUE(txtest::path_exists("RE/re-mol1-neutral_molpol.xml"));
}

TEST(ReMultipole, ConfigurationFileThatCannotBeOpenedIsFatalWithStatusMinusOne) {
  txtest::TempDir dir;
  for (bool molpol : {false, true}) {
    const txtest::RunResult r = txtest::run_forked([&] {
      Transport t;
      set_cell(t, 1);
      t.job_scripts_REdir = "missing";
      if (molpol)
        t.write_RE_molpol_xml_file_one(0);
      else
        t.write_RE_log2mps_xml_file_one(0);
    });
    expect_fatal(r, 255, "transport",
                 std::string("Failed to open output file missing/re-mol1-neutral_") + (molpol ? "molpol" : "log2mps") +
                     ".xml\n");
  }
}

}  // namespace
