// Every job-script writer on every scheduler against its expected script, byte for
// byte, and every script through `bash -n`. The values of the cases are listed in
// tests/data/golden/jobs/README.md.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "job_scripts.h"
#include "test_support.h"

namespace {

const char* const kSchedNames[4] = {"pbs", "slurm", "lsf", "local"};

const char* const kQcExe[4] = {"g16", "/opt/orca/orca", "qchem", "$BDFHOME/sbin/bdfdrv.py"};
enum Engine { gaussian, orca, qchem, bdf };

const int kHLList[3] = {2, 5, 11};
const int kTransintList[3] = {1, 4, 6};

const char* const kPayloadGaussianRE = "g16 re-mol1-neutral.com\nformchk re-mol1-neutral.chk\n\n";
const char* const kPayloadOrcaRE = "cd ${SCRDIR}\n/opt/orca/orca re-mol1-neutral.inp  > re-mol1-neutral.out\n\n";
const char* const kPayloadQchemRE = "qchem -nt 28 re-mol1-neutral.inp > re-mol1-neutral.out\n\n";
const char* const kPayloadBdfRE = "$BDFHOME/sbin/bdfdrv.py -r re-mol1-neutral.inp > re-mol1-neutral.out\n\n";
const char* const kPayloadMps =
    "tavix_log2mps.exe -inp re-mol1-neutral.log\ntavix_log2mps.exe -inp re-mol1-cation.log\n"
    "tavix_log2mps.exe -inp re-mol1-anion.log\n\n";

// The job object of every case on scheduler `sched`.
std::unique_ptr<Jobscript> make_job(int sched) {
  auto j = std::make_unique<Jobscript>();
  j->job_sched_type = sched;
  j->sched_type = kSchedNames[sched];
  j->job_workdir = "/home/user/run";
  j->scratch = "/scratch/user";
  j->queue_name = "X28Cv4";
  // 160:05:09, split into days for Slurm as the control reader does.
  j->walltime_days = sched == Jobscript::sched_slurm ? 6 : 0;
  j->walltime_hours = sched == Jobscript::sched_slurm ? 16 : 160;
  j->walltime_minutes = 5;
  j->walltime_seconds = 9;
  j->module_qc_flag = true;
  j->module_tavix_flag = true;
  j->module_mpich2_flag = true;
  return j;
}

void with_nodelist(Jobscript& j) { j.nodelist = j.job_sched_type == Jobscript::sched_lsf ? "n01 n02" : "n01,n02"; }

struct GoldenCase {
  std::string name;    // expected file <sched>/<name>.<ext>
  std::string script;  // the script the writer makes, without extension
  std::function<void(Jobscript&)> write;
};

void hl_plain(Jobscript& j, Engine e) {
  j.qc_exe = kQcExe[e];
  const char* a[] = {"job_uc_mol-3", "uc_mol-3", "uc_mol-3", "RUN/running.HL_uc_mol-3"};
  switch (e) {
    case gaussian:
      j.write_gaussian_HL_job(a[0], 2, 28, a[1], a[2], a[3]);
      break;
    case orca:
      j.write_orca_HL_job(a[0], 2, 28, a[1], a[2], a[3]);
      break;
    case qchem:
      j.write_qchem_HL_job(a[0], 2, 28, a[1], a[2], a[3]);
      break;
    case bdf:
      j.write_bdf_HL_job(a[0], 2, 28, a[1], a[2], a[3]);
      break;
  }
}

void hl_array(Jobscript& j, Engine e, const int* list) {
  j.qc_exe = kQcExe[e];
  if (list != nullptr) {
    j.job_slot_limit = 2;
    with_nodelist(j);
  }
  const char* a[] = {"job_uc_mol", "uc_mol", "uc_mol", "RUN/running.HL_uc_mol"};
  switch (e) {
    case gaussian:
      j.write_gaussian_HL_job_array(a[0], 2, 28, a[1], a[2], a[3], 3, list);
      break;
    case orca:
      j.write_orca_HL_job_array(a[0], 2, 28, a[1], a[2], a[3], 3, list);
      break;
    case qchem:
      j.write_qchem_HL_job_array(a[0], 2, 28, a[1], a[2], a[3], 3, list);
      break;
    case bdf:
      j.write_bdf_HL_job_array(a[0], 2, 28, a[1], a[2], a[3], 3, list);
      break;
  }
}

std::vector<GoldenCase> golden_cases() {
  std::vector<GoldenCase> cases;
  const char* engine_names[4] = {"gaussian", "orca", "qchem", "bdf"};
  for (int e = gaussian; e <= bdf; ++e) {
    const Engine engine = static_cast<Engine>(e);
    const std::string hl = std::string("hl_") + engine_names[e];
    cases.push_back({hl, "jobs/job_uc_mol-3", [engine](Jobscript& j) { hl_plain(j, engine); }});
    cases.push_back({hl + "_array", "jobs/job_uc_mol", [engine](Jobscript& j) { hl_array(j, engine, nullptr); }});
    cases.push_back({hl + "_array_list", "jobs/job_uc_mol", [engine](Jobscript& j) { hl_array(j, engine, kHLList); }});
  }
  cases.push_back({"hl_gaussian_moo_nodelist", "jobs/job_uc_mol-3", [](Jobscript& j) {
                     j.job_moo_flag = true;
                     with_nodelist(j);
                     hl_plain(j, gaussian);
                   }});
  cases.push_back({"re_gaussian", "jobs/job_re-mol1_neutral", [](Jobscript& j) {
                     j.write_gaussian_RE_job("job_re-mol1_neutral", 2, 28, kPayloadGaussianRE, "mol1_neutral",
                                             "RUN/running.re_mol1_neutral");
                   }});
  cases.push_back({"re_orca", "jobs/job_re_mol1-neutral", [](Jobscript& j) {
                     j.write_orca_RE_job("job_re_mol1-neutral", 2, 28, "mol1-neutral", "mol1-neutral",
                                         "RUN/running.RE-mol1-neutral", kPayloadOrcaRE);
                   }});
  cases.push_back({"re_qchem", "jobs/job_re-mol1-neutral", [](Jobscript& j) {
                     j.write_qchem_RE_job("job_re-mol1-neutral", 2, 28, "mol1-neutral", "mol1-neutral",
                                          "RUN/running.re-mol1-neutral", kPayloadQchemRE);
                   }});
  cases.push_back({"re_bdf", "jobs/job_re-mol1-neutral", [](Jobscript& j) {
                     j.write_bdf_RE_job("job_re-mol1-neutral", 2, 28, "mol1-neutral", "mol1-neutral",
                                        "RUN/running.re-mol1-neutral", kPayloadBdfRE);
                   }});
  cases.push_back({"re_mps", "jobs/job_re-mps", [](Jobscript& j) {
                     j.write_RE_mps_job("job_re-mps", 2, 28, "not used", "mps", "RUN/running.re_mps", kPayloadMps);
                   }});
  cases.push_back({"mc", "run_mc", [](Jobscript& j) {
                     j.write_MC_job("run_mc", 1, 28, "tavix_mc_OMP.exe -simu0 0 -nsimu 2000", "MC-quantum_elec",
                                    "RUN/running.MC-quantum_elec");
                   }});
  cases.push_back({"me", "run_me", [](Jobscript& j) {
                     j.write_ME_job("run_me", 1, 28, "tavix_meq.exe -v", "elec", "RUN/running.me_e");
                   }});
  cases.push_back({"calc_mob", "get_mob", [](Jobscript& j) {
                     j.write_calc_mob_job("get_mob", 1, 28, "mob", "RUN/running.MC-quantum_elec_getmob",
                                          "tavix_mob_OMP.exe");
                   }});
  cases.push_back({"calc_getRE", "get_re", [](Jobscript& j) {
                     j.write_calc_getRE_job(
                         "get_re", 1, 28, "get_re_int_ener", "RUN/running.get_re_int_ener",
                         "cd data\ntavix_getEinternal.exe -batch SE_einternal_files.dat -neighbor -qcflag 1");
                   }});
  cases.push_back({"calc_siteEner", "get_site_ener", [](Jobscript& j) {
                     with_nodelist(j);
                     j.write_calc_siteEner_job("get_site_ener", 1, 28, "get_site_ener", "RUN/running.get_site_ener",
                                               "tavix_siteenergy.exe", "data");
                   }});
  cases.push_back({"calc_transint", "job_transint", [](Jobscript& j) {
                     j.write_calc_transint_job("job_transint", 1, 28, "transint", "RUN/running.run_transint",
                                               "tavix_transferintegral.exe -batch trans_int_files.dat", "data");
                   }});
  cases.push_back({"calc_transint_array", "job_transint_array", [](Jobscript& j) {
                     j.write_calc_transint_job_array("job_transint_array", 1, 28, "transint", "RUN/running.transint", 3,
                                                     nullptr, "tavix_transferintegral.exe", "data");
                   }});
  cases.push_back({"calc_transint_array_moo", "job_transint_array", [](Jobscript& j) {
                     j.job_moo_flag = true;
                     j.job_slot_limit = 2;
                     with_nodelist(j);
                     j.write_calc_transint_job_array("job_transint_array", 1, 28, "transint", "RUN/running.transint", 3,
                                                     kTransintList, "tavix_overlap.exe", "data");
                   }});
  return cases;
}

struct GoldenParam {
  int sched;
  GoldenCase c;
};

std::vector<GoldenParam> golden_params() {
  std::vector<GoldenParam> params;
  for (int s = 0; s < 4; ++s)
    for (const GoldenCase& c : golden_cases()) params.push_back({s, c});
  return params;
}

// Names the case in failure messages instead of a dump of its bytes.
void PrintTo(const GoldenParam& p, std::ostream* os) { *os << kSchedNames[p.sched] << "/" << p.c.name; }

class JobGolden : public ::testing::TestWithParam<GoldenParam> {};

TEST_P(JobGolden, ScriptMatchesTheExpectedTextAndPassesBashSyntaxCheck) {
  const GoldenParam& p = GetParam();
  txtest::TempDir dir;
  std::unique_ptr<Jobscript> job = make_job(p.sched);
  p.c.write(*job);
  const std::string ext = kSchedNames[p.sched];
  const std::string script = p.c.script + "." + ext;
  ASSERT_TRUE(txtest::path_exists(script)) << script;
  const std::string expected = txtest::read_file(txtest::data_path("golden/jobs/" + ext + "/" + p.c.name + "." + ext));
  ASSERT_FALSE(expected.empty());
  EXPECT_EQ(txtest::read_file(script), expected);
  // LSF scripts have no interpreter line; bash checks them all the same.
  txtest::RunResult r = txtest::run_command("bash -n '" + script + "'");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err, "");
}

INSTANTIATE_TEST_SUITE_P(AllKindsAllSchedulers, JobGolden, ::testing::ValuesIn(golden_params()),
                         [](const ::testing::TestParamInfo<GoldenParam>& info) {
                           return std::string(kSchedNames[info.param.sched]) + "_" + info.param.c.name;
                         });

}  // namespace
