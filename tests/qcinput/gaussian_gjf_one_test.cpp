// write_data_gjf_one: the older single-molecule Gaussian input, named after
// its own path.
#include <gtest/gtest.h>

#include <string>

#include "fileio.h"
#include "test_support.h"

namespace {

// Water with exact binary coordinates (angstrom).
int water_types[3] = {8, 1, 1};
double water_x[9] = {0.0, 0.0, 0.125, 0.0, 0.75, -0.5, 0.0, -0.75, -0.5};

TEST(GaussianGjfOne, WritesChkNprocsMemRouteTitleChargeAtomsAndClosingBlank) {
  txtest::TempDir dir;
  FileIO io;
  io.write_data_gjf_one("water.com", 3, water_types, water_x, 8, 2000, "b3lyp/6-31g(d)");
  EXPECT_EQ(txtest::read_file("water.com"),
            txtest::read_file(txtest::data_path("golden/structure/gjf_one_water.com")));
}

// First line and the title block of the water input written to `path`.
void expect_chk_and_title(const std::string& path, const std::string& base) {
  FileIO io;
  io.write_data_gjf_one(path.c_str(), 3, water_types, water_x, 1, 100, "hf/sto-3g");
  const std::string text = txtest::read_file(path);
  EXPECT_EQ(text.substr(0, text.find('\n')), "%chk=" + base + ".chk");
  EXPECT_NE(text.find("\n\n" + base + "\n\n0 1\n"), std::string::npos) << text;
}

TEST(GaussianGjfOne, ChkAndTitleAreThePathLessItsExtension) {
  txtest::TempDir dir;
  ASSERT_EQ(txtest::run_command("mkdir inputs").status, 0);
  expect_chk_and_title("inputs/mol.1.gjf", "inputs/mol.1");
}

TEST(GaussianGjfOne, PathWithoutExtensionIsTakenWhole) {
  txtest::TempDir dir;
  expect_chk_and_title("plain", "plain");
}

TEST(GaussianGjfOne, NoAtomsLeavesChargeLineAndClosingBlank) {
  txtest::TempDir dir;
  FileIO io;
  io.write_data_gjf_one("empty.gjf", 0, nullptr, nullptr, 2, 500, "hf/sto-3g");
  EXPECT_EQ(txtest::read_file("empty.gjf"),
            "%chk=empty.chk\n"
            "%nprocs=2\n"
            "%mem=500MB\n"
            "#P hf/sto-3g iop(3/33=1,5/33=2) pop=full nosymm\n"
            "\n"
            "empty\n"
            "\n"
            "0 1\n"
            "\n");
}

TEST(GaussianGjfOne, TwoLetterSymbolFillsItsColumn) {
  txtest::TempDir dir;
  FileIO io;
  int types[1] = {17};
  double x[3] = {-10.0625, 3.0, 12.5};
  io.write_data_gjf_one("cl.gjf", 1, types, x, 1, 100, "hf/sto-3g");
  const std::string text = txtest::read_file("cl.gjf");
  EXPECT_NE(text.find("\n0 1\nCl  -10.0625    3.0000   12.5000\n\n"), std::string::npos) << text;
}

TEST(GaussianGjfOne, OpenFailureIsFatalWithPositionLine) {
  txtest::TempDir dir;
  const std::string path = dir.file("missing/water.com");
  txtest::RunResult r = txtest::run_forked([&] {
    FileIO io;
    io.write_data_gjf_one(path.c_str(), 3, water_types, water_x, 8, 2000, "b3lyp/6-31g(d)");
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out),
            "\nERROR  transport : fileio : line # : \nFailed to open output file " + path + "\n");
  EXPECT_EQ(r.err, "");
}

}  // namespace
