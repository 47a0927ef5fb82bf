// Jobscript fields as constructed, and the plain getters and setters.
#include <gtest/gtest.h>

#include "job_scripts.h"

TEST(JobscriptDefaults, FieldsAsConstructed) {
  Jobscript j;
  EXPECT_FALSE(j.job_verbose);
  EXPECT_EQ(j.job_sched_type, 0);
  EXPECT_EQ(j.qc_log_ext, "log");
  EXPECT_EQ(j.trans_int_file, "trans_int_files.dat");
  EXPECT_FALSE(j.job_moo_flag);
  EXPECT_EQ(j.reorg_outer_flag, 0);
  EXPECT_EQ(j.job_scripts_HLdir, "HL");
  EXPECT_EQ(j.job_scripts_REdir, "RE");
  EXPECT_EQ(j.job_scripts_RUNdir, "RUN");
  EXPECT_EQ(j.job_scripts_SCRdir, "scr");
  EXPECT_EQ(j.job_scripts_JOBSdir, "jobs");
  EXPECT_EQ(j.job_workdir, "");
  EXPECT_EQ(j.sched_type, "pbs");
  EXPECT_EQ(j.queue_name, "workq");
  EXPECT_EQ(j.scratch, "/tmp");
  const char* names[4] = {"pbs", "slurm", "lsf", "local"};
  const char* cmds[4] = {"qsub", "sbatch", "bsub < ", "sh"};
  for (int k = 0; k < 4; ++k) {
    EXPECT_EQ(j.job_sched_names[k], names[k]);
    EXPECT_EQ(j.job_script_exts[k], names[k]);
    EXPECT_EQ(j.job_submit_cmds[k], cmds[k]);
  }
  EXPECT_EQ(j.walltime_days, 0);
  EXPECT_EQ(j.walltime_hour, 160);
  EXPECT_EQ(j.walltime_min, 0);
  EXPECT_EQ(j.walltime_sec, 0);
  EXPECT_EQ(j.qc_exe_args, "");
  EXPECT_EQ(j.formchk_exe, "formchk");
  EXPECT_EQ(j.orca_2mkl_exe, "orca_2mkl");
  EXPECT_EQ(j.fchk2orb_exe, "tavix_fchk2orb.exe");
  EXPECT_EQ(j.module_tavix, "tavix/2022B-mpich2");
  EXPECT_TRUE(j.sched_job_array);
  EXPECT_EQ(j.job_spare_text, "");
}

TEST(JobscriptAccessors, GettersAndSetters) {
  Jobscript j;
  EXPECT_EQ(j.get_job_script_ext(), "pbs");
  j.job_sched_type = 1;
  EXPECT_EQ(j.get_job_script_ext(), "slurm");
  EXPECT_EQ(j.get_job_sched_type(), 1);
  j.qc_nodes = 2;
  j.qc_ppn = 28;
  EXPECT_EQ(j.get_run_nodes(), 2);
  EXPECT_EQ(j.get_run_ppn(), 28);
  j.set_job_moo_flag(true);
  EXPECT_TRUE(j.get_job_moo_flag());
  j.set_reorg_outer_flag(3);
  EXPECT_EQ(j.reorg_outer_flag, 3);
  j.set_job_scripts_HLdir("H");
  j.set_job_scripts_REdir("R");
  j.set_job_scripts_RUNdir("U");
  j.set_job_scripts_SCRdir("S");
  j.set_job_scripts_JOBSdir("J");
  EXPECT_EQ(j.job_scripts_HLdir, "H");
  EXPECT_EQ(j.job_scripts_REdir, "R");
  EXPECT_EQ(j.job_scripts_RUNdir, "U");
  EXPECT_EQ(j.job_scripts_SCRdir, "S");
  EXPECT_EQ(j.job_scripts_JOBSdir, "J");
  j.set_environment_module_gau_flag(true);
  j.set_environment_module_mpich2_gnu_flag(true);
  j.set_environment_module_tavix_flag(true);
  EXPECT_TRUE(j.module_qc_flag);
  EXPECT_TRUE(j.module_mpich2_flag);
  EXPECT_TRUE(j.module_tavix_flag);
}

TEST(JobscriptAccessorsDeathTest, ExtensionOfAnUnknownSchedulerIsFatal) {
  Jobscript j;
  j.job_sched_type = 7;
  EXPECT_EXIT(j.get_job_script_ext(), ::testing::ExitedWithCode(255), "Unknown job scheduling type!");
}
