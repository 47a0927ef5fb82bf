// Paths and files: names, existence tests, directories, line counts, globbing.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "test_support.h"
#include "txutil.h"

namespace {

using txtest::TempDir;
using txtest::write_file;

TEST(BaseFilename, TextAfterTheLastSeparator) {
  EXPECT_EQ(base_filename("a/b/c.cif"), "c.cif");
  EXPECT_EQ(base_filename("a\\b\\c.cif"), "c.cif");
  EXPECT_EQ(base_filename("a\\b/c.cif"), "c.cif");
  EXPECT_EQ(base_filename("c.cif"), "c.cif");
  EXPECT_EQ(base_filename("dir/"), "");
}

TEST(RemoveFilenameExtension, CutsAtTheLastDot) {
  EXPECT_EQ(remove_filename_extension("mol.xyz"), "mol");
  EXPECT_EQ(remove_filename_extension("a/b.c/d.tar.gz"), "a/b.c/d.tar");
  EXPECT_EQ(remove_filename_extension("noext"), "noext");
}

TEST(RemoveFilenameExtension, DotOnlyInADirectoryPartCutsThere) {
  EXPECT_EQ(remove_filename_extension("run.d/crystal"), "run");
  EXPECT_EQ(remove_filename_extension("./crystal"), "");
}

TEST(GetParentPathAndBasename, SplitsAtTheLastSeparator) {
  EXPECT_EQ(getParentPathAndBasename("a/b/c.dat"), std::make_pair(std::string("a/b"), std::string("c.dat")));
  EXPECT_EQ(getParentPathAndBasename("a\\c.dat"), std::make_pair(std::string("a"), std::string("c.dat")));
  EXPECT_EQ(getParentPathAndBasename("/c.dat"), std::make_pair(std::string(""), std::string("c.dat")));
}

TEST(GetParentPathAndBasename, NoSeparatorGivesEmptyParent) {
  EXPECT_EQ(getParentPathAndBasename("c.dat"), std::make_pair(std::string(""), std::string("c.dat")));
}

TEST(GetWorkdir, GivesTheCurrentDirectory) {
  TempDir dir;
  char buf[4096];
  ASSERT_NE(getcwd(buf, sizeof buf), nullptr);
  std::string out = "unchanged";
  get_workdir(out);
  EXPECT_EQ(out, buf);
}

TEST(GetWorkdir, FailureWarnsAndLeavesTheTextAlone) {
  TempDir dir;
  ASSERT_EQ(mkdir("gone", 0755), 0);
  ASSERT_EQ(chdir("gone"), 0);
  ASSERT_EQ(rmdir(dir.file("gone").c_str()), 0);
  std::string out = "unchanged";
  std::string printed = txtest::capture_stdout([&] { get_workdir(out); });
  ASSERT_EQ(chdir(dir.path().c_str()), 0);
  EXPECT_EQ(printed, "WARNING: getcwd failed!\n");
  EXPECT_EQ(out, "unchanged");
}

TEST(DirExists, DirectoryGivesOne) {
  TempDir dir;
  ASSERT_EQ(mkdir("sub", 0755), 0);
  EXPECT_EQ(dir_exists("sub"), 1);
  EXPECT_EQ(dir_exists("."), 1);
}

TEST(DirExists, PlainFileGivesZero) {
  TempDir dir;
  write_file("plain.txt", "x\n");
  EXPECT_EQ(dir_exists("plain.txt"), 0);
}

TEST(DirExists, MissingPathGivesZero) {
  TempDir dir;
  EXPECT_EQ(dir_exists("missing"), 0);
  EXPECT_EQ(dir_exists("missing/deeper"), 0);
}

TEST(DirExists, PathUnderAPlainFileGivesZero) {
  TempDir dir;
  write_file("plain.txt", "x\n");
  EXPECT_EQ(dir_exists("plain.txt/sub"), 0);
}

TEST(DirExists, OtherQueryFailuresGiveMinusOne) {
  TempDir dir;
  ASSERT_EQ(symlink("loop", "loop"), 0);  // resolving it fails with ELOOP
  EXPECT_EQ(dir_exists("loop"), -1);
  EXPECT_EQ(dir_exists(std::string(5000, 'a').c_str()), -1);  // ENAMETOOLONG
  EXPECT_EQ(dir_exists(nullptr), -1);
}

TEST(FileExist, TrueWhenTheQuerySucceeds) {
  TempDir dir;
  write_file("f", "");
  ASSERT_EQ(mkdir("d", 0755), 0);
  EXPECT_TRUE(fileExist("f"));
  EXPECT_TRUE(fileExist("d"));
  EXPECT_FALSE(fileExist("missing"));
  EXPECT_FALSE(fileExist(nullptr));
}

TEST(FileExists, ReadableFileOrDirectoryPasses) {
  TempDir dir;
  write_file("f", "data");
  ASSERT_EQ(mkdir("d", 0755), 0);
  EXPECT_TRUE(file_exists("f"));
  EXPECT_TRUE(file_exists("d"));
  EXPECT_FALSE(file_exists("missing"));
}

TEST(FileExists, NullPointerIsFalse) { EXPECT_FALSE(file_exists(nullptr)); }

TEST(FileExistString, EmptyTextIsFalse) {
  TempDir dir;
  write_file("f", "");
  EXPECT_FALSE(_file_exist(""));
  EXPECT_TRUE(_file_exist("f"));
  EXPECT_FALSE(_file_exist("missing"));
}

TEST(CreateDirectory, CreatesOneLevelAndAcceptsAnExistingDirectory) {
  TempDir dir;
  mode_t old_mask = umask(0);
  int made = create_directory("new");
  umask(old_mask);
  EXPECT_EQ(made, 0);
  EXPECT_EQ(dir_exists("new"), 1);
  EXPECT_EQ(create_directory(std::string("new")), 0);
  struct stat st;
  ASSERT_EQ(stat("new", &st), 0);
  EXPECT_EQ(st.st_mode & 0777, 0755u);
}

TEST(CreateDirectory, MissingParentFails) {
  TempDir dir;
  EXPECT_NE(create_directory("a/b"), 0);
  EXPECT_EQ(dir_exists("a"), 0);
}

TEST(CountLines, CountsLineFeeds) {
  TempDir dir;
  write_file("f", "a\nb\nc\n");
  EXPECT_EQ(count_lines("f"), 3);
}

TEST(CountLines, CarriageReturnAndLineFeedCountTwice) {
  TempDir dir;
  write_file("f", "a\r\nb\r\n");
  EXPECT_EQ(count_lines("f"), 4);
  write_file("g", "a\rb\r");
  EXPECT_EQ(count_lines("g"), 2);
}

TEST(CountLines, LastLineWithoutEndingDoesNotCount) {
  TempDir dir;
  write_file("f", "a\nb");
  EXPECT_EQ(count_lines("f"), 1);
  write_file("e", "");
  EXPECT_EQ(count_lines("e"), 0);
  write_file("one", "no ending");
  EXPECT_EQ(count_lines("one"), 0);
}

TEST(CountLines, LongLinesAcrossPieceBoundaries) {
  TempDir dir;
  // A CR LF split between the first two 1023-byte pieces, five lines longer
  // than a piece, then a thousand empty lines.
  std::string text = std::string(1022, 'y') + "\r\n";
  for (int i = 0; i < 5; ++i) text += std::string(2999, 'x') + "\n";
  text += std::string(1000, '\n');
  write_file("f", text);
  EXPECT_EQ(count_lines("f"), 2 + 5 + 1000);
}

TEST(CountLines, NulBytesDoNotHideLineEnds) {
  TempDir dir;
  write_file("f", std::string("a\0b\nc\0\n", 7));
  EXPECT_EQ(count_lines("f"), 2);
}

TEST(CountLinesDeathTest, MissingFileReportsAndExitsMinusOne) {
  TempDir dir;
  // The message goes to standard output; send it to standard error to match it.
  EXPECT_EXIT(
      {
        std::fflush(stdout);
        dup2(2, 1);
        count_lines("missing.txt");
      },
      ::testing::ExitedWithCode(255), "^ERROR: Failed to open input file missing\\.txt\n$");
}

TEST(CountLines, MissingFileMessageGoesToStandardOutput) {
  TempDir dir;
  txtest::RunResult r = txtest::run_forked([] { count_lines("missing.txt"); });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(r.out, "ERROR: Failed to open input file missing.txt\n");
  EXPECT_EQ(r.err, "");
}

TEST(GlobFileVector, ExpandsShellPatternsInOrder) {
  TempDir dir;
  write_file("a2.txt", "");
  write_file("a1.txt", "");
  write_file("b.txt", "");
  EXPECT_EQ(globFileVector("a*.txt"), (std::vector<std::string>{"a1.txt", "a2.txt"}));
  EXPECT_EQ(globFileVector("?.txt"), (std::vector<std::string>{"b.txt"}));
}

TEST(GlobFileVector, NoMatchGivesAnEmptyList) {
  TempDir dir;
  EXPECT_TRUE(globFileVector("*.none").empty());
}

TEST(GlobFileVector, ExpandsTilde) {
  TempDir dir;
  write_file("home_file.dat", "");
  const char* old_home = std::getenv("HOME");
  std::string saved = old_home ? old_home : "";
  setenv("HOME", dir.path().c_str(), 1);
  std::vector<std::string> found = globFileVector("~/home_*.dat");
  if (old_home)
    setenv("HOME", saved.c_str(), 1);
  else
    unsetenv("HOME");
  EXPECT_EQ(found, (std::vector<std::string>{dir.path() + "/home_file.dat"}));
}

}  // namespace
