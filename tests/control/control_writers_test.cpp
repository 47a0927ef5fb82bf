// The control-file writers and the older flat reader: texts worked out by hand,
// round trips through the readers, and the flat form's rules.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tavix_output.h"
#include "test_support.h"

using txtest::data_path;
using txtest::mask_line_numbers;
using txtest::read_file;
using txtest::run_forked;
using txtest::TempDir;
using txtest::write_file;

namespace {

std::string golden(const std::string& name) { return read_file(data_path("golden/control/" + name)); }

class ControlWriters : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* n : {"TAVIX_JOB_SCHED", "TAVIX_JOB_QUEUE", "TAVIX_QC_EXE", "TAVIX_QC_NODES", "TAVIX_QC_PPN",
                          "TAVIX_MODULE_QC", "TAVIX_MODULE_TAVIX", "TAVIX_MODULE_MPICH2"})
      unsetenv(n);
  }
  void TearDown() override { unsetenv("TAVIX_QC_PPN"); }
  TempDir dir_;
};

// Every key set away from its default, for the round trips.
const char* const kRichControl =
    "&transport\n"
    "  do_transport_prepare = 0\n  do_transport_submit_HL_job = 0\n  do_transport_submit_RE_job = 0\n"
    "  do_transport_get_transferintegral = 0\n  do_transport_get_re_evc = 0\n  do_transport_run_MC = 0\n"
    "  do_transport_get_mob_MC = 0\n  do_transport_run_MC_temp = 1\n  do_transport_get_mob_MC_temp = 1\n"
    "  do_transport_run_ME = 1\n  do_transport_get_mob_ME = 1\n  do_transport_run_ME_temp = 1\n"
    "  do_transport_get_mob_ME_temp = 1\n  do_transport_gather_tavix_data = 0\n"
    "  module_tavix = tavix/2023A\n  module_mpich2 = mpich/4.1\n  module_qc = gaussian/g09\n"
    "  compute_engine = 1\n  qc_exe = g09\n  qc_memory = 4000\n  qc_nodes = 2\n  qc_ppn = 16\n"
    "  qc_method = pbe0\n  qc_basis = pbe0 6-311g**\n  qc_basis_re = pbe0 def2-svp\n"
    "  use_moo = 1\n  queue_name = long\n  sched_type = pbs\n  sched_job_array = 0\n"
    "  nodelist = node1,node2\n  job_slot_limit = 10\n  walltime_hour = 30\n"
    "  start_temp = 100\n  end_temp = 400\n  delta_temp = 25\n  chargetype = e\n  evc_type = int\n"
    "  use_evc_dint = 1\n  vector_a = 10.0 0.5 0.25\n  vector_b = 0.1 11.0 0.2\n  vector_c = -1.0 0.3 12.0\n"
    "  lat_cutoff = 5.5\n  nei_scell = 1 2 3\n  super_cell = 2 3 4\n  bond_dis_scale = 1.2\n"
    "  HL_unique_ctrl_ratio = 0.1\n  read_neighbor_dat = 1\n  temp = 250\n  maxt = 5000\n"
    "  ratetype = marcus\n  sta = 0\n  delta_angle = 5\n  tsimu = 500\n  tsnap = 2.5\n  nsimu = 100\n"
    "  iterlimit = 50\n  nevery_out = 5\n  RE_unique_mol = 0\n  HL_unique_mol = 0\n"
    "  homo_adjustment = 0 -1\n  lumo_adjustment = 1 0\n  molecule = 2 a.mol b.mol\n"
    "  lat_site_energy = 1\n  mob_output_level = 3\n  tavix_dat_file = report.dat\n"
    "  eigval_output_flag = 1\n  scratch = /scr\n  eckart_mirror = 1\n  app_elec_F = 1e7 0 0\n"
    "  reorg_outer = spheres 0.2 3 4\n  emultipole_induce = 0\n  emultipole_cutoff = 6\n"
    "  emultipole_aDamp = 0.5\n  emultipole_scale1 = 0.5 1\n  emultipole_wSOR_N = 0.6\n"
    "  emultipole_wSOR_C = 0.7\n  emultipole_maxIter = 100\n  emultipole_epsTol = 0.01\n  thinfilm = 1 3\n"
    "  RE_use_neutral_chk = 1\n  V_dynamic_disorder = 1\n  HOMOLUMO_dynamic_disorder = 1\n"
    "  data_mol_output_level = 1\n  oniom_output_flag = 1\n  oniom_nlayers = 3\n  oniom_com_cutoff = 30\n"
    "/\n";

// Every parameter the snapshot carries, compared one by one.
void expect_same_parameters(const Transport& a, const Transport& b) {
  EXPECT_EQ(a.do_transport_prepare, b.do_transport_prepare);
  EXPECT_EQ(a.do_transport_submit_HL_job, b.do_transport_submit_HL_job);
  EXPECT_EQ(a.do_transport_submit_RE_job, b.do_transport_submit_RE_job);
  EXPECT_EQ(a.do_transport_get_transferintegral, b.do_transport_get_transferintegral);
  EXPECT_EQ(a.do_transport_get_re_evc, b.do_transport_get_re_evc);
  EXPECT_EQ(a.do_transport_run_MC, b.do_transport_run_MC);
  EXPECT_EQ(a.do_transport_get_mob_MC, b.do_transport_get_mob_MC);
  EXPECT_EQ(a.do_transport_run_MC_temp, b.do_transport_run_MC_temp);
  EXPECT_EQ(a.do_transport_get_mob_MC_temp, b.do_transport_get_mob_MC_temp);
  EXPECT_EQ(a.do_transport_run_ME, b.do_transport_run_ME);
  EXPECT_EQ(a.do_transport_get_mob_ME, b.do_transport_get_mob_ME);
  EXPECT_EQ(a.do_transport_run_ME_temp, b.do_transport_run_ME_temp);
  EXPECT_EQ(a.do_transport_get_mob_ME_temp, b.do_transport_get_mob_ME_temp);
  EXPECT_EQ(a.do_transport_gather_tavix_data, b.do_transport_gather_tavix_data);
  EXPECT_EQ(a.sched_type, b.sched_type);
  EXPECT_EQ(a.queue_name, b.queue_name);
  EXPECT_EQ(a.nodelist, b.nodelist);
  EXPECT_EQ(a.sched_job_array, b.sched_job_array);
  EXPECT_EQ(a.job_slot_limit, b.job_slot_limit);
  EXPECT_EQ(a.walltime_hours, b.walltime_hours);
  EXPECT_EQ(a.qc_method, b.qc_method);
  EXPECT_EQ(a.qc_basis, b.qc_basis);
  EXPECT_EQ(a.qc_basis_re, b.qc_basis_re);
  EXPECT_EQ(a.qc_memory, b.qc_memory);
  EXPECT_EQ(a.qc_nodes, b.qc_nodes);
  EXPECT_EQ(a.qc_ppn, b.qc_ppn);
  EXPECT_EQ(a.compute_engine, b.compute_engine);
  EXPECT_EQ(a.qc_exe, b.qc_exe);
  EXPECT_EQ(a.module_tavix, b.module_tavix);
  EXPECT_EQ(a.module_tavix_flag, b.module_tavix_flag);
  EXPECT_EQ(a.module_mpich2, b.module_mpich2);
  EXPECT_EQ(a.module_mpich2_flag, b.module_mpich2_flag);
  EXPECT_EQ(a.module_qc, b.module_qc);
  EXPECT_EQ(a.module_qc_flag, b.module_qc_flag);
  EXPECT_DOUBLE_EQ(a.start_temp, b.start_temp);
  EXPECT_DOUBLE_EQ(a.end_temp, b.end_temp);
  EXPECT_DOUBLE_EQ(a.delta_temp, b.delta_temp);
  EXPECT_EQ(a.chargetype, b.chargetype);
  EXPECT_EQ(a.evc_type, b.evc_type);
  EXPECT_EQ(a.use_evc_dint, b.use_evc_dint);
  for (int k = 0; k < 3; ++k) {
    EXPECT_DOUBLE_EQ(a.vector_a[k], b.vector_a[k]);
    EXPECT_DOUBLE_EQ(a.vector_b[k], b.vector_b[k]);
    EXPECT_DOUBLE_EQ(a.vector_c[k], b.vector_c[k]);
    EXPECT_EQ(a.nei_scell[k], b.nei_scell[k]);
    EXPECT_EQ(a.super_cell[k], b.super_cell[k]);
  }
  EXPECT_DOUBLE_EQ(a.lat_cutoff, b.lat_cutoff);
  EXPECT_EQ(a.reorg_outer_flag, b.reorg_outer_flag);
  EXPECT_DOUBLE_EQ(a.reorg_outer_value, b.reorg_outer_value);
  ASSERT_EQ(a.reorg_outer_radii.size(), b.reorg_outer_radii.size());
  for (size_t k = 0; k < a.reorg_outer_radii.size(); ++k)
    EXPECT_DOUBLE_EQ(a.reorg_outer_radii[k], b.reorg_outer_radii[k]);
  EXPECT_EQ(a.lat_site_energy, b.lat_site_energy);
  EXPECT_EQ(a.emultipole_induce, b.emultipole_induce);
  EXPECT_DOUBLE_EQ(a.emultipole_cutoff, b.emultipole_cutoff);
  EXPECT_DOUBLE_EQ(a.emultipole_aDamp, b.emultipole_aDamp);
  EXPECT_EQ(a.emultipole_scale1, b.emultipole_scale1);
  EXPECT_DOUBLE_EQ(a.emultipole_wSOR_N, b.emultipole_wSOR_N);
  EXPECT_DOUBLE_EQ(a.emultipole_wSOR_C, b.emultipole_wSOR_C);
  EXPECT_EQ(a.emultipole_maxIter, b.emultipole_maxIter);
  EXPECT_DOUBLE_EQ(a.emultipole_epsTol, b.emultipole_epsTol);
  EXPECT_EQ(a.eckart_mirror, b.eckart_mirror);
  EXPECT_DOUBLE_EQ(a.delta_angle, b.delta_angle);
  EXPECT_DOUBLE_EQ(a.temp, b.temp);
  EXPECT_DOUBLE_EQ(a.maxt, b.maxt);
  EXPECT_EQ(a.ratetype, b.ratetype);
  EXPECT_EQ(a.sta, b.sta);
  EXPECT_EQ(a.nsimu, b.nsimu);
  EXPECT_DOUBLE_EQ(a.tsimu, b.tsimu);
  EXPECT_DOUBLE_EQ(a.tsnap, b.tsnap);
  EXPECT_EQ(a.iterlimit, b.iterlimit);
  EXPECT_EQ(a.nevery_out, b.nevery_out);
  EXPECT_DOUBLE_EQ(a.bond_dis_scale, b.bond_dis_scale);
  EXPECT_DOUBLE_EQ(a.HL_unique_ctrl_ratio, b.HL_unique_ctrl_ratio);
  EXPECT_EQ(a.read_neighbor_dat, b.read_neighbor_dat);
  EXPECT_EQ(a.HL_unique_mol, b.HL_unique_mol);
  EXPECT_EQ(a.RE_unique_mol, b.RE_unique_mol);
  EXPECT_EQ(a.RE_use_neutral_chk, b.RE_use_neutral_chk);
  EXPECT_EQ(a.RE_calc_lambda_4P, b.RE_calc_lambda_4P);
  EXPECT_EQ(a.homo_adjustment, b.homo_adjustment);
  EXPECT_EQ(a.lumo_adjustment, b.lumo_adjustment);
  EXPECT_EQ(a.appE_flag, b.appE_flag);
  for (int k = 0; k < 3; ++k) EXPECT_DOUBLE_EQ(a.app_elec_F[k], b.app_elec_F[k]);
  EXPECT_EQ(a.use_moo, b.use_moo);
  EXPECT_EQ(a.thinfilm_flag, b.thinfilm_flag);
  EXPECT_EQ(a.thinfilm_dir, b.thinfilm_dir);
  EXPECT_EQ(a.thinfilm_ncell, b.thinfilm_ncell);
  EXPECT_EQ(a.V_dynamic_disorder, b.V_dynamic_disorder);
  EXPECT_EQ(a.HOMOLUMO_dynamic_disorder, b.HOMOLUMO_dynamic_disorder);
  EXPECT_EQ(a.tavix_dat_file, b.tavix_dat_file);
  EXPECT_EQ(a.data_mol_output_level, b.data_mol_output_level);
  EXPECT_EQ(a.mob_output_level, b.mob_output_level);
  EXPECT_EQ(a.eigval_output_flag, b.eigval_output_flag);
  EXPECT_EQ(a.oniom_output_flag, b.oniom_output_flag);
  EXPECT_EQ(a.oniom_nlayers, b.oniom_nlayers);
  EXPECT_DOUBLE_EQ(a.oniom_com_cutoff, b.oniom_com_cutoff);
  EXPECT_EQ(a.mol_input_mode, b.mol_input_mode);
  EXPECT_EQ(a.nmols_uc, b.nmols_uc);
  for (int i = 0; i < a.nmols_uc && i < b.nmols_uc; ++i) EXPECT_STREQ(a.mol_files[i], b.mol_files[i]);
}

}  // namespace

// ---- write_tavix_inp -------------------------------------------------------------------

TEST_F(ControlWriters, SnapshotOfTheDefaultsIsExact) {
  Transport t;
  write_file("tavix.inp", "");
  t.read_tavix_inp("tavix.inp", false);
  std::string out = txtest::capture_stdout([&] { t.write_tavix_inp("snap.inp", false, false); });
  EXPECT_EQ(out, "");
  EXPECT_EQ(read_file("snap.inp"), golden("snapshot_defaults.inp"));
}

TEST_F(ControlWriters, SnapshotAnnouncesItselfOnlyWhenVerbose) {
  Transport t;
  std::string out = txtest::capture_stdout([&] { t.write_tavix_inp("config.inp", true, true); });
  EXPECT_EQ(out, "Writing config file \"data/config.inp\"... \n");
  EXPECT_TRUE(txtest::path_exists("data/config.inp"));
}

TEST_F(ControlWriters, SnapshotOfAnUnreadObjectShowsTheDigitOneSpelling) {
  Transport t;
  t.write_tavix_inp("snap.inp", false, false);
  EXPECT_NE(read_file("snap.inp").find("  qc_method       = b31yp\n"), std::string::npos);
}

TEST_F(ControlWriters, SnapshotThatCannotBeOpenedIsPassedOverSilently) {
  Transport t;
  std::string out = txtest::capture_stdout([&] { t.write_tavix_inp("no_dir/snap.inp", false, true); });
  EXPECT_EQ(out, "");
}

TEST_F(ControlWriters, RichSnapshotReadsBackToTheSameParameters) {
  Transport a;
  write_file("tavix.inp", kRichControl);
  a.read_tavix_inp("tavix.inp", false);
  a.write_tavix_inp("snap.inp", false, false);
  Transport b;
  b.read_tavix_inp("snap.inp", false);
  expect_same_parameters(a, b);
  // The raw scratch value gains the blank behind "=" at every reading; the job
  // scripts print it as it stands.
  EXPECT_EQ(a.scratch, " /scr");
  EXPECT_EQ(b.scratch, "  /scr    ");
}

TEST_F(ControlWriters, SnapshotWritesTheOptionalLinesOfARichObject) {
  Transport a;
  write_file("tavix.inp", kRichControl);
  a.read_tavix_inp("tavix.inp", false);
  a.write_tavix_inp("snap.inp", false, false);
  const std::string s = read_file("snap.inp");
  EXPECT_NE(s.find("  module_tavix    = tavix/2023A ! module load tavix/2021B-mpich2\n"), std::string::npos);
  EXPECT_NE(s.find("  module_mpich2   = mpich/4.1 ! module load mpich2/1.5-gnu-7.5.0\n"), std::string::npos);
  EXPECT_NE(s.find("  module_qc       = gaussian/g09    ! module load gaussian/g16.c01-avx2\n"), std::string::npos);
  EXPECT_NE(s.find("  nodelist        = \"node1,node2\"\n"), std::string::npos);
  EXPECT_NE(s.find("  reorg_outer     = spheres 0.2 3 4    ! radius in Angstroms\n"), std::string::npos);
  EXPECT_NE(s.find("  lat_site_energy = 1\n  emultipole_induce  = 0      ! default to 1 (true)\n"), std::string::npos);
  EXPECT_NE(s.find("  emultipole_scale1 = 0.5 1\n"), std::string::npos);
  EXPECT_NE(s.find("  homo_adjustment = 0 -1\n  lumo_adjustment = 1 0\n"), std::string::npos);
  EXPECT_NE(s.find("  app_elec_F      =      1e+07          0          0    ! in eV/m\n"), std::string::npos);
  EXPECT_NE(s.find("  thinfilm          = 1 3\n"), std::string::npos);
  EXPECT_NE(s.find("  molecule           = 2 a.mol b.mol\n"), std::string::npos);
}

TEST_F(ControlWriters, OuterReorganisationLinesGoBackToAngstrom) {
  Transport c;
  write_file("c.inp", "&transport\nreorg_outer = constant 0.15\n/\n");
  c.read_tavix_inp("c.inp", false);
  c.write_tavix_inp("c_snap.inp", false, false);
  EXPECT_NE(read_file("c_snap.inp").find("  reorg_outer     = constant 0.15    !  in eV\n"), std::string::npos);
  Transport d;
  write_file("d.inp", "&transport\nreorg_outer = dielectric 3.5 12\n/\n");
  d.read_tavix_inp("d.inp", false);
  d.write_tavix_inp("d_snap.inp", false, false);
  EXPECT_NE(read_file("d_snap.inp").find("  reorg_outer     = dielectric 3.5 12    ! cutoff in Angstroms\n"),
            std::string::npos);
}

TEST_F(ControlWriters, SnapshotOfACrystalRunNamesTheCrystal) {
  Transport t;
  const std::string cif = data_path("cif/diatomic_pbar1.cif");
  write_file("tavix.inp", "&transport\ncrystal = " + cif + "\n/\n");
  t.read_tavix_inp("tavix.inp", false);
  t.write_tavix_inp("snap.inp", false, false);
  EXPECT_NE(read_file("snap.inp").find("  crystal            = " + cif + "\n/\n"), std::string::npos);
}

// ---- templates --------------------------------------------------------------------------

TEST_F(ControlWriters, TemplatesShowTheSampleNamesWithoutFiles) {
  Transport t;
  t.write_tavix_inp_terse("terse2.inp", 2, false);
  t.write_tavix_inp_terse("terse1.inp", 1, false);
  t.write_tavix_inp_verbose("verbose3.inp", 3, false);
  t.write_tavix_inp_terse_oniom("oniom2.inp", 2, false);
  EXPECT_NE(read_file("terse2.inp").find("  crystal         = naphthalene.cif\n/\n"), std::string::npos);
  EXPECT_NE(read_file("terse1.inp").find("  molecule        = 2 mol1.mol mol2.mol\n/\n"), std::string::npos);
  EXPECT_EQ(read_file("verbose3.inp").find("molecule"), std::string::npos);
  EXPECT_EQ(read_file("verbose3.inp").find("crystal"), std::string::npos);
  EXPECT_NE(read_file("oniom2.inp").find("  crystal           = naphthalene.cif\n/\n"), std::string::npos);
}

TEST_F(ControlWriters, TemplatesNameTheFilesOfTheCurrentDirectory) {
  write_file("b.mol", "");
  write_file("a.mol", "");
  write_file("x.cif", "");
  Transport t;
  std::string out = txtest::capture_stdout([&] {
    t.write_tavix_inp_terse("t1.inp", 1, false);
    t.write_tavix_inp_terse("t2.inp", 2, true);
  });
  EXPECT_EQ(out, "Writing config file \"t1.inp\"... \nWriting config file \"data/t2.inp\"... \n");
  EXPECT_NE(read_file("t1.inp").find("  molecule        = 2 a.mol b.mol\n"), std::string::npos);
  EXPECT_NE(read_file("data/t2.inp").find("  crystal         = x.cif\n"), std::string::npos);
}

TEST_F(ControlWriters, TemplatesAreReadableAndCommentUnsetModules) {
  Transport t;
  write_file("tavix.inp", "");
  t.read_tavix_inp("tavix.inp", false);
  t.write_tavix_inp_terse("terse.inp", 1, false);
  t.write_tavix_inp_verbose("verbose.inp", 1, false);
  t.write_tavix_inp_terse_oniom("oniom.inp", 1, false);
  const std::string terse = read_file("terse.inp");
  EXPECT_NE(terse.find("#   module_tavix    = tavix/2022B-mpich2\n"), std::string::npos);
  EXPECT_NE(terse.find("#   module_qc       = gaussian/g16.c01-avx2\n"), std::string::npos);
  EXPECT_EQ(terse.find("module_mpich2"), std::string::npos);
  EXPECT_NE(terse.find("  qc_exe          = g16  ! g09/g16 or fullpath/orca or qchem or fullpath/bdfdrv.py\n"),
            std::string::npos);
  const std::string verbose = read_file("verbose.inp");
  EXPECT_NE(verbose.find("#   module_mpich2   = mpich2/1.5-gnu-8.5.0\n"), std::string::npos);
  // An empty adjustment list is shown as nmols_uc zeros; this object has none.
  EXPECT_NE(verbose.find("  homo_adjustment =\n"), std::string::npos);
  EXPECT_NE(read_file("oniom.inp").find("  oniom_nlayers         = 2            ! maximum 3 layers, default to 2\n"),
            std::string::npos);
  // The sample names point at files that do not exist, so the templates are read
  // here with the structure line left out.
  for (const char* name : {"terse.inp", "verbose.inp", "oniom.inp"}) {
    std::string text = read_file(name);
    size_t mol = text.find("  molecule ");
    text.erase(mol, text.find('\n', mol) - mol + 1);
    write_file(std::string("copy_") + name, text);
    Transport r;
    EXPECT_EQ(r.read_tavix_inp((std::string("copy_") + name).c_str(), false), 1) << name;
  }
}

TEST_F(ControlWriters, VerboseTemplateFillsEmptyAdjustmentsWithZeros) {
  Transport t;
  t.nmols_uc = 3;
  t.write_tavix_inp_verbose("verbose.inp", 0, false);
  const std::string s = read_file("verbose.inp");
  EXPECT_NE(s.find("  homo_adjustment = 0 0 0\n  lumo_adjustment = 0 0 0\n"), std::string::npos);
}

TEST_F(ControlWriters, FourPointTemplateIsFixedText) {
  Transport t;
  t.qc_ppn = 99;
  std::string out = txtest::capture_stdout([&] {
    t.write_tavix_inp_terse_reorg4p("singlet.inp", false);
    t.write_tavix_inp_terse_reorg4p("triplet.inp", true);
  });
  EXPECT_EQ(out, "Writing config file \"singlet.inp\"... \nWriting config file \"triplet.inp\"... \n");
  EXPECT_EQ(read_file("singlet.inp"), golden("reorg4p_singlet.inp"));
  EXPECT_EQ(read_file("triplet.inp"), golden("reorg4p_triplet.inp"));
}

// ---- the flat form ---------------------------------------------------------------------

TEST_F(ControlWriters, FlatFormOfTheDefaultsIsExact) {
  Transport t;
  write_file("tavix.inp", "");
  t.read_tavix_inp("tavix.inp", false);
  t.write_config_inp("flat.inp", 1, false);
  EXPECT_EQ(read_file("flat.inp"), golden("flat_defaults.inp"));
}

TEST_F(ControlWriters, FlatFormReadsBackToTheSameParameters) {
  Transport a;
  write_file("tavix.inp", kRichControl);
  a.read_tavix_inp("tavix.inp", false);
  write_file("a.mol", "");
  write_file("b.mol", "");
  a.write_config_inp("flat.inp", 1, false);
  Transport b;
  b.read_config_inp("flat.inp", false);
  EXPECT_EQ(a.sched_type, b.sched_type);
  EXPECT_EQ(a.queue_name, b.queue_name);
  EXPECT_EQ(a.qc_exe, b.qc_exe);
  EXPECT_EQ(a.module_tavix, b.module_tavix);
  EXPECT_EQ(a.module_mpich2, b.module_mpich2);
  EXPECT_EQ(a.module_qc, b.module_qc);
  EXPECT_TRUE(b.module_qc_flag);
  EXPECT_EQ(a.qc_method, b.qc_method);
  EXPECT_EQ(a.qc_basis, b.qc_basis);
  EXPECT_EQ(a.qc_basis_re, b.qc_basis_re);
  EXPECT_EQ(a.qc_memory, b.qc_memory);
  EXPECT_EQ(a.qc_nodes, b.qc_nodes);
  EXPECT_EQ(a.qc_ppn, b.qc_ppn);
  EXPECT_DOUBLE_EQ(a.temp, b.temp);
  EXPECT_DOUBLE_EQ(a.start_temp, b.start_temp);
  EXPECT_DOUBLE_EQ(a.end_temp, b.end_temp);
  EXPECT_DOUBLE_EQ(a.delta_temp, b.delta_temp);
  EXPECT_EQ(a.chargetype, b.chargetype);
  EXPECT_EQ(a.evc_type, b.evc_type);
  for (int k = 0; k < 3; ++k) {
    EXPECT_DOUBLE_EQ(a.vector_a[k], b.vector_a[k]);
    EXPECT_DOUBLE_EQ(a.vector_b[k], b.vector_b[k]);
    EXPECT_DOUBLE_EQ(a.vector_c[k], b.vector_c[k]);
    EXPECT_EQ(a.super_cell[k], b.super_cell[k]);
  }
  EXPECT_DOUBLE_EQ(a.lat_cutoff, b.lat_cutoff);
  EXPECT_DOUBLE_EQ(a.delta_angle, b.delta_angle);
  EXPECT_DOUBLE_EQ(a.maxt, b.maxt);
  EXPECT_EQ(a.ratetype, b.ratetype);
  EXPECT_EQ(a.sta, b.sta);
  EXPECT_EQ(a.nsimu, b.nsimu);
  EXPECT_DOUBLE_EQ(a.tsimu, b.tsimu);
  EXPECT_DOUBLE_EQ(a.tsnap, b.tsnap);
  EXPECT_EQ(a.iterlimit, b.iterlimit);
  EXPECT_EQ(a.nevery_out, b.nevery_out);
  EXPECT_EQ(b.mol_input_mode, 1);
  EXPECT_EQ(b.nmols_uc, 2);
  EXPECT_STREQ(b.mol_files[0], "a.mol");
}

// ---- the flat reader -------------------------------------------------------------------

TEST_F(ControlWriters, FlatReaderTakesTheNewerFormsEqualsSignAsTheValue) {
  Transport t;
  write_file("flat.inp", "temp = 300\nnsimu 40\n");
  t.read_config_inp("flat.inp", false);
  EXPECT_DOUBLE_EQ(t.temp, 0.0);
  EXPECT_EQ(t.nsimu, 40);
}

TEST_F(ControlWriters, FlatReaderSkipsASectionWordButASlashLineIsAnUnknownKey) {
  Transport t;
  write_file("ok.inp", "&transport\nnsimu 7\n");
  t.read_config_inp("ok.inp", false);
  EXPECT_EQ(t.nsimu, 7);
  write_file("bad.inp", "&transport\nnsimu 7\n/ end\n");
  auto r = run_forked([] {
    Transport u;
    u.read_config_inp("bad.inp", false);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out),
            "Reading config file \"bad.inp\"... \n"
            "\nERROR  transport : tavix_inp : line # : \n"
            "\nUnknown parameter \"/\" in file bad.inp!!!\n\n"
            "Look up the conf.out for available parameters.\n");
}

TEST_F(ControlWriters, FlatReaderZindoBasisGivesAMinimalReorganisationBasis) {
  Transport a, b;
  write_file("a.inp", "qc_basis zindo/1\n");
  write_file("b.inp", "basis_name ZINDO\n");
  a.read_config_inp("a.inp", false);
  b.read_config_inp("b.inp", false);
  EXPECT_EQ(a.qc_basis, "zindo/1");
  EXPECT_EQ(a.qc_basis_re, "b3lyp STO-3g");
  EXPECT_EQ(b.qc_basis_re, "ZINDO");
}

TEST_F(ControlWriters, FlatReaderIgnoresTheEnvironment) {
  setenv("TAVIX_QC_PPN", "24", 1);
  Transport t;
  write_file("flat.inp", "# nothing\n");
  t.read_config_inp("flat.inp", false);
  EXPECT_EQ(t.qc_ppn, 8);
}

TEST_F(ControlWriters, FlatReaderKeepsSingleQuotesAndRunsNoClosingSteps) {
  Transport t;
  write_file("flat.inp",
             "mater_name \"'pentacene'\"\nqueue_type slurm\nqc_exe orca\nchargetype x\nlatt_site_energy 1\n"
             "homo_adjustment 1\t2 3\n");
  std::string out = txtest::capture_stdout([&] { t.read_config_inp("flat.inp", false); });
  EXPECT_EQ(out, "Reading config file \"flat.inp\"... \n");
  EXPECT_EQ(t.mater_name, "'pentacene'");
  EXPECT_EQ(t.chargetype, "x");
  EXPECT_EQ(t.lat_site_energy, 1);
  EXPECT_EQ(t.qc_exe, "orca");              // no engine check
  EXPECT_EQ(t.tavix_dat_file, "");          // no default report name
  EXPECT_EQ(t.walltime_days, 0);            // no Slurm split
  EXPECT_TRUE(t.inp_read);
  // Words are split at blanks alone: "1\t2" is one word.
  EXPECT_EQ(t.homo_adjustment, (std::vector<int>{1, 3}));
}

TEST_F(ControlWriters, FlatReaderTabDoesNotSeparateKeyAndValue) {
  Transport t;
  write_file("flat.inp", "nsimu\t55\n");
  t.read_config_inp("flat.inp", false);
  EXPECT_EQ(t.nsimu, 2000);
}

TEST_F(ControlWriters, FlatReaderKnowsOnlyItsOwnKeys) {
  for (const char* line : {"lat_site_energy 1\n", "use_moo 1\n", "neighbor_scell 1 1 1\n"}) {
    write_file("flat.inp", line);
    auto r = run_forked([] {
      Transport t;
      t.read_config_inp("flat.inp", false);
    });
    EXPECT_EQ(r.status, 255) << line;
  }
}

TEST_F(ControlWriters, FlatReaderMissingFileIsFatal) {
  auto r = run_forked([] {
    Transport t;
    t.read_config_inp("none.inp", false);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(mask_line_numbers(r.out), "\nERROR  transport : tavix_inp : line # : \n");
  EXPECT_EQ(r.err, "Failed to open input file \"none.inp\"\n");
}

TEST_F(ControlWriters, FlatReaderOlderNamesAndCrystal) {
  Transport t;
  write_file("flat.inp",
             "do_prepare 0\ndo_HL 0\ndo_RE 0\ndo_transferintegral 0\ndo_evc 0\nmemory 100\n"
             "gaussian_nodes 3\ngaussian_ppn 5\nsuper-cell 1 2 3\ncrystal " +
                 data_path("cif/diatomic_pbar1.cif") + "\n");
  t.read_config_inp("flat.inp", false);
  EXPECT_EQ(t.do_transport_prepare, 0);
  EXPECT_EQ(t.do_transport_submit_HL_job, 0);
  EXPECT_EQ(t.do_transport_submit_RE_job, 0);
  EXPECT_EQ(t.do_transport_get_transferintegral, 0);
  EXPECT_EQ(t.do_transport_get_re_evc, 0);
  EXPECT_EQ(t.qc_memory, 100);
  EXPECT_EQ(t.qc_nodes, 3);
  EXPECT_EQ(t.qc_ppn, 5);
  EXPECT_EQ(t.super_cell[2], 3);
  EXPECT_EQ(t.mol_input_mode, 2);
  EXPECT_EQ(t.cif_natoms, 4);
}
