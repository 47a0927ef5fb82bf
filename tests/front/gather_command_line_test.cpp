// The command line of tavix_gather.exe, run as a real process.
#include <gtest/gtest.h>

#include <string>

#include "test_support.h"

using txtest::read_file;
using txtest::run_command;
using txtest::run_gather;
using txtest::TempDir;
using txtest::write_file;

namespace {

// Worked out by hand: the first title line is 69 characters, so the frame is 75 wide.
const char* const kTitle =
    "***************************************************************************\n"
    "*  TAVIX Calculation Utility, Version 2022B (2.3.4) build on Dec  1 2022  *\n"
    "*  TAVIX Developers, Charge Transport in Organic Molecular Crystals       *\n"
    "***************************************************************************\n";

std::string usage_for(const std::string& prog) {
  return std::string(kTitle) + "Gather TAVIX Mobility Data\n\n" + "Usage: " + prog + " [opts]\n" +
         "  -config s : set config file, default to 'tavix.inp'\n\n" + "e.g.: " + prog + "\n" + "  " + prog +
         " -config tavix.inp\n\n";
}

const std::string kProg = "tavix_gather.exe";
const std::string kVersionLine = "TAVIX version 2022B (2.3.4), build on Dec  1 2022\n";

// A finished run for the gather to read: the snapshot and its crystal.
void make_run() {
  txtest::run_command("mkdir -p data");
  write_file("crystal.cif", read_file(txtest::data_path("cif/diatomic_pbar1.cif")));
  write_file("data/config.inp", "&transport\n  crystal = crystal.cif\n/\n");
}

const std::string kGatherRun =
    "*** Gather TAVIX Mobility Data...\n"
    "TAVIX data are gathered to file \"tavix-quantum.dat\"\n"
    "*** Successfully done.\n";

}  // namespace

TEST(GatherCommandLine, VersionPrintsTheVersionLineOnly) {
  TempDir dir;
  auto r = run_gather("--version");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, kVersionLine);
  EXPECT_EQ(r.err, "");
}

TEST(GatherCommandLine, HelpPrintsFramedTitleAndUsage) {
  TempDir dir;
  auto r = run_gather("-h");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, usage_for(kProg));
  auto r2 = run_gather("--help");
  EXPECT_EQ(r2.status, 0);
  EXPECT_EQ(r2.out, usage_for(kProg));
}

TEST(GatherCommandLine, TitleFrameIsLongerLinePlusSixColumns) {
  TempDir dir;
  auto r = run_gather("-h");
  std::string longest_text = "TAVIX Calculation Utility, Version 2022B (2.3.4) build on Dec  1 2022";
  std::string second = "TAVIX Developers, Charge Transport in Organic Molecular Crystals";
  size_t w = std::max(longest_text.size(), second.size());
  size_t pos = 0;
  for (int line = 0; line < 4; ++line) {
    size_t end = r.out.find('\n', pos);
    ASSERT_NE(end, std::string::npos);
    EXPECT_EQ(end - pos, w + 6) << "line " << line;
    pos = end + 1;
  }
}

TEST(GatherCommandLine, NoArgumentsRunsTheGatherStraightAway) {
  TempDir dir;
  make_run();
  auto r = run_gather("");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, kGatherRun);
}

TEST(GatherCommandLine, UnknownWordsAreIgnoredAndTheGatherRuns) {
  TempDir dir;
  make_run();
  auto r = run_gather("-x foo");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, kGatherRun);
}

TEST(GatherCommandLine, HelpMatchesByLeadingBytes) {
  TempDir dir;
  auto hfoo = run_gather("-hfoo");
  EXPECT_EQ(hfoo.status, 0);
  EXPECT_EQ(hfoo.out, usage_for(kProg));
  auto helpme = run_gather("--help-me");
  EXPECT_EQ(helpme.status, 0);
  EXPECT_EQ(helpme.out, usage_for(kProg));
}

TEST(GatherCommandLine, ShortenedHelpAndUnknownShortOptionAreIgnored) {
  TempDir dir;
  make_run();
  auto hel = run_gather("--hel");
  EXPECT_EQ(hel.out, kGatherRun);
  auto v = run_gather("-v");
  EXPECT_EQ(v.out, kGatherRun);
}

TEST(GatherCommandLine, VersionMatchesByLeadingBytes) {
  TempDir dir;
  auto r = run_gather("--versionX");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, kVersionLine);
}

TEST(GatherCommandLine, MissingConfigEndsWithStatusZeroBeforeVersion) {
  TempDir dir;
  auto r = run_gather("-config missing.inp --version");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "ERROR: tavix_gather.exe input config file missing.inp not found!\n");
}

TEST(GatherCommandLine, VersionFirstNeverTestsTheConfigFile) {
  TempDir dir;
  auto r = run_gather("--version -config missing.inp");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, kVersionLine);
}

TEST(GatherCommandLine, PresentConfigIsReportedThenHelp) {
  TempDir dir;
  write_file("present.inp", "&transport\n/\n");
  auto r = run_gather("-config present.inp -h");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "  tavix_gather.exe input config file is present.inp\n" + usage_for(kProg));
}

TEST(GatherCommandLine, ConfigPrefixTakesTheNextWordAsValue) {
  TempDir dir;
  write_file("present.inp", "&transport\n/\n");
  auto r = run_gather("-config=x present.inp --version");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "  tavix_gather.exe input config file is present.inp\n" + kVersionLine);
}

TEST(GatherCommandLine, SeveralConfigOptionsAreEachReported) {
  TempDir dir;
  write_file("a.inp", "");
  write_file("b.inp", "");
  auto r = run_gather("-config a.inp -configure b.inp --version");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out,
            "  tavix_gather.exe input config file is a.inp\n"
            "  tavix_gather.exe input config file is b.inp\n" +
                kVersionLine);
}

TEST(GatherCommandLine, ProgramNameIsTheTextAfterTheLastBackslash) {
  TempDir dir;
  auto r = run_command(std::string("bash -c 'exec -a \"C:\\\\tools\\\\gather.exe\" \"") + TAVIX_GATHER_EXE +
                       "\" -config nothere.inp'");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "ERROR: gather.exe input config file nothere.inp not found!\n");
}

TEST(GatherCommandLine, ProgramNameIsTheTextAfterTheLastSlash) {
  TempDir dir;
  auto r = run_command(std::string("bash -c 'exec -a ./bin/gather \"") + TAVIX_GATHER_EXE + "\" -h'");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, usage_for("gather"));
}

// Without a value the option has nothing to name; the program says so instead of
// reading past the argument list.
TEST(GatherCommandLine, ConfigAsLastWordFailsWithAMessage) {
  TempDir dir;
  auto r = run_gather("-config");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, "ERROR: tavix_gather.exe option -config needs a file name\n");
}

TEST(GatherCommandLine, OptionsLeftOfHelpHaveTheirEffectFirst) {
  TempDir dir;
  auto r = run_gather("-config missing.inp -h");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "ERROR: tavix_gather.exe input config file missing.inp not found!\n");
}
