// The MDL molfile reader: V2000 fixed columns, V3000 logical lines and blocks,
// and its fatal reports.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "fileio.h"
#include "test_support.h"

namespace {

const char* const kHead = "\nERROR  transport : fileio : line # : \n";

std::string mol_path(const std::string& name) { return txtest::data_path("mol/" + name); }

// What the molecule-file driver does before it reads each slot: rows for
// `nslots` molecules, all null, recorded so that the object releases them.
void allocate_slots(FileIO& io, int nslots) {
  io.nmols_uc = nslots;
  io.mol_natoms = new int[nslots]();
  io.mol_elem = new int*[nslots]();
  io.mol_x = new double*[nslots]();
  io.mol_x_s = new double*[nslots]();
  io.mol_x_com = new double*[nslots]();
  io.mol_x_s_com = new double*[nslots]();
  io.mol_rows_allocated = nslots;
}

// V3000 atoms land in the crystal arrays, so a V3000 read needs them.
void allocate_crystal(FileIO& io, int natoms) {
  io.cif_natoms = natoms;
  io.cif_atypes = new int[natoms]();
  io.cif_x = new double[3 * natoms]();
}

std::vector<std::string> words(std::initializer_list<const char*> list) {
  return std::vector<std::string>(list.begin(), list.end());
}

// ---- V2000 -------------------------------------------------------------------

TEST(MolfileV2000, ThreeAtomsAndATrailingBondBlockGiveThreeAtoms) {
  FileIO io;
  allocate_slots(io, 2);
  // The bond block names atom 7, which does not exist; it is never looked at.
  io.read_data_mol(mol_path("water_v2000.mol").c_str(), 1, false);
  ASSERT_EQ(io.mol_natoms[1], 3);
  EXPECT_EQ(io.mol_elem[1][0], 8);
  EXPECT_EQ(io.mol_elem[1][1], 1);
  EXPECT_EQ(io.mol_elem[1][2], 1);
  const double want[9] = {0.0, 0.0, 0.1173, 0.0, 0.7572, -0.4692, 0.0, -0.7572, -0.4692};
  for (int k = 0; k < 9; ++k) EXPECT_DOUBLE_EQ(io.mol_x[1][k], want[k]) << k;
  // Fractional coordinates are the caller's business: allocated, left at zero.
  ASSERT_NE(io.mol_x_s[1], nullptr);
  for (int k = 0; k < 9; ++k) EXPECT_EQ(io.mol_x_s[1][k], 0.0);
  // The other slot is untouched.
  EXPECT_EQ(io.mol_natoms[0], 0);
  EXPECT_EQ(io.mol_elem[0], nullptr);
}

TEST(MolfileV2000, DeuteriumIsUnknownAndLowerCaseChlorineIsFound) {
  FileIO io;
  allocate_slots(io, 1);
  io.read_data_mol(mol_path("symbols_v2000.mol").c_str(), 0, false);
  ASSERT_EQ(io.mol_natoms[0], 3);
  EXPECT_EQ(io.mol_elem[0][0], 6);
  EXPECT_EQ(io.mol_elem[0][1], 17);  // "cl"
  EXPECT_EQ(io.mol_elem[0][2], -1);  // "D": the table has no such key
  EXPECT_DOUBLE_EQ(io.mol_x[0][3], 1.781);
  EXPECT_DOUBLE_EQ(io.mol_x[0][6], -0.3633);
  EXPECT_DOUBLE_EQ(io.mol_x[0][7], 1.0277);
}

TEST(MolfileV2000, SixCharacterCountsLineSkipsChiralTestAndHasNoAtomList) {
  FileIO io;
  allocate_slots(io, 1);
  std::string out = txtest::capture_stdout([&] { io.read_data_mol(mol_path("counts6_v2000.mol").c_str(), 0, false); });
  EXPECT_EQ(out, "");
  ASSERT_EQ(io.mol_natoms[0], 1);
  EXPECT_EQ(io.mol_elem[0][0], 7);
  EXPECT_DOUBLE_EQ(io.mol_x[0][0], 1.5);
  EXPECT_DOUBLE_EQ(io.mol_x[0][1], -2.25);
  EXPECT_DOUBLE_EQ(io.mol_x[0][2], 3.125);
}

TEST(MolfileV2000, ChiralFlagOfTwoWarnsAndReadingGoesOn) {
  FileIO io;
  allocate_slots(io, 1);
  std::string out = txtest::capture_stdout([&] { io.read_data_mol(mol_path("chiral2_v2000.mol").c_str(), 0, false); });
  EXPECT_EQ(out, "WARNING: The Chiral Flag should be either 0 or 1. The value of 2 will be ignored.\n");
  ASSERT_EQ(io.mol_natoms[0], 1);
  EXPECT_EQ(io.mol_elem[0][0], 6);
}

TEST(MolfileV2000, VerboseAnnouncesTheFile) {
  FileIO io;
  allocate_slots(io, 1);
  const std::string path = mol_path("counts6_v2000.mol");
  std::string out = txtest::capture_stdout([&] { io.read_data_mol(path.c_str(), 0, true); });
  EXPECT_EQ(out, "Reading molecular file \"" + path + "\"... ");
}

TEST(MolfileV2000, SecondReadOfASlotReplacesItsRows) {
  FileIO io;
  allocate_slots(io, 1);
  io.read_data_mol(mol_path("water_v2000.mol").c_str(), 0, false);
  io.read_data_mol(mol_path("counts6_v2000.mol").c_str(), 0, false);
  ASSERT_EQ(io.mol_natoms[0], 1);
  EXPECT_EQ(io.mol_elem[0][0], 7);  // the sanitizer build checks that the old rows were freed
}

TEST(MolfileV2000, AtomLineTooShortForTheSymbolThrowsOutOfRange) {
  FileIO io;
  allocate_slots(io, 1);
  // Uncaught in the program, this ends the process.
  EXPECT_THROW(io.read_data_mol(mol_path("short_atom_line_v2000.mol").c_str(), 0, false), std::out_of_range);
}

TEST(MolfileV2000, AtomLineTooShortForTheSecondCoordinateThrowsOutOfRange) {
  txtest::TempDir dir;
  txtest::write_file("five.mol", "t\np\nc\n  1  0  0  0  0  0  0  0  0  0999 V2000\n    0\n");
  FileIO io;
  allocate_slots(io, 1);
  EXPECT_THROW(io.read_data_mol("five.mol", 0, false), std::out_of_range);
}

TEST(MolfileV2000, AtomLineEndingAtColumn31GivesAnEmptySymbol) {
  txtest::TempDir dir;
  txtest::write_file("c31.mol", "t\np\nc\n  1  0  0  0  0  0  0  0  0  0999 V2000\n"
                                "    1.0000    2.0000    3.0000 \n");
  FileIO io;
  allocate_slots(io, 1);
  io.read_data_mol("c31.mol", 0, false);
  EXPECT_EQ(io.mol_elem[0][0], -1);
  EXPECT_DOUBLE_EQ(io.mol_x[0][2], 3.0);
}

// As in the program, nothing catches the exception: noexcept stands for main.
void read_short_atom_line_uncaught() noexcept {
  FileIO io;
  allocate_slots(io, 1);
  io.read_data_mol(mol_path("short_atom_line_v2000.mol").c_str(), 0, false);
}

TEST(MolfileV2000, UncaughtOutOfRangeEndsTheProcess) {
  txtest::RunResult r = txtest::run_forked([] { read_short_atom_line_uncaught(); });
  EXPECT_EQ(r.status, 128 + SIGABRT);
}

// ---- fatal reports -----------------------------------------------------------

TEST(MolfileFatal, UnreadableFileReportsOnStandardErrorWithMinusOne) {
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    allocate_slots(io, 1);
    io.read_data_mol("/nonexistent/dir/absent.mol", 0, false);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to open input file \"/nonexistent/dir/absent.mol\"\n");
}

TEST(MolfileFatal, CountsLineUnderSixCharactersExitsWithOne) {
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    allocate_slots(io, 1);
    io.read_data_mol(mol_path("short_counts_v2000.mol").c_str(), 0, false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), std::string(kHead) +
                                                  "WARNING: Problems reading a MDL file\n"
                                                  "         Cannot read atom and bond count\n"
                                                  "         Expected standard 6 character atom and bond count\n");
  EXPECT_EQ(r.err, "");
}

TEST(MolfileFatal, FileEndingBeforeTheCountsLineIsAShortCountsLine) {
  txtest::TempDir dir;
  txtest::write_file("two_lines.mol", "title\nprogram\n");
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    allocate_slots(io, 1);
    io.read_data_mol("two_lines.mol", 0, false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.out.find("         Cannot read atom and bond count\n"), std::string::npos);
}

TEST(MolfileFatal, AtomListCountAboveZeroExitsWithOne) {
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    allocate_slots(io, 1);
    io.read_data_mol(mol_path("atomlist_v2000.mol").c_str(), 0, false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), std::string(kHead) +
                                                  "WARNING: Problems reading the Count line of an MDL file\n"
                                                  "         There may be erroneous addition spaces or\n"
                                                  "         the file may contains Atom Lists, which are ignored\n");
  EXPECT_EQ(r.err, "");
}

TEST(MolfileFatal, FewerAtomLinesThanCountedPrintsCifNatomsNotTheFileCount) {
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    allocate_slots(io, 1);
    io.read_data_mol(mol_path("missing_atoms_v2000.mol").c_str(), 0, false);
  });
  EXPECT_EQ(r.status, 1);
  // The file counts 3 atoms; the number shown is cif_natoms, 0 in molecule-file mode.
  EXPECT_EQ(txtest::mask_line_numbers(r.out), std::string(kHead) +
                                                  "WARNING: Problems reading a MDL file\n"
                                                  "         Not enough atoms to match atom count (0) in counts line\n");
  EXPECT_EQ(r.err, "");
}

TEST(MolfileFatal, FewerAtomLinesThanCountedShowsAnExistingCifNatoms) {
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    allocate_slots(io, 1);
    allocate_crystal(io, 42);
    io.read_data_mol(mol_path("missing_atoms_v2000.mol").c_str(), 0, false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.out.find("         Not enough atoms to match atom count (42) in counts line\n"), std::string::npos);
}

TEST(MolfileFatal, NegativeAtomCountIsRefusedNamingTheFile) {
  txtest::TempDir dir;
  txtest::write_file("neg.mol", "t\np\nc\n -2  0  0  0  0  0  0  0  0  0999 V2000\n");
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    allocate_slots(io, 1);
    io.read_data_mol("neg.mol", 0, false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to read 'neg.mol' line 4: negative atom count -2\n");
}

TEST(MolfileFatal, SlotWithoutAllocatedRowsIsRefused) {
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    allocate_slots(io, 1);
    io.read_data_mol(mol_path("counts6_v2000.mol").c_str(), 1, false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "Failed to read '" + mol_path("counts6_v2000.mol") + "': molecule slot 1 has no allocated row\n");
}

// ---- V3000 logical lines -------------------------------------------------------

TEST(V3000Line, PlainLineGivesItsTokens) {
  FileIO io;
  std::istringstream in("M  V30 1 C 0.5\t-1.25 2.0\r\n");
  std::vector<std::string> tokens;
  EXPECT_EQ(io.ReadV3000Line(in, tokens), 1);
  EXPECT_EQ(tokens, words({"M", "V30", "1", "C", "0.5", "-1.25", "2.0"}));
}

TEST(V3000Line, EndLineIsAcceptedWithTwoTokens) {
  FileIO io;
  std::istringstream in("M  END\n");
  std::vector<std::string> tokens;
  EXPECT_EQ(io.ReadV3000Line(in, tokens), 1);
  EXPECT_EQ(tokens, words({"M", "END"}));
}

TEST(V3000Line, LinesNotOfTheV3000FormFail) {
  FileIO io;
  std::vector<std::string> tokens;
  for (const char* text : {"M\n", "\n", "X  V30 1 C\n", "M  V20 1 C\n", "M  CHG  1   1   1\n"}) {
    std::istringstream in(text);
    EXPECT_EQ(io.ReadV3000Line(in, tokens), 0) << text;
  }
  std::istringstream empty("");
  EXPECT_EQ(io.ReadV3000Line(empty, tokens), 0);
}

TEST(V3000Line, TrailingMinusJoinsTheNextLineFromItsFourthToken) {
  FileIO io;
  std::istringstream in("M  V30 1 C 0 0 0 -\nM  V30 dropped CHG=1 MASS=13\nM  V30 2 N 1 1 1\n");
  std::vector<std::string> tokens;
  EXPECT_EQ(io.ReadV3000Line(in, tokens), 1);
  // "M", "V30" and the first data token of the continuation go; the minus stays.
  EXPECT_EQ(tokens, words({"M", "V30", "1", "C", "0", "0", "0", "-", "CHG=1", "MASS=13"}));
  EXPECT_EQ(io.ReadV3000Line(in, tokens), 1);
  EXPECT_EQ(tokens, words({"M", "V30", "2", "N", "1", "1", "1"}));
}

TEST(V3000Line, ContinuationChainsOverSeveralLines) {
  FileIO io;
  std::istringstream in("M  V30 a b -\nM  V30 x c d -\nM  V30 y -\nM  V30 z e\n");
  std::vector<std::string> tokens;
  EXPECT_EQ(io.ReadV3000Line(in, tokens), 1);
  // Each level drops three tokens of the level below it, whose own minus stays.
  EXPECT_EQ(tokens, words({"M", "V30", "a", "b", "-", "c", "d", "-", "-", "e"}));
}

TEST(V3000Line, ContinuationIntoABadLineFailsAndKeepsOnlyTheFirstLine) {
  FileIO io;
  std::istringstream in("M  V30 a b -\nM  V30 x c -\nnot a molfile line\n");
  std::vector<std::string> tokens;
  EXPECT_EQ(io.ReadV3000Line(in, tokens), 0);
  EXPECT_EQ(tokens, words({"M", "V30", "a", "b", "-"}));
}

TEST(V3000Line, ContinuationAtEndOfFileFails) {
  FileIO io;
  std::istringstream in("M  V30 a b -\n");
  std::vector<std::string> tokens;
  EXPECT_EQ(io.ReadV3000Line(in, tokens), 0);
}

TEST(V3000Line, EndlessContinuationIsBoundedByTheFile) {
  FileIO io;
  std::string text;
  for (int i = 0; i < 200000; ++i) text += "M  V30 x y -\n";
  std::istringstream in(text);
  std::vector<std::string> tokens;
  EXPECT_EQ(io.ReadV3000Line(in, tokens), 0);
}

TEST(V3000Line, MinusBeforeACarriageReturnDoesNotContinue) {
  FileIO io;
  std::istringstream in("M  V30 a -\r\nM  V30 x b\r\n");
  std::vector<std::string> tokens;
  EXPECT_EQ(io.ReadV3000Line(in, tokens), 1);
  EXPECT_EQ(tokens, words({"M", "V30", "a", "-"}));
}

TEST(V3000Line, LineOfTheLimitFailsAndOneShorterPasses) {
  FileIO io;
  std::vector<std::string> tokens;
  const std::string head = "M  V30 ";
  std::string fits = head + std::string(32767 - head.size(), 'a');
  std::istringstream ok(fits + "\nM  END\n");
  EXPECT_EQ(io.ReadV3000Line(ok, tokens), 1);
  EXPECT_EQ(tokens.size(), 3u);
  EXPECT_EQ(io.ReadV3000Line(ok, tokens), 1);

  std::string too_long = head + std::string(32768 - head.size(), 'a');
  std::istringstream bad(too_long + "\nM  END\n");
  EXPECT_EQ(io.ReadV3000Line(bad, tokens), 0);
  // The stream stays failed, as after a bounded read that ran out of room.
  EXPECT_EQ(io.ReadV3000Line(bad, tokens), 0);
}

// ---- V3000 blocks ----------------------------------------------------------------

TEST(V3000File, AtomsGoToTheCrystalArraysAndTheSlotIsOnlySized) {
  FileIO io;
  allocate_slots(io, 1);
  allocate_crystal(io, 3);
  std::string out = txtest::capture_stdout([&] { io.read_data_mol(mol_path("water_v3000.mol").c_str(), 0, false); });
  EXPECT_EQ(out, "");  // the SGROUP block is skipped without a word
  ASSERT_EQ(io.mol_natoms[0], 3);
  for (int k = 0; k < 3; ++k) EXPECT_EQ(io.mol_elem[0][k], 0);
  for (int k = 0; k < 9; ++k) EXPECT_EQ(io.mol_x[0][k], 0.0);
  EXPECT_EQ(io.cif_atypes[0], 8);
  EXPECT_EQ(io.cif_atypes[1], 1);
  EXPECT_EQ(io.cif_atypes[2], 1);  // "h"
  const double want[9] = {0.0, 0.0, 0.1173, 0.0, 0.7572, -0.4692, 0.0, -0.7572, -0.4692};
  for (int k = 0; k < 9; ++k) EXPECT_DOUBLE_EQ(io.cif_x[k], want[k]) << k;
  EXPECT_EQ(io.atom_index_map, (std::map<int, int>{{1, 1}, {2, 2}, {3, 3}}));
  EXPECT_EQ(io.v3000_tokens, words({"M", "END"}));
}

TEST(V3000File, UnknownBlockWarnsOnlyWithDebugLevel) {
  FileIO io;
  io.debug_level = 1;
  allocate_slots(io, 1);
  allocate_crystal(io, 3);
  std::string out = txtest::capture_stdout([&] { io.read_data_mol(mol_path("water_v3000.mol").c_str(), 0, false); });
  EXPECT_EQ(out, "WARNING: SGROUP blocks are not currently implemented and their contents are ignored.\n");
}

TEST(V3000File, FileWithoutEndLineReturnsAtEndOfFileWithoutError) {
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    allocate_slots(io, 1);
    allocate_crystal(io, 2);
    io.read_data_mol(mol_path("no_end_line_v3000.mol").c_str(), 0, false);
    if (io.mol_natoms[0] != 2 || io.cif_atypes[0] != 6 || io.cif_atypes[1] != 7 || io.cif_x[5] != -3.0) std::exit(3);
  });
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, "");
}

TEST(V3000File, BlockReaderResultAtEndOfFileWithoutEndLine) {
  FileIO io;
  allocate_slots(io, 1);
  allocate_crystal(io, 1);
  // Worked by hand: END CTAB fails the inner level's BEGIN test, the outer level
  // accepts it and reads on, and the failed read at end of file gives 0.
  std::istringstream in("M  V30 BEGIN CTAB\nM  V30 COUNTS 1\nM  V30 END CTAB\n");
  EXPECT_EQ(io.ReadV3000Block(in, 0, false), 0);
  // With the file's end line the result is 1.
  std::istringstream ended("M  V30 BEGIN CTAB\nM  V30 COUNTS 1\nM  V30 END CTAB\nM  END\n");
  EXPECT_EQ(io.ReadV3000Block(ended, 0, false), 1);
  // Without a final line feed the stream is spent after END CTAB: the result is 1.
  std::istringstream spent("M  V30 BEGIN CTAB\nM  V30 COUNTS 1\nM  V30 END CTAB");
  EXPECT_EQ(io.ReadV3000Block(spent, 0, false), 1);
}

TEST(V3000File, CtabWithoutCountsLineFails) {
  FileIO io;
  allocate_slots(io, 1);
  std::istringstream in("M  V30 BEGIN CTAB\nM  V30 BEGIN ATOM\n");
  EXPECT_EQ(io.ReadV3000Block(in, 0, false), 0);
  EXPECT_EQ(io.mol_elem[0], nullptr);
}

TEST(V3000File, LineOtherThanBeginFails) {
  FileIO io;
  std::istringstream in("M  V30 COUNTS 1 0 0 0 0\n");
  EXPECT_EQ(io.ReadV3000Block(in, 0, false), 0);
}

TEST(V3000File, EndOfCtabFollowedByAnotherLineThanEndOrCtabFails) {
  FileIO io;
  allocate_slots(io, 1);
  // The inner level stops at the stray COUNTS line (no BEGIN); its tokens say
  // neither END nor CTAB, so the outer level fails as well.
  std::istringstream in("M  V30 BEGIN CTAB\nM  V30 COUNTS 0\nM  V30 COUNTS 9\nM  END\n");
  EXPECT_EQ(io.ReadV3000Block(in, 0, false), 0);
}

TEST(V3000File, LinknodeLineIsPassedOver) {
  FileIO io;
  std::istringstream in("M  V30 LINKNODE 1 4 2 1 2 1 5\nM  END\n");
  EXPECT_EQ(io.ReadV3000Block(in, 0, false), 1);
}

TEST(V3000File, DeeplyNestedTablesDoNotExhaustTheStack) {
  FileIO io;
  allocate_slots(io, 1);
  std::string text;
  for (int i = 0; i < 100000; ++i) text += "M  V30 BEGIN CTAB\nM  V30 COUNTS 1\n";
  std::istringstream in(text);
  EXPECT_EQ(io.ReadV3000Block(in, 0, false), 0);
  EXPECT_EQ(io.mol_natoms[0], 1);
}

TEST(V3000File, FailedSubBlockIsSwallowedAsSuccess) {
  FileIO io;
  allocate_crystal(io, 2);
  // Token 7 is no key=value pair: the atom block fails, the block reader gives 1.
  std::istringstream in("M  V30 BEGIN ATOM\nM  V30 1 C 0 0 0 0\nM  V30 2 N 1 1 1\nM  V30 END ATOM\nM  END\n");
  EXPECT_EQ(io.ReadV3000Block(in, 0, false), 1);
  EXPECT_EQ(io.cif_atypes[0], 6);
  EXPECT_EQ(io.cif_atypes[1], 0);  // never reached
}

TEST(V3000File, RGroupBlockIsSkippedToItsOwnEnd) {
  FileIO io;
  io.debug_level = 1;
  allocate_crystal(io, 1);
  std::istringstream in(
      "M  V30 BEGIN RGROUP 1\nM  V30 RLOGIC 0 0 \"\"\nM  V30 BEGIN CTAB\nM  V30 END CTAB\nM  V30 END RGROUP\n"
      "M  END\n");
  int result = 0;
  std::string out = txtest::capture_stdout([&] { result = io.ReadV3000Block(in, 0, false); });
  EXPECT_EQ(result, 1);
  EXPECT_EQ(out, "WARNING: RGROUP and RLOGIC blocks are not currently implemented and their contents are ignored.\n");
}

TEST(V3000File, RGroupWarningNeedsDebugLevel) {
  FileIO io;
  std::istringstream in("M  V30 END RGROUP\n");
  std::string out = txtest::capture_stdout([&] { EXPECT_EQ(io.ReadRGroupBlock(in), 1); });
  EXPECT_EQ(out, "");
}

TEST(V3000File, SkippingReadersGiveZeroWhenTheFileEndsFirst) {
  FileIO io;
  std::istringstream rgroup("M  V30 END CTAB\n");
  EXPECT_EQ(io.ReadRGroupBlock(rgroup), 0);
  std::istringstream other("M  V30 1 SUP 0\n");
  std::string name = "SGROUP";
  EXPECT_EQ(io.ReadUnimplementedBlock(other, name), 0);
  std::istringstream ended("M  V30 1 SUP 0\nM  V30 END SGROUP\n");
  EXPECT_EQ(io.ReadUnimplementedBlock(ended, name), 1);
}

// ---- V3000 atom and bond rows --------------------------------------------------

TEST(V3000Atoms, RGroupAtomWarnsAndLeavesItsRowUnset) {
  FileIO io;
  allocate_crystal(io, 2);
  io.cif_atypes[0] = 99;
  std::istringstream in("M  V30 1 R# 1 2 3\nM  V30 2 O 4 5 6\nM  V30 END ATOM\n");
  int result = 0;
  std::string out = txtest::capture_stdout([&] { result = io.ReadAtomBlock(in); });
  EXPECT_EQ(result, 1);
  EXPECT_EQ(out, "WARNING: A molecule contains an R group which is not implemented!\n");
  EXPECT_EQ(io.cif_atypes[0], 99);
  EXPECT_EQ(io.cif_x[0], 0.0);
  EXPECT_EQ(io.cif_atypes[1], 8);  // the R group row still counts
  EXPECT_DOUBLE_EQ(io.cif_x[5], 6.0);
  EXPECT_EQ(io.atom_index_map, (std::map<int, int>{{1, 1}, {2, 2}}));
}

TEST(V3000Atoms, LongSymbolIsLookedUpByItsFirstTwoLetters) {
  FileIO io;
  allocate_crystal(io, 1);
  std::istringstream in("M  V30 7 Clxyzw 0 0 0\nM  V30 END ATOM\n");
  EXPECT_EQ(io.ReadAtomBlock(in), 1);
  EXPECT_EQ(io.cif_atypes[0], 17);
  EXPECT_EQ(io.atom_index_map.at(7), 1);
}

TEST(V3000Atoms, KeyValuePairsAreAcceptedAndDropped) {
  FileIO io;
  allocate_crystal(io, 1);
  std::istringstream in("M  V30 1 C 1 2 3 CHG=-1 RAD=2 CFG=1 MASS=13 VAL=4 ATTCHPT=1\nM  V30 END ATOM\n");
  EXPECT_EQ(io.ReadAtomBlock(in), 1);
  EXPECT_EQ(io.cif_atypes[0], 6);
}

TEST(V3000Atoms, AtomMappingColumnWithoutEqualsSignEndsTheBlockWithZero) {
  FileIO io;
  allocate_crystal(io, 2);
  std::istringstream in("M  V30 1 C 1 2 3 0\nM  V30 2 N 4 5 6 0\nM  V30 END ATOM\n");
  EXPECT_EQ(io.ReadAtomBlock(in), 0);
  EXPECT_EQ(io.cif_atypes[0], 6);  // the row is written before its tail is checked
  EXPECT_DOUBLE_EQ(io.cif_x[2], 3.0);
  EXPECT_EQ(io.cif_atypes[1], 0);
}

TEST(V3000Atoms, FailedReadGivesZero) {
  FileIO io;
  allocate_crystal(io, 1);
  std::istringstream in("M  V30 1 C 1 2 3\n");
  EXPECT_EQ(io.ReadAtomBlock(in), 0);
}

TEST(V3000Atoms, BondBlockStoresNothingButEntersUnknownAtoms) {
  FileIO io;
  io.atom_index_map[1] = 1;
  io.atom_index_map[2] = 2;
  std::istringstream in("M  V30 1 1 1 2\nM  V30 2 2 2 9 CFG=3\nM  V30 END BOND\n");
  EXPECT_EQ(io.ReadBondBlock(in), 1);
  EXPECT_EQ(io.atom_index_map, (std::map<int, int>{{1, 1}, {2, 2}, {9, 0}}));
}

TEST(V3000Atoms, BondTailWithoutEqualsSignGivesZero) {
  FileIO io;
  std::istringstream in("M  V30 1 1 1 2 3\nM  V30 END BOND\n");
  EXPECT_EQ(io.ReadBondBlock(in), 0);
  std::istringstream cut("M  V30 1 1 1 2\n");
  EXPECT_EQ(io.ReadBondBlock(cut), 0);
}

TEST(V3000Atoms, StoringOperationsDoNothing) {
  FileIO io;
  EXPECT_EQ(io.AddBond(1, 2, 1, 0), 1);
  io.SetFormalCharge(-1);
  io.SetSpinMultiplicity(2);
  io.SetIsotope(13);
  EXPECT_TRUE(io.atom_index_map.empty());
}

TEST(V3000Atoms, EachFileStartsWithAnEmptyIndexMap) {
  FileIO io;
  allocate_slots(io, 1);
  allocate_crystal(io, 3);
  io.atom_index_map[77] = 5;
  io.read_data_mol(mol_path("water_v3000.mol").c_str(), 0, false);
  EXPECT_EQ(io.atom_index_map.count(77), 0u);
}

// ---- V3000 guards -----------------------------------------------------------------

TEST(V3000Fatal, AtomsWithoutCrystalArraysStopWithAMessage) {
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    allocate_slots(io, 1);
    io.read_data_mol(mol_path("water_v3000.mol").c_str(), 0, false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to read '" + mol_path("water_v3000.mol") +
                       "': V3000 atom row 1 needs the crystal arrays, which hold 0 atoms\n");
}

TEST(V3000Fatal, AtomsBeyondShortCrystalArraysStopWithAMessage) {
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    allocate_slots(io, 1);
    allocate_crystal(io, 2);
    io.read_data_mol(mol_path("water_v3000.mol").c_str(), 0, false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to read '" + mol_path("water_v3000.mol") +
                       "': V3000 atom row 3 needs the crystal arrays, which hold 2 atoms\n");
}

TEST(V3000Fatal, HugeAtomCountIsRefusedBeforeAllocating) {
  txtest::TempDir dir;
  const std::string text = "t\np\nc\n  0  0  0     0  0            999 V3000\nM  V30 BEGIN CTAB\n"
                           "M  V30 COUNTS 2000000000 0 0 0 0\nM  END\n";
  txtest::write_file("huge.mol", text);
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    allocate_slots(io, 1);
    io.read_data_mol("huge.mol", 0, false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kHead);
  EXPECT_EQ(r.err, "Failed to read 'huge.mol': V3000 atom count 2000000000 does not fit a file of " +
                       std::to_string(text.size()) + " bytes\n");
}

TEST(V3000Fatal, NegativeAtomCountIsRefused) {
  txtest::TempDir dir;
  const std::string text = "t\np\nc\n  0  0  0     0  0            999 V3000\nM  V30 BEGIN CTAB\n"
                           "M  V30 COUNTS -4 0 0 0 0\nM  END\n";
  txtest::write_file("negative.mol", text);
  txtest::RunResult r = txtest::run_forked([] {
    FileIO io;
    allocate_slots(io, 1);
    io.read_data_mol("negative.mol", 0, false);
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "Failed to read 'negative.mol': V3000 atom count -4 does not fit a file of " +
                       std::to_string(text.size()) + " bytes\n");
}

}  // namespace
