// The parameter object: constructed values, read defaults, environment layer and
// the engine setter.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tavix_output.h"

namespace {

// Sets or clears environment variables for the length of one test.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : name_(name) {
    const char* old = std::getenv(name);
    had_ = old != nullptr;
    if (had_) old_ = old;
    if (value)
      setenv(name, value, 1);
    else
      unsetenv(name);
  }
  ~ScopedEnv() {
    if (had_)
      setenv(name_.c_str(), old_.c_str(), 1);
    else
      unsetenv(name_.c_str());
  }

 private:
  std::string name_;
  std::string old_;
  bool had_ = false;
};

const char* const kEnvNames[] = {"TAVIX_JOB_SCHED",  "TAVIX_JOB_QUEUE",    "TAVIX_QC_EXE",
                                 "TAVIX_QC_NODES",   "TAVIX_QC_PPN",       "TAVIX_MODULE_QC",
                                 "TAVIX_MODULE_TAVIX", "TAVIX_MODULE_MPICH2"};

class CleanEnv : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* n : kEnvNames) unsetenv(n);
  }
};

}  // namespace

TEST(ConstructedValues, QcMethodKeepsTheDigitOneSpellingAndTempIsOne) {
  TavixDataOutput t;
  EXPECT_EQ(t.qc_method, "b31yp");
  EXPECT_DOUBLE_EQ(t.temp, 1.0);
}

TEST(ConstructedValues, WorkflowSwitches) {
  TavixInp p;
  EXPECT_EQ(p.do_transport_prepare, 1);
  EXPECT_EQ(p.do_transport_submit_HL_job, 1);
  EXPECT_EQ(p.do_transport_submit_RE_job, 1);
  EXPECT_EQ(p.do_transport_get_transferintegral, 1);
  EXPECT_EQ(p.do_transport_get_re_evc, 1);
  EXPECT_EQ(p.do_transport_run_MC, 1);
  EXPECT_EQ(p.do_transport_run_MC_temp, 0);
  EXPECT_EQ(p.do_transport_get_mob_MC, 1);
  EXPECT_EQ(p.do_transport_get_mob_MC_temp, 0);
  EXPECT_EQ(p.do_transport_run_ME, 0);
  EXPECT_EQ(p.do_transport_run_ME_temp, 0);
  EXPECT_EQ(p.do_transport_get_mob_ME, 0);
  EXPECT_EQ(p.do_transport_get_mob_ME_temp, 0);
  EXPECT_EQ(p.do_transport_gather_tavix_data, 1);
}

TEST(ConstructedValues, TavixInpParameters) {
  TavixInp p;
  EXPECT_EQ(p.inp_line_count, 0);
  EXPECT_EQ(p.inp_lines, nullptr);
  EXPECT_FALSE(p.inp_read);
  EXPECT_EQ(p.compute_engine, 1);
  EXPECT_EQ(p.qc_basis, "b3lyp 6-31g*");
  EXPECT_EQ(p.qc_basis_re, "b3lyp 6-31g*");
  EXPECT_EQ(p.qc_inp_append, "");
  EXPECT_EQ(p.qc_memory, 8192);
  EXPECT_EQ(p.ratetype, "");
  EXPECT_EQ(p.chargetype, "");
  EXPECT_EQ(p.evc_type, "");
  EXPECT_EQ(p.HL_unique_mol, 1);
  EXPECT_EQ(p.RE_unique_mol, 1);
  EXPECT_DOUBLE_EQ(p.HL_unique_ctrl_ratio, 0.05);
  EXPECT_EQ(p.eckart_mirror, 0);
  EXPECT_FALSE(p.appE_flag);
  EXPECT_DOUBLE_EQ(p.app_elec_F[0], 0.0);
  EXPECT_DOUBLE_EQ(p.app_elec_F[1], 0.0);
  EXPECT_DOUBLE_EQ(p.app_elec_F[2], 0.0);
  EXPECT_EQ(p.reorg_outer_flag, 0);
  EXPECT_EQ(p.reorg_outer_method, "");
  EXPECT_TRUE(p.reorg_outer_radii.empty());
  EXPECT_FALSE(p.use_moo);
  EXPECT_FALSE(p.HOMOLUMO_dynamic_disorder);
  EXPECT_FALSE(p.V_dynamic_disorder);
  EXPECT_FALSE(p.read_neighbor_dat);
  EXPECT_EQ(p.tavix_dat_file, "");
  EXPECT_EQ(p.data_mol_output_level, 2);
  EXPECT_EQ(p.eigval_output_flag, 0);
  EXPECT_EQ(p.oniom_output_flag, 0);
  EXPECT_EQ(p.oniom_nlayers, 2);
  EXPECT_DOUBLE_EQ(p.oniom_com_cutoff, 50.0);
  EXPECT_EQ(p.qc_es_opt, "TD");
  EXPECT_EQ(p.qc_gs_tddft, "TD");
  EXPECT_EQ(p.qc_es_mult, 1);
  EXPECT_EQ(p.qc_es_tddft, "TD(triplet)");
}

TEST(ConstructedValues, FileIOParameters) {
  TavixInp p;
  EXPECT_EQ(p.data_dir, "data");
  EXPECT_FALSE(p.RE_use_neutral_chk);
  EXPECT_TRUE(p.RE_calc_lambda_4P);
  EXPECT_DOUBLE_EQ(p.bond_dis_scale, 1.15);
  EXPECT_TRUE(p.lumo_adjustment.empty());
  EXPECT_TRUE(p.homo_adjustment.empty());
  EXPECT_FALSE(p.use_evc_dint);
  EXPECT_EQ(p.thinfilm_flag, 0);
  EXPECT_EQ(p.emultipole_induce, 1);
  EXPECT_DOUBLE_EQ(p.emultipole_cutoff, 4.0);
  EXPECT_DOUBLE_EQ(p.emultipole_aDamp, 0.39);
  EXPECT_TRUE(p.emultipole_scale1.empty());
  EXPECT_DOUBLE_EQ(p.emultipole_wSOR_N, 0.75);
  EXPECT_DOUBLE_EQ(p.emultipole_wSOR_C, 0.75);
  EXPECT_EQ(p.emultipole_maxIter, 512);
  EXPECT_DOUBLE_EQ(p.emultipole_epsTol, 0.001);
}

TEST(ConstructedValues, JobscriptParameters) {
  TavixInp p;
  EXPECT_EQ(p.mater_name, "");
  EXPECT_EQ(p.sched_type, "pbs");
  EXPECT_EQ(p.queue_name, "workq");
  EXPECT_EQ(p.scratch, "/tmp");
  EXPECT_EQ(p.walltime_days, 0);
  EXPECT_EQ(p.walltime_hours, 160);
  EXPECT_EQ(p.walltime_minutes, 0);
  EXPECT_EQ(p.walltime_seconds, 0);
  EXPECT_FALSE(p.module_qc_flag);
  EXPECT_EQ(p.module_qc, "gaussian/g16.c01-avx2");
  EXPECT_EQ(p.qc_exe, "g16");
  EXPECT_EQ(p.qc_nodes, 1);
  EXPECT_EQ(p.qc_ppn, 8);
  EXPECT_EQ(p.nodelist, "");
  EXPECT_EQ(p.job_slot_limit, 0);
  EXPECT_FALSE(p.module_mpich2_flag);
  EXPECT_EQ(p.module_mpich2, "mpich2/1.5-gnu-8.5.0");
  EXPECT_FALSE(p.module_tavix_flag);
  EXPECT_EQ(p.module_tavix, "tavix/2022B-mpich2");
  EXPECT_TRUE(p.sched_job_array);
}

TEST(ReadDefaults, OverwriteTheirSubset) {
  TavixInp p;
  p.set_varables_default();
  EXPECT_EQ(p.qc_method, "b3lyp");
  EXPECT_DOUBLE_EQ(p.temp, 300.0);
  EXPECT_EQ(p.qc_basis, "b3lyp 6-31g*");
  EXPECT_EQ(p.qc_basis_re, "b3lyp 6-31g*");
  EXPECT_EQ(p.qc_memory, 8192);
  EXPECT_EQ(p.ratetype, "quantum");
  EXPECT_EQ(p.chargetype, "a");
  EXPECT_DOUBLE_EQ(p.start_temp, 200.0);
  EXPECT_DOUBLE_EQ(p.end_temp, 300.0);
  EXPECT_DOUBLE_EQ(p.delta_temp, 50.0);
  EXPECT_EQ(p.evc_type, "cart");
  EXPECT_DOUBLE_EQ(p.lat_cutoff, 4.0);
  EXPECT_DOUBLE_EQ(p.delta_angle, 10.0);
  EXPECT_DOUBLE_EQ(p.maxt, 10000.0);
  EXPECT_EQ(p.sta, 1);
  EXPECT_EQ(p.nsimu, 2000);
  EXPECT_DOUBLE_EQ(p.tsimu, 1000.0);
  EXPECT_DOUBLE_EQ(p.tsnap, 5.0);
  EXPECT_DOUBLE_EQ(p.tstep, 1.0);
  EXPECT_EQ(p.iterlimit, 100);
  EXPECT_EQ(p.nevery_out, 10);
  EXPECT_EQ(p.nei_scell[0], 3);
  EXPECT_EQ(p.nei_scell[1], 3);
  EXPECT_EQ(p.nei_scell[2], 3);
  EXPECT_EQ(p.lat_site_energy, 0);
  EXPECT_EQ(p.eckart_mirror, 0);
  EXPECT_EQ(p.mob_output_level, 2);
  EXPECT_EQ(p.data_mol_output_level, 2);
  EXPECT_DOUBLE_EQ(p.vector_a[0], 8.098);
  EXPECT_DOUBLE_EQ(p.vector_b[1], 5.953);
  EXPECT_DOUBLE_EQ(p.vector_c[0], -4.888095);
  EXPECT_DOUBLE_EQ(p.vector_c[2], 7.138882);
  EXPECT_EQ(p.super_cell[0], 5);
  EXPECT_EQ(p.super_cell[1], 5);
  EXPECT_EQ(p.super_cell[2], 5);
  EXPECT_EQ(p.nmols_uc, 0);
  EXPECT_EQ(p.sched_type, "slurm");
  EXPECT_EQ(p.queue_name, "X28Cv4");
  EXPECT_EQ(p.qc_exe, "g16");
  EXPECT_EQ(p.qc_nodes, 1);
  EXPECT_EQ(p.qc_ppn, 8);
}

TEST(ReadDefaults, LeaveFieldsWithoutAReadDefaultAlone) {
  TavixInp p;
  p.do_transport_run_ME = 1;
  p.compute_engine = 2;
  p.thinfilm_flag = 1;
  p.reorg_outer_flag = 2;
  p.homo_adjustment = {1, 2};
  p.emultipole_scale1 = {0.5};
  p.scratch = "/scratch";
  p.walltime_hours = 12;
  p.set_varables_default();
  EXPECT_EQ(p.do_transport_run_ME, 1);
  EXPECT_EQ(p.compute_engine, 2);
  EXPECT_EQ(p.thinfilm_flag, 1);
  EXPECT_EQ(p.reorg_outer_flag, 2);
  EXPECT_EQ(p.homo_adjustment.size(), 2u);
  EXPECT_EQ(p.emultipole_scale1.size(), 1u);
  EXPECT_EQ(p.scratch, "/scratch");
  EXPECT_EQ(p.walltime_hours, 12);
}

TEST(SetComputeEngine, SetsTheDefaultExecutableOfEachEngine) {
  TavixInp p;
  p.set_compute_engine(2);
  EXPECT_EQ(p.get_compute_engine(), 2);
  EXPECT_EQ(p.qc_exe, "fullpath/orca");
  p.set_compute_engine(3);
  EXPECT_EQ(p.qc_exe, "qchem");
  p.set_compute_engine(7);
  EXPECT_EQ(p.get_compute_engine(), 7);
  EXPECT_EQ(p.qc_exe, "g16");
  p.set_compute_engine(1);
  EXPECT_EQ(p.qc_exe, "g16");
  EXPECT_EQ(p.qc_basis, "b3lyp 6-31g*");
}

TEST(SetComputeEngine, BdfChangesTheBasisTextsForGood) {
  TavixInp p;
  p.set_compute_engine(4);
  EXPECT_EQ(p.qc_exe, "$BDFHOME/sbin/bdfdrv.py");
  EXPECT_EQ(p.qc_basis, "6-31g(d,p)");
  EXPECT_EQ(p.qc_basis_re, "6-31g(d,p)");
  p.set_compute_engine(1);
  EXPECT_EQ(p.qc_exe, "g16");
  EXPECT_EQ(p.qc_basis, "6-31g(d,p)");
  EXPECT_EQ(p.qc_basis_re, "6-31g(d,p)");
  p.set_compute_engine(2);
  EXPECT_EQ(p.qc_basis, "6-31g(d,p)");
}

TEST(Getters, ReturnTheirFields) {
  TavixInp p;
  p.appE_flag = true;
  p.read_neighbor_dat = true;
  p.use_moo = true;
  EXPECT_TRUE(p.get_appE_flag());
  EXPECT_TRUE(p.get_read_neighbor_flag());
  EXPECT_TRUE(p.get_moo_flag());
}

TEST_F(CleanEnv, EnvironmentOverridesTheReadDefault) {
  ScopedEnv ppn("TAVIX_QC_PPN", "24");
  TavixInp p;
  p.set_varables_default();
  p.get_environment_variables();
  EXPECT_EQ(p.qc_ppn, 24);
}

TEST_F(CleanEnv, UnsetVariablesLeaveParametersAlone) {
  TavixInp p;
  p.set_varables_default();
  p.get_environment_variables();
  EXPECT_EQ(p.sched_type, "slurm");
  EXPECT_EQ(p.queue_name, "X28Cv4");
  EXPECT_EQ(p.qc_exe, "g16");
  EXPECT_EQ(p.qc_nodes, 1);
  EXPECT_EQ(p.qc_ppn, 8);
  EXPECT_FALSE(p.module_qc_flag);
  EXPECT_FALSE(p.module_tavix_flag);
  EXPECT_FALSE(p.module_mpich2_flag);
}

TEST_F(CleanEnv, EveryVariableReachesItsParameter) {
  ScopedEnv a("TAVIX_JOB_SCHED", "lsf");
  ScopedEnv b("TAVIX_JOB_QUEUE", "short");
  ScopedEnv c("TAVIX_QC_EXE", "/opt/g16/g16");
  ScopedEnv d("TAVIX_QC_NODES", "3");
  ScopedEnv e("TAVIX_QC_PPN", "16");
  ScopedEnv f("TAVIX_MODULE_TAVIX", "tavix/test");
  ScopedEnv g("TAVIX_MODULE_MPICH2", "mpich/4");
  TavixInp p;
  p.get_environment_variables();
  EXPECT_EQ(p.sched_type, "lsf");
  EXPECT_EQ(p.queue_name, "short");
  EXPECT_EQ(p.qc_exe, "/opt/g16/g16");
  EXPECT_EQ(p.qc_nodes, 3);
  EXPECT_EQ(p.qc_ppn, 16);
  EXPECT_EQ(p.module_tavix, "tavix/test");
  EXPECT_TRUE(p.module_tavix_flag);
  EXPECT_EQ(p.module_mpich2, "mpich/4");
  EXPECT_TRUE(p.module_mpich2_flag);
  EXPECT_FALSE(p.module_qc_flag);
}

TEST_F(CleanEnv, ModuleQcAlsoRaisesItsFlag) {
  ScopedEnv m("TAVIX_MODULE_QC", "gaussian/g09");
  TavixInp p;
  p.get_environment_variables();
  EXPECT_EQ(p.module_qc, "gaussian/g09");
  EXPECT_TRUE(p.module_qc_flag);
}

TEST_F(CleanEnv, EmptyValuesGiveEmptyTextOrZero) {
  ScopedEnv q("TAVIX_JOB_QUEUE", "");
  ScopedEnv n("TAVIX_QC_NODES", "");
  TavixInp p;
  p.get_environment_variables();
  EXPECT_EQ(p.queue_name, "");
  EXPECT_EQ(p.qc_nodes, 0);
}

TEST_F(CleanEnv, NumbersAreConvertedWithoutACheck) {
  ScopedEnv n("TAVIX_QC_NODES", "abc");
  ScopedEnv ppn("TAVIX_QC_PPN", "12cores");
  TavixInp p;
  p.get_environment_variables();
  EXPECT_EQ(p.qc_nodes, 0);
  EXPECT_EQ(p.qc_ppn, 12);
}
