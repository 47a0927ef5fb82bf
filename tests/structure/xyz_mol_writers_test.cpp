// The XYZ and molfile writers and write_mol_files with its output-level bit mask.
#include <gtest/gtest.h>

#include <dirent.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "fileio.h"
#include "test_support.h"

// Defined in cif_writers_test.cpp.
namespace structure_writer_fixtures {
std::string golden(const std::string& name);
void load_three_atoms(FileIO& io);
void load_two_molecules(FileIO& io);
using Writer = std::function<void(FileIO&, const char* path)>;
void expect_quoted_open_failure(const Writer& write, const std::string& expected_stdout);
}  // namespace structure_writer_fixtures

namespace {

using structure_writer_fixtures::expect_quoted_open_failure;
using structure_writer_fixtures::golden;
using structure_writer_fixtures::load_three_atoms;
using structure_writer_fixtures::load_two_molecules;

std::set<std::string> files_in(const std::string& dir) {
  std::set<std::string> names;
  DIR* d = opendir(dir.c_str());
  if (d == nullptr) return names;
  while (dirent* e = readdir(d)) {
    const std::string name = e->d_name;
    if (name != "." && name != "..") names.insert(name);
  }
  closedir(d);
  return names;
}

class AtomWriters : public ::testing::Test {
 protected:
  void SetUp() override { load_three_atoms(io); }
  txtest::TempDir dir;
  FileIO io;
};

TEST_F(AtomWriters, XyzOfGivenAtomsWritesCountTitleAndRightAlignedSymbols) {
  io.write_data_xyz("atoms.xyz", io.cif_natoms, io.cif_atypes, io.cif_x);
  EXPECT_EQ(txtest::read_file("atoms.xyz"), golden("atoms3.xyz"));
}

TEST_F(AtomWriters, XyzOfCrystalWritesAllCifAtomsFromCifX) {
  io.write_data_xyz("crystal.xyz");
  EXPECT_EQ(txtest::read_file("crystal.xyz"), golden("atoms3.xyz"));
}

TEST(XyzWriter, OpenFailurePrintsQuotedPathOnStderrAndExitsMinusOne) {
  expect_quoted_open_failure(
      [](FileIO& io, const char* path) {
        load_three_atoms(io);
        io.write_data_xyz(path, io.cif_natoms, io.cif_atypes, io.cif_x);
      },
      "");
}

TEST_F(AtomWriters, MolfileOfGivenAtomsWritesHeadCountsAtomsAndEndWithoutBonds) {
  io.write_data_mol("atoms.mol", io.cif_natoms, io.cif_atypes, io.cif_x);
  EXPECT_EQ(txtest::read_file("atoms.mol"), golden("atoms3.mol"));
}

TEST_F(AtomWriters, MolfileOfCrystalWritesAllCifAtomsFromCifX) {
  io.write_data_mol("crystal.mol");
  EXPECT_EQ(txtest::read_file("crystal.mol"), golden("atoms3.mol"));
}

TEST(MolfileWriter, MoleculeOfOneAtomGivesCountsLineOne) {
  txtest::TempDir dir;
  FileIO io;
  int type[1] = {26};
  double x[3] = {0.5, -0.5, 2.0};
  io.write_data_mol("iron.mol", 1, type, x);
  EXPECT_EQ(txtest::read_file("iron.mol"),
            "Molecule\n"
            "Created by TAVIX\n"
            "\n"
            "  1  0  0  0  0  0  0  0  0  0999 V2000\n"
            "    0.5000   -0.5000    2.0000 Fe  0  0  0  0  0  0  0  0  0  0\n"
            "M  END\n");
}

TEST(MolfileWriter, OpenFailurePrintsQuotedPathOnStderrAndExitsMinusOne) {
  expect_quoted_open_failure(
      [](FileIO& io, const char* path) {
        load_three_atoms(io);
        io.write_data_mol(path);
      },
      "");
}

class WriteMolFiles : public ::testing::Test {
 protected:
  void SetUp() override { load_two_molecules(io); }
  // write_mol_files() with one level of the bit mask, in data_dir "data".
  std::set<std::string> files_of_level(int level) {
    io.set_data_mol_output_level(level);
    io.write_mol_files();
    return files_in("data");
  }
  txtest::TempDir dir;
  FileIO io;
};

TEST_F(WriteMolFiles, LevelTwoWritesOnlyTheMoleculeFiles) {
  EXPECT_EQ(files_of_level(2), (std::set<std::string>{"mol1.mol", "mol2.mol"}));
}

TEST_F(WriteMolFiles, LevelThreeWritesUnitCellAndAllMolecules) {
  EXPECT_EQ(files_of_level(3), (std::set<std::string>{"unitcell.cif", "mol1.mol", "mol2.mol"}));
}

TEST_F(WriteMolFiles, LevelOneWritesUnitCellAndMoleculeOneAsSample) {
  EXPECT_EQ(files_of_level(1), (std::set<std::string>{"unitcell.cif", "mol1.mol"}));
}

TEST_F(WriteMolFiles, LevelSevenWritesEverything) {
  EXPECT_EQ(files_of_level(7), (std::set<std::string>{"supercell.cif", "unitcell.cif", "mol1.mol", "mol2.mol"}));
}

TEST_F(WriteMolFiles, LevelZeroCreatesOnlyTheDirectory) {
  EXPECT_TRUE(files_of_level(0).empty());
  EXPECT_EQ(txtest::run_command("test -d data").status, 0);
}

TEST(WriteMolFilesDefault, LevelIsTwo) { EXPECT_EQ(FileIO().get_data_mol_output_level(), 2); }

TEST_F(WriteMolFiles, FilesHoldMolXTheUnitCellAndTheSupercellOfSuperCell) {
  io.data_dir = "out";
  io.set_data_mol_output_level(7);
  io.write_mol_files();
  EXPECT_EQ(txtest::read_file("out/mol1.mol"), golden("co.mol"));
  EXPECT_EQ(txtest::read_file("out/mol2.mol"), golden("nh2.mol"));
  EXPECT_EQ(txtest::read_file("out/unitcell.cif"), golden("unitcell.cif"));
  EXPECT_EQ(txtest::read_file("out/supercell.cif"), golden("supercell_2x1x2.cif"));  // super_cell is 2 1 2
}

TEST_F(WriteMolFiles, PrefixFormNamesFilesPrefixDashNumber) {
  io.write_mol_files("run");
  EXPECT_EQ(files_in("."), (std::set<std::string>{"run-1.mol", "run-2.mol"}));
  EXPECT_EQ(txtest::read_file("run-1.mol"), golden("co.mol"));
  EXPECT_EQ(txtest::read_file("run-2.mol"), golden("nh2.mol"));
}

// No verbose switch reaches these writers, so they print nothing.
TEST_F(WriteMolFiles, PrintNothingWhileTheyWrite) {
  io.set_data_mol_output_level(7);
  EXPECT_EQ(txtest::capture_stdout([&] { io.write_mol_files(); }), "");
}

}  // namespace
