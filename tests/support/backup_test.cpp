// Moving old output aside: backup_file and make_file_backup.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "test_support.h"
#include "txutil.h"

namespace {

using txtest::path_exists;
using txtest::read_file;
using txtest::TempDir;
using txtest::write_file;

std::string capture_stderr_of(const std::function<void()>& f) {
  testing::internal::CaptureStderr();
  f();
  std::fflush(stderr);
  return testing::internal::GetCapturedStderr();
}

TEST(BackupFile, MovesTheFileToItsNameWithHash) {
  TempDir dir;
  write_file("tavix-marcus.dat", "old report\n");
  backup_file("tavix-marcus.dat");
  EXPECT_FALSE(path_exists("tavix-marcus.dat"));
  EXPECT_EQ(read_file("tavix-marcus.dat#"), "old report\n");
}

TEST(BackupFile, PreviousBackupIsReplaced) {
  TempDir dir;
  write_file("r.dat", "second\n");
  write_file("r.dat#", "first\n");
  backup_file("r.dat");
  EXPECT_FALSE(path_exists("r.dat"));
  EXPECT_EQ(read_file("r.dat#"), "second\n");
}

TEST(BackupFile, MissingFileDoesNothing) {
  TempDir dir;
  backup_file("missing.dat");
  EXPECT_FALSE(path_exists("missing.dat#"));
  backup_file(nullptr);
}

TEST(BackupFile, WorksWithADirectoryInThePath) {
  TempDir dir;
  ASSERT_EQ(create_directory("out"), 0);
  write_file("out/r.dat", "x");
  backup_file("out/r.dat");
  EXPECT_EQ(read_file("out/r.dat#"), "x");
}

TEST(BackupFile, LongestNameThatFitsTheCommandIsMoved) {
  TempDir dir;
  // "mv " + name + " " + name + "#" and the terminator fill 264 bytes exactly.
  std::string name(129, 'n');
  write_file(name, "x");
  std::string err = capture_stderr_of([&] { backup_file(name.c_str()); });
  EXPECT_EQ(err, "");
  EXPECT_FALSE(path_exists(name));
  EXPECT_TRUE(path_exists(name + "#"));
}

TEST(BackupFile, NameTooLongForTheCommandIsRefused) {
  TempDir dir;
  std::string name(130, 'n');
  write_file(name, "x");
  std::string err = capture_stderr_of([&] { backup_file(name.c_str()); });
  EXPECT_EQ(err, "Couldn't backup " + name + ": the name is too long\n");
  EXPECT_TRUE(path_exists(name));
  EXPECT_FALSE(path_exists(name + "#"));
  EXPECT_FALSE(path_exists(name.substr(0, 129)));
}

TEST(MakeFileBackup, FirstBackupInTheCurrentDirectoryIsDotSlashNameDotOne) {
  TempDir dir;
  write_file("out.dat", "v1");
  std::string err = capture_stderr_of([] { make_file_backup("out.dat"); });
  EXPECT_EQ(err, "Backed up out.dat to ./out.dat.1\n");
  EXPECT_FALSE(path_exists("out.dat"));
  EXPECT_EQ(read_file("out.dat.1"), "v1");
}

TEST(MakeFileBackup, TakesTheFirstFreeNumber) {
  TempDir dir;
  write_file("out.dat.1", "old1");
  write_file("out.dat.3", "old3");
  write_file("out.dat", "new");
  std::string err = capture_stderr_of([] { make_file_backup("out.dat"); });
  EXPECT_EQ(err, "Backed up out.dat to ./out.dat.2\n");
  EXPECT_EQ(read_file("out.dat.2"), "new");
  EXPECT_EQ(read_file("out.dat.3"), "old3");
}

TEST(MakeFileBackup, SuccessiveCallsCountUp) {
  TempDir dir;
  for (int k = 1; k <= 9; ++k) {
    write_file("out.dat", "v" + std::to_string(k));
    make_file_backup("out.dat");
  }
  for (int k = 1; k <= 9; ++k) EXPECT_EQ(read_file("out.dat." + std::to_string(k)), "v" + std::to_string(k));
  EXPECT_FALSE(path_exists("out.dat.10"));
}

TEST(MakeFileBackup, TenthCallDeletesTheFirstAndReusesIt) {
  TempDir dir;
  for (int k = 1; k <= 9; ++k) write_file("out.dat." + std::to_string(k), "old" + std::to_string(k));
  write_file("out.dat", "tenth");
  std::string err = capture_stderr_of([] { make_file_backup("out.dat"); });
  EXPECT_EQ(err, "Backed up out.dat to ./out.dat.1\n");
  EXPECT_FALSE(path_exists("out.dat"));
  EXPECT_EQ(read_file("out.dat.1"), "tenth");
  EXPECT_EQ(read_file("out.dat.2"), "old2");
  EXPECT_EQ(read_file("out.dat.9"), "old9");
  EXPECT_FALSE(path_exists("out.dat.10"));
}

TEST(MakeFileBackup, KeepsTheDirectoryOfThePath) {
  TempDir dir;
  ASSERT_EQ(create_directory("MC-marcus"), 0);
  write_file("MC-marcus/mob.dat", "m");
  std::string err = capture_stderr_of([] { make_file_backup("MC-marcus/mob.dat"); });
  EXPECT_EQ(err, "Backed up MC-marcus/mob.dat to MC-marcus/mob.dat.1\n");
  EXPECT_EQ(read_file("MC-marcus/mob.dat.1"), "m");
}

TEST(MakeFileBackup, EmptyOrMissingPathDoesNothing) {
  TempDir dir;
  std::string err = capture_stderr_of([] {
    make_file_backup("");
    make_file_backup("missing.dat");
  });
  EXPECT_EQ(err, "");
  EXPECT_FALSE(path_exists("missing.dat.1"));
  EXPECT_FALSE(path_exists("./.1"));
}

TEST(MakeFileBackup, FailedRenameIsReportedAndTheProgramGoesOn) {
  // Files of /proc read fine but cannot be renamed, not even by root.
  std::string err = capture_stderr_of([] { make_file_backup("/proc/self/status"); });
  EXPECT_EQ(err, "Couldn't backup /proc/self/status to /proc/self/status.1\n");
}

}  // namespace
