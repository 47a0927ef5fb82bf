// The gather, end to end: tavix_gather.exe runs in a temporary run directory and
// its report and standard output are compared with texts worked out by hand.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tavix_output.h"
#include "test_support.h"

using txtest::data_path;
using txtest::read_file;
using txtest::run_gather;
using txtest::TempDir;
using txtest::write_file;

namespace {

std::string golden(const std::string& name) { return read_file(data_path("golden/gather/" + name)); }

// A finished run of the two-molecule test crystal: data/config.inp with the given
// extra keys, the crystal beside it.
void make_run(const std::string& extra_keys) {
  mkdir("data", 0755);
  write_file("crystal.cif", read_file(data_path("cif/diatomic_pbar1.cif")));
  write_file("data/config.inp", "&transport\n  crystal = crystal.cif\n" + extra_keys + "/\n");
}

void make_dir(const std::string& path) {
  std::string partial;
  for (size_t pos = 0; pos != std::string::npos;) {
    pos = path.find('/', pos + 1);
    partial = path.substr(0, pos);
    mkdir(partial.c_str(), 0755);
  }
}

const std::string kStart = "*** Gather TAVIX Mobility Data...\n";
const std::string kEnd = "*** Successfully done.\n";
const std::string kGathered = "TAVIX data are gathered to file \"tavix-quantum.dat\"\n";
const std::string kEndLine = "Normal end of TAVIX data gathering.\n";

// An evc.cart.dat whose table holds one row; `row` has ten words.
std::string evc_file(const std::string& row) {
  return " normal modes\n"
         "BEGIN_OUTPUT_1\n"
         " header one\n"
         " header two\n"
         " header three\n" +
         row + "\n" +
         "   2  A  1.0  100.0  0.1  0.2  2  A  1.0  110.0\n"
         "----------------\n";
}

const std::string kImagWarning =
    "WARNING\n"
    "WARNING -- imaginary frequency found in file evc/evc.cart.dat\n"
    "WARNING\n"
    "\n";

}  // namespace

// ---- sections ------------------------------------------------------------------------

TEST(GatherReport, NoResultDirectoriesGivesHeadAndFileListsOnly) {
  TempDir dir;
  make_run("");
  auto r = run_gather("");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, kStart + kGathered + kEnd);
  EXPECT_EQ(read_file("tavix-quantum.dat"), golden("head.txt") + golden("lists_all_carriers.txt") + kEndLine);
}

TEST(GatherReport, HolesOnlyKeepTheHeadingsWithEmptyLists) {
  TempDir dir;
  make_run("  chargetype = h\n");
  auto r = run_gather("");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(read_file("tavix-quantum.dat"), golden("head.txt") + golden("lists_holes_only.txt") + kEndLine);
}

TEST(GatherReport, UpperCaseAllSelectsBothCarriers) {
  TempDir dir;
  make_run("  chargetype = A\n");
  run_gather("");
  EXPECT_EQ(read_file("tavix-quantum.dat"), golden("head.txt") + golden("lists_all_carriers.txt") + kEndLine);
}

TEST(GatherReport, DataLevelZeroListsOneMoleculeAndOptionalSectionsAppear) {
  TempDir dir;
  make_run(
      "  chargetype = e\n  data_mol_output_level = 0\n  reorg_outer = constant 0.1\n  lat_site_energy = 1\n");
  run_gather("");
  EXPECT_EQ(read_file("tavix-quantum.dat"),
            golden("head.txt") + golden("lists_one_molecule_electrons_outer_site.txt") + kEndLine);
}

TEST(GatherReport, ConfigOptionHasNoInfluenceOnTheReport) {
  TempDir dir;
  make_run("");
  write_file("other.inp", "&transport\n  chargetype = h\n/\n");
  auto r = run_gather("-config other.inp");
  EXPECT_EQ(r.out, "  tavix_gather.exe input config file is other.inp\n" + kStart + kGathered + kEnd);
  EXPECT_EQ(read_file("tavix-quantum.dat"), golden("head.txt") + golden("lists_all_carriers.txt") + kEndLine);
}

TEST(GatherReport, ReportNameFollowsTheKeyAndTheRatetype) {
  TempDir dir;
  make_run("  ratetype = Marcus\n");
  auto r = run_gather("");
  EXPECT_EQ(r.out, kStart + "TAVIX data are gathered to file \"tavix-Marcus.dat\"\n" + kEnd);
  EXPECT_TRUE(txtest::path_exists("tavix-Marcus.dat"));
}

// ---- backups -----------------------------------------------------------------------------

TEST(GatherReport, SecondGatherMovesTheFirstReportAsideAndAThirdReplacesTheBackup) {
  TempDir dir;
  make_run("");
  run_gather("");
  write_file("tavix-quantum.dat", "first report\n");
  run_gather("");
  EXPECT_EQ(read_file("tavix-quantum.dat#"), "first report\n");
  write_file("tavix-quantum.dat", "second report\n");
  run_gather("");
  EXPECT_EQ(read_file("tavix-quantum.dat#"), "second report\n");
  EXPECT_EQ(read_file("tavix-quantum.dat"), golden("head.txt") + golden("lists_all_carriers.txt") + kEndLine);
}

TEST(GatherReport, AFailedGatherLeavesTheEarlierReportInPlace) {
  TempDir dir;
  make_run("  no_such_key = 1\n");
  write_file("tavix-quantum.dat", "earlier report\n");
  auto r = run_gather("");
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(read_file("tavix-quantum.dat"), "earlier report\n");
  EXPECT_FALSE(txtest::path_exists("tavix-quantum.dat#"));
}

TEST(GatherReport, ReportThatCannotBeCreatedIsFatal) {
  TempDir dir;
  make_run("  tavix_dat_file = missing_dir/report.dat\n");
  auto r = run_gather("");
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kStart + "\nERROR  transport : tavix_output : line # : \n");
  EXPECT_EQ(r.err, "Failed to create tavix data file missing_dir/report.dat\n");
}

TEST(GatherReport, MissingSnapshotIsTheReadersFatal) {
  TempDir dir;
  auto r = run_gather("");
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out),
            kStart + "\nERROR  transport : tavix_inp : line # : \nFailed to open input file: data/config.inp\n");
}

// ---- imaginary frequencies ---------------------------------------------------------------

TEST(GatherReport, NegativeFrequencyAtWordThreeWarnsBeforeTheEndLine) {
  TempDir dir;
  make_run("");
  make_dir("evc");
  write_file("evc/evc.cart.dat", evc_file("   1  A  1.0  -35.0  0.1  0.2  1  A  1.0  100.0"));
  run_gather("");
  EXPECT_EQ(read_file("tavix-quantum.dat"),
            golden("head.txt") + golden("lists_all_carriers.txt") + kImagWarning + kEndLine);
}

TEST(GatherReport, NegativeFrequencyAtWordNineWarns) {
  TempDir dir;
  make_run("");
  make_dir("evc");
  write_file("evc/evc.cart.dat", evc_file("   1  A  1.0  35.0  0.1  0.2  1  A  1.0  -100.0"));
  run_gather("");
  EXPECT_EQ(read_file("tavix-quantum.dat"),
            golden("head.txt") + golden("lists_all_carriers.txt") + kImagWarning + kEndLine);
}

TEST(GatherReport, NegativeNumberElsewhereOnTheLineGivesNoWarning) {
  TempDir dir;
  make_run("");
  make_dir("evc");
  write_file("evc/evc.cart.dat", evc_file("   1  A  -1.0  35.0  -0.1  -0.2  1  A  -1.0  100.0"));
  run_gather("");
  EXPECT_EQ(read_file("tavix-quantum.dat"), golden("head.txt") + golden("lists_all_carriers.txt") + kEndLine);
}

TEST(GatherReport, BeginMarkWithoutDashLineGivesNoWarning) {
  TempDir dir;
  make_run("");
  make_dir("evc");
  write_file("evc/evc.cart.dat",
             "BEGIN_OUTPUT_1\n a\n b\n c\n   1  A  1.0  -35.0  0.1  0.2  1  A  1.0  -100.0\n");
  run_gather("");
  EXPECT_EQ(read_file("tavix-quantum.dat"), golden("head.txt") + golden("lists_all_carriers.txt") + kEndLine);
}

TEST(GatherReport, ModeFilesInSubdirectoriesAreFound) {
  TempDir dir;
  make_run("");
  make_dir("evc/mol1/elec");
  write_file("evc/mol1/elec/evc.cart.dat", evc_file("   1  A  1.0  -35.0  0.1  0.2  1  A  1.0  100.0"));
  run_gather("");
  EXPECT_NE(read_file("tavix-quantum.dat")
                .find("WARNING -- imaginary frequency found in file evc/mol1/elec/evc.cart.dat\n"),
            std::string::npos);
}

// The directory test looks the bare entry name up in the run directory: a plain
// file there of the same name as a subdirectory of evc keeps it from being searched.
TEST(GatherReport, SubdirectoryShadowedByAPlainFileOfTheRunIsNotSearched) {
  TempDir dir;
  make_run("");
  make_dir("evc/mol1/elec");
  write_file("mol1", "a plain file\n");
  write_file("evc/mol1/elec/evc.cart.dat", evc_file("   1  A  1.0  -35.0  0.1  0.2  1  A  1.0  100.0"));
  run_gather("");
  EXPECT_EQ(read_file("tavix-quantum.dat"), golden("head.txt") + golden("lists_all_carriers.txt") + kEndLine);
}

TEST(GatherReport, ModeFileNameIsMatchedWithoutCase) {
  TempDir dir;
  make_run("");
  make_dir("evc");
  write_file("evc/EVC.Cart.DAT", evc_file("   1  A  1.0  -35.0  0.1  0.2  1  A  1.0  100.0"));
  run_gather("");
  EXPECT_NE(read_file("tavix-quantum.dat").find("found in file evc/EVC.Cart.DAT\n"), std::string::npos);
}

TEST(GatherReport, UnreadableModeFileIsFatal) {
  TempDir dir;
  make_run("");
  make_dir("evc");
  ASSERT_EQ(symlink("nowhere", "evc/evc.cart.dat"), 0);
  auto r = run_gather("");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "ERROR: Failed to open file evc/evc.cart.dat\n");
}

TEST(GatherReport, AFrequencyWordThatIsNoNumberEndsTheProcessAbnormally) {
  TempDir dir;
  make_run("");
  make_dir("evc");
  write_file("evc/evc.cart.dat", evc_file("   1  A  1.0  abc  0.1  0.2  1  A  1.0  100.0"));
  auto r = run_gather("");
  EXPECT_EQ(r.status, 128 + 6);  // std::invalid_argument, uncaught: abort
}

// A table row without the tenth word has no second frequency to read: the gather
// stops and says where.
TEST(GatherReport, ATableRowOfFewerThanTenWordsFails) {
  TempDir dir;
  make_run("");
  make_dir("evc");
  write_file("evc/evc.cart.dat", evc_file("   1  A  1.0  35.0"));
  auto r = run_gather("");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err,
            "ERROR: evc/evc.cart.dat line 6: expected at least 10 columns in the normal-mode table, found 4\n");
}

// ---- mobility tables -------------------------------------------------------------------

namespace {
const std::string kMcHole =
    "**** Hopping rates for MC-quantum/hole:\n"
    "  MC-quantum/hole/hoprates.dat\n"
    "\n"
    "**** Mobility data for MC-quantum/hole\n"
    "hole a\n"
    "hole b\n"
    "hole c\n"
    "hole all\n"
    "Directional mobilities are in file:\n"
    "  MC-quantum/hole/mob_direction_all.dat\n"
    "**** End of Mobility data for MC-quantum/hole\n"
    "\n";

void make_mc_carrier(const std::string& c, const std::string& label) {
  make_dir(c);
  write_file(c + "/mob_a.dat", label + " a\nsecond line a\n");
  write_file(c + "/mob_b.dat", label + " b\n");
  write_file(c + "/mob_c.dat", label + " c\n");
  write_file(c + "/mob.dat", label + " all\nmore\n");
}
}  // namespace

TEST(GatherMobility, OnlyTheHoleDirectoryGivesHoleLinesOnly) {
  TempDir dir;
  make_run("");
  make_mc_carrier("MC-quantum/hole", "hole");
  auto r = run_gather("");
  EXPECT_EQ(r.out, kStart + "Gathering MC mobilities...\n" + kGathered + kEnd);
  EXPECT_EQ(read_file("tavix-quantum.dat"),
            golden("head.txt") + golden("lists_all_carriers.txt") + kMcHole + kEndLine);
}

TEST(GatherMobility, AMissingFirstFileIsPassedOver) {
  TempDir dir;
  make_run("");
  make_dir("MC-quantum/elec");
  write_file("MC-quantum/elec/mob_b.dat", "only b\n");
  run_gather("");
  EXPECT_EQ(read_file("tavix-quantum.dat"), golden("head.txt") + golden("lists_all_carriers.txt") +
                                                "**** Hopping rates for MC-quantum/elec:\n"
                                                "  MC-quantum/elec/hoprates.dat\n"
                                                "\n"
                                                "**** Mobility data for MC-quantum/elec\n"
                                                "only b\n"
                                                "Directional mobilities are in file:\n"
                                                "  MC-quantum/elec/mob_direction_all.dat\n"
                                                "**** End of Mobility data for MC-quantum/elec\n"
                                                "\n" +
                                                kEndLine);
}

TEST(GatherMobility, DirectionalLineFollowsBitTwoOfTheOutputLevel) {
  for (int level : {0, 1, 2, 3}) {
    TempDir dir;
    make_run("  mob_output_level = " + std::to_string(level) + "\n");
    make_mc_carrier("MC-quantum/hole", "hole");
    run_gather("");
    bool has_line = read_file("tavix-quantum.dat").find("Directional mobilities are in file:\n") != std::string::npos;
    EXPECT_EQ(has_line, level >= 2) << "mob_output_level " << level;
  }
}

TEST(GatherMobility, FirstLineWithoutLineEndRunsOnIntoTheNextOutput) {
  TempDir dir;
  make_run("  mob_output_level = 0\n");
  make_dir("MC-quantum/elec");
  write_file("MC-quantum/elec/mob.dat", "no line end");
  run_gather("");
  EXPECT_NE(read_file("tavix-quantum.dat").find("no line end**** End of Mobility data for MC-quantum/elec\n"),
            std::string::npos);
}

TEST(GatherMobility, TemperatureRunTriesEachTemperatureElectronsThenHoles) {
  TempDir dir;
  make_run("  start_temp = 200\n  end_temp = 300\n  delta_temp = 50\n");
  for (const char* t : {"200", "250", "300"})
    for (const char* c : {"elec", "hole"}) make_dir(std::string("MC-quantum-temp/") + t + "/" + c);
  auto r = run_gather("");
  EXPECT_EQ(r.out, kStart + "Gathering MC with TD mobilities...\n" + kGathered + kEnd);
  std::string report = read_file("tavix-quantum.dat");
  std::string expected;
  for (const char* t : {"200", "250", "300"}) {
    for (const char* c : {"elec", "hole"}) {
      std::string C = std::string("MC-quantum-temp/") + t + "/" + c;
      expected += "**** Hopping rates for " + C + ":\n  " + C + "/hoprates.dat\n\n**** Mobility data for " + C +
                  "\nDirectional mobilities are in file:\n  " + C + "/mob_direction_all.dat\n" +
                  "**** End of Mobility data for " + C + "\n\n";
    }
  }
  EXPECT_EQ(report, golden("head.txt") + golden("lists_all_carriers.txt") + expected + kEndLine);
}

TEST(GatherMobility, TemperatureStepOfThirtyStopsAtTwoHundredNinety) {
  TempDir dir;
  make_run("  start_temp = 200\n  end_temp = 300\n  delta_temp = 30\n  mob_output_level = 0\n");
  for (const char* t : {"200", "230", "260", "290", "300"}) make_dir(std::string("MC-quantum-temp/") + t + "/hole");
  run_gather("");
  std::string report = read_file("tavix-quantum.dat");
  for (const char* t : {"200", "230", "260", "290"})
    EXPECT_NE(report.find(std::string("**** Mobility data for MC-quantum-temp/") + t + "/hole\n"),
              std::string::npos)
        << t;
  EXPECT_EQ(report.find("MC-quantum-temp/300/"), std::string::npos);
}

TEST(GatherMobility, FractionalTemperaturesLookForTheRoundedDirectory) {
  TempDir dir;
  make_run("  start_temp = 200.5\n  end_temp = 200.5\n  delta_temp = 50\n  mob_output_level = 0\n");
  make_dir("MC-quantum-temp/200/elec");  // "%.0f" of 200.5 rounds half to even
  run_gather("");
  EXPECT_NE(read_file("tavix-quantum.dat").find("**** Mobility data for MC-quantum-temp/200/elec\n"),
            std::string::npos);
}

TEST(GatherMobility, MasterEquationFilesAreCopiedWholeAndAnnounced) {
  TempDir dir;
  make_run("");
  make_dir("ME-quantum/elec");
  write_file("ME-quantum/elec/mob_elec.dat", "line 1\nline 2\nline 3 without end");
  auto r = run_gather("");
  EXPECT_EQ(r.out, kStart + "Gathering ME mobilities...\n" + "  Pull data from file: ME-quantum/elec/mob_elec.dat\n" +
                       kGathered + kEnd);
  EXPECT_EQ(read_file("tavix-quantum.dat"), golden("head.txt") + golden("lists_all_carriers.txt") +
                                                "**** Mobility data for ME-quantum/elec\n"
                                                "line 1\nline 2\nline 3 without end\n"
                                                "**** End of Mobility data for ME-quantum/elec\n"
                                                "\n" +
                                                kEndLine);
}

TEST(GatherMobility, MasterEquationTemperatureRunHasNoTemperatureLevel) {
  TempDir dir;
  make_run("");
  make_dir("ME-quantum-temp/hole");
  write_file("ME-quantum-temp/hole/mob_hole.dat", "td holes\n");
  auto r = run_gather("");
  EXPECT_EQ(r.out, kStart + "Gathering ME with TD mobilities...\n" +
                       "  Pull data from file: ME-quantum-temp/hole/mob_hole.dat\n" + kGathered + kEnd);
  EXPECT_EQ(read_file("tavix-quantum.dat"), golden("head.txt") + golden("lists_all_carriers.txt") +
                                                "**** Mobility data for ME-quantum-temp/hole\n"
                                                "td holes\n"
                                                "**** End of Mobility data for ME-quantum-temp/hole\n"
                                                "\n" +
                                                kEndLine);
}

TEST(GatherMobility, MissingMasterEquationFileGivesTheFrameOnly) {
  TempDir dir;
  make_run("");
  make_dir("ME-quantum/hole");
  run_gather("");
  EXPECT_NE(read_file("tavix-quantum.dat")
                .find("**** Mobility data for ME-quantum/hole\n**** End of Mobility data for ME-quantum/hole\n\n"),
            std::string::npos);
}

TEST(GatherMobility, AllFourDirectoriesAreGatheredInOrder) {
  TempDir dir;
  make_run("  start_temp = 300\n  end_temp = 300\n");
  make_dir("MC-quantum/elec");
  make_dir("MC-quantum-temp/300/elec");
  make_dir("ME-quantum/elec");
  make_dir("ME-quantum-temp/elec");
  auto r = run_gather("");
  EXPECT_EQ(r.out, kStart +
                       "Gathering MC mobilities...\n"
                       "Gathering MC with TD mobilities...\n"
                       "Gathering ME mobilities...\n"
                       "  Pull data from file: ME-quantum/elec/mob_elec.dat\n"
                       "Gathering ME with TD mobilities...\n"
                       "  Pull data from file: ME-quantum-temp/elec/mob_elec.dat\n" +
                       kGathered + kEnd);
}

// ---- the operations in-process ----------------------------------------------------------

TEST(GatherOperations, MasterEquationCarrierOutsideTheTableIsFatal) {
  TempDir dir;
  make_dir("ME-quantum");
  auto r = txtest::run_forked([] {
    TavixDataOutput g;
    g.ratetype = "quantum";
    g.output_meq_mob_one(stdout, "ME-quantum", 5);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : tavix_output : line # : \nOut of range: ehflag\n");
}

TEST(GatherOperations, ListFilesFindsEveryModeFileAndIgnoresOthers) {
  TempDir dir;
  make_dir("evc/a/elec");
  make_dir("evc/b");
  write_file("evc/a/elec/evc.cart.dat", "x");
  write_file("evc/b/evc.int.dat", "x");
  write_file("evc/evc.cart.dat", "x");
  TavixDataOutput g;
  std::vector<std::string> files;
  g.listFiles("evc", files);
  std::sort(files.begin(), files.end());
  EXPECT_EQ(files, (std::vector<std::string>{"evc/a/elec/evc.cart.dat", "evc/evc.cart.dat"}));
  std::vector<std::string> none;
  g.listFiles("no_such_dir", none);
  EXPECT_TRUE(none.empty());
}

TEST(GatherOperations, IsDirectory) {
  TempDir dir;
  make_dir("d");
  write_file("f", "x");
  TavixDataOutput g;
  EXPECT_TRUE(g.is_directory("d"));
  EXPECT_FALSE(g.is_directory("f"));
  EXPECT_FALSE(g.is_directory("missing"));
}

// ---- the example run of the repository ---------------------------------------------------

TEST(GatherExample, TheShippedBenzeneRunGathersEveryResult) {
  TempDir dir;
  const std::string example = data_path("../../examples/benzene");
  ASSERT_EQ(txtest::run_command("cp -r '" + example + "/.' .").status, 0);
  auto r = run_gather("");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, kStart +
                       "Gathering MC mobilities...\n"
                       "Gathering ME mobilities...\n"
                       "  Pull data from file: ME-quantum/elec/mob_elec.dat\n"
                       "  Pull data from file: ME-quantum/hole/mob_hole.dat\n" +
                       kGathered + kEnd);
  const std::string report = read_file("tavix-quantum.dat");
  EXPECT_EQ(report.compare(0, golden("head.txt").size(), golden("head.txt")), 0);
  EXPECT_NE(report.find("  data/mol4.mol\n"), std::string::npos);
  EXPECT_NE(report.find("**** Mobility data for MC-quantum/hole\n"
                        "  mu_a =   1.102764e+00  cm^2/Vs\n"),
            std::string::npos);
  EXPECT_NE(report.find("WARNING -- imaginary frequency found in file evc/mol1/elec/evc.cart.dat\n"),
            std::string::npos);
  EXPECT_EQ(report.find("evc/mol1/hole/evc.cart.dat"), std::string::npos);
  EXPECT_EQ(report.substr(report.size() - kEndLine.size()), kEndLine);
}
