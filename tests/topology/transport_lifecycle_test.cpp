// Transport construction and release of its arrays.
#include <gtest/gtest.h>

#include <unistd.h>

#include <climits>
#include <string>

#include "tavix_output.h"
#include "test_support.h"

TEST(TransportConstruction, SetsTheMembersNoKeyReaches) {
  Transport t;
  EXPECT_EQ(t.trackdir, "track");
  EXPECT_DOUBLE_EQ(t.track_timeunit, 1e-9);
  EXPECT_EQ(t.openmp_flag, 1);
  EXPECT_EQ(t.NNEIMAX, 300);
  EXPECT_EQ(t.dyn_buffer_size, 100000);
  EXPECT_EQ(t.mc_chargetype, "e");
  EXPECT_EQ(t.mol_input_mode, -1);
  EXPECT_EQ(t.hl_dir, "HL");
  EXPECT_EQ(t.re_dir, "RE");
  EXPECT_EQ(t.run_dir, "RUN");
  EXPECT_EQ(t.scr_dir, "scr");
  EXPECT_EQ(t.check_dir, "check");
  EXPECT_EQ(t.evc_dir, "evc");
}

TEST(TransportConstruction, DerivesTheUniqueFlagsFromTheControlDefaults) {
  Transport t;
  EXPECT_TRUE(t.get_unique_uc_mol_one_calc_flag());
  EXPECT_TRUE(t.get_unique_nei_mol_one_calc_flag());
  EXPECT_TRUE(t.get_unique_2mol_calc_flag());
  EXPECT_TRUE(t.get_unique_RE_calc_flag());
}

TEST(TransportConstruction, TakesTheWorkingDirectory) {
  txtest::TempDir dir;
  char buf[PATH_MAX];
  ASSERT_NE(getcwd(buf, sizeof buf), nullptr);
  Transport t;
  EXPECT_EQ(t.job_workdir, std::string(buf));
}

TEST(TransportConstruction, GatherObjectIsTheWholeChain) {
  TavixDataOutput g;
  EXPECT_EQ(g.NNEIMAX, 300);
  EXPECT_EQ(g.identifier, "tavix");
  EXPECT_EQ(g.job_sched_type, 0);
  EXPECT_EQ(g.qc_method, "b31yp");
}

TEST(TransportAccessors, TrackSettings) {
  Transport t;
  t.set_trackdir("tracks1");
  EXPECT_EQ(t.get_trackdir(), "tracks1");
  t.set_trackdir(std::string("tracks2"));
  EXPECT_EQ(t.get_trackdir(), "tracks2");
  t.set_track_timeunit(1e-12);
  EXPECT_DOUBLE_EQ(t.get_track_timeunit(), 1e-12);
  t.set_openmp_flag(0);
  EXPECT_EQ(t.openmp_flag, 0);
}

TEST(TransportRelease, FreesOwnedArraysAndCanRunTwice) {
  Transport t;
  t.nmols_uc = 2;
  t.mol_natoms = new int[2]{1, 1};
  t.mol_x = new double*[2]{new double[3](), new double[3]()};
  t.nneighbors = new int[2]{0, 0};
  t.neighbor_id = new int*[2]{new int[300], new int[300]};
  t.neighbor_built = true;
  t.w0 = nullptr;
  t.mc_ready = true;
  t.track_t = new double[4]();
  // Record the row counts as the allocating operations do.
  t.mol_rows_allocated = 2;
  t.neighbor_rows_allocated = 2;
  t.release_memories();
  EXPECT_EQ(t.mol_natoms, nullptr);
  EXPECT_EQ(t.mol_x, nullptr);
  EXPECT_EQ(t.nneighbors, nullptr);
  EXPECT_EQ(t.neighbor_id, nullptr);
  EXPECT_EQ(t.track_t, nullptr);
  EXPECT_FALSE(t.neighbor_built);
  EXPECT_FALSE(t.mc_ready);
  t.release_memories();
}

TEST(MemberAliases, OlderNamesReachTheSameFields) {
  Transport t;
  t.walltime_hour = 5;
  EXPECT_EQ(t.walltime_hours, 5);
  t.walltime_minutes = 7;
  EXPECT_EQ(t.walltime_min, 7);
  t.walltime_sec = 9;
  EXPECT_EQ(t.walltime_seconds, 9);
  t.neighbor_scell[1] = 4;
  EXPECT_EQ(t.nei_scell[1], 4);
  EXPECT_EQ(t.mol_elem, t.mol_atypes);
  t.uc_mol_has_dups = false;
  EXPECT_FALSE(t.HL_same_mols_flag);
}
