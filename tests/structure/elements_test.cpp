// The element table and its look-ups by symbol, mass and index.
#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <string>

#include "fileio.h"

namespace {

// A second copy of the element table, transcribed apart from the source and in
// another layout, so that a slip in either copy shows as a mismatch.
const char* const kSymbols[] = {
    "  ", "H ", "He", "Li", "Be", "B ", "C ", "N ", "O ", "F ", "Ne", "Na", "Mg",
    "Al", "Si", "P ", "S ", "Cl", "Ar", "K ", "Ca", "Sc", "Ti", "V ", "Cr", "Mn",
    "Fe", "Co", "Ni", "Cu", "Zn", "Ga", "Ge", "As", "Se", "Br", "Kr", "Rb", "Sr",
    "Y ", "Zr", "Nb", "Mo", "Tc", "Ru", "Rh", "Pd", "Ag", "Cd", "In", "Sn", "Sb",
    "Te", "I ", "Xe", "Cs", "Ba", "La", "Ce", "Pr", "Nd", "Pm", "Sm", "Eu", "Gd",
    "Tb", "Dy", "Ho", "Er", "Tm", "Yb", "Lu", "Hf", "Ta", "W ", "Re", "Os", "Ir",
    "Pt", "Au", "Hg", "Tl", "Pb", "Bi", "Po", "At", "Rn", "Fr", "Ra", "Ac", "Th",
    "Pa", "U ", "Np", "Pu", "Am", "Cm", "Bk", "Cf", "Es", "Fm", "Md", "No", "Lr",
};
const double kMasses[] = {
    0, 1.00794, 4.0026, 6.941, 9.01218, 10.811, 12.011, 14.0067, 15.9994, 18.9984,
    20.1797, 22.9898, 24.305, 26.9815, 28.0855, 30.9738, 32.066, 35.4527, 39.948, 39.0983,
    40.078, 44.9559, 47.88, 50.9415, 51.996, 54.938, 55.847, 58.9332, 58.6934, 63.546,
    65.39, 69.723, 72.61, 74.9216, 78.96, 79.904, 83.8, 85.4678, 87.62, 88.9059,
    91.224, 92.9064, 95.94, 98, 101.07, 102.906, 106.42, 107.868, 112.41, 114.82,
    118.71, 121.757, 127.6, 126.904, 131.29, 132.905, 137.33, 138.905, 140.12, 140.908,
    144.24, 145, 150.36, 151.965, 157.25, 158.925, 162.5, 164.93, 167.26, 168.934,
    173.04, 174.967, 178.49, 180.948, 183.85, 186.207, 190.2, 192.22, 195.08, 196.966,
    200.59, 204.282, 207.2, 208.98, 209, 210, 222, 223, 226.025, 227,
    232.038, 231.036, 238.029, 237.048, 244, 243, 247, 247, 251, 252,
    257, 258, 259, 260,
};
const int kCovalent[] = {
    180, 80, 400, 170, 88, 208, 180, 170, 170, 160, 280, 243, 275,
    338, 300, 259, 255, 250, 392, 332, 248, 360, 368, 332, 338, 338,
    335, 332, 405, 380, 362, 305, 292, 302, 305, 302, 400, 368, 280,
    445, 390, 370, 368, 338, 350, 362, 375, 398, 422, 408, 365, 365,
    368, 350, 425, 418, 335, 468, 458, 455, 452, 450, 450, 498, 448,
    440, 438, 435, 432, 430, 485, 430, 392, 358, 342, 338, 342, 330,
    375, 375, 425, 388, 385, 385, 420, 302, 475, 450, 358, 295, 255,
    222, 242, 238, 232, 230, 228, 225, 222, 220, 218, 215, 212, 210,
};
const int kVanDerWaals[] = {
    360, 275, 550, 305, 157, 387, 387, 350, 337, 325, 505, 550, 375,
    375, 550, 470, 452, 437, 692, 597, 487, 330, 487, 265, 282, 297,
    487, 282, 310, 287, 287, 387, 999, 207, 225, 437, 475, 662, 505,
    402, 355, 332, 437, 450, 300, 305, 360, 387, 437, 362, 417, 280,
    315, 437, 525, 752, 602, 457, 465, 405, 447, 440, 435, 490, 422,
    415, 407, 402, 397, 392, 385, 382, 350, 305, 315, 325, 395, 305,
    387, 362, 495, 427, 540, 432, 302, 280, 575, 810, 642, 530, 460,
    400, 437, 427, 417, 415, 412, 410, 407, 405, 402, 400, 397, 395,
};
const int kColour[] = {
    12, 4, 5, 14, 12, 13, 0, 1, 2, 6, 12, 7, 15,
    9, 6, 8, 3, 13, 12, 12, 9, 12, 9, 12, 9, 9,
    8, 12, 10, 10, 10, 12, 12, 12, 12, 10, 12, 12, 12,
    12, 12, 12, 12, 12, 12, 12, 12, 9, 12, 12, 12, 12,
    12, 11, 12, 12, 8, 12, 12, 12, 12, 12, 12, 12, 12,
    12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12,
    12, 6, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12,
    12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12,
};
const double kBondRadius[] = {
    99999.99, 0.35, 1.22, 1.23, 0.89, 0.88, 0.77, 0.72, 0.66, 0.58,
    1.6, 1.4, 1.36, 1.25, 1.17, 1.1, 1.04, 0.99, 1.91, 2.03,
    1.74, 1.44, 1.32, 1.22, 1.19, 1.17, 1.165, 1.16, 1.15, 1.17,
    1.25, 1.25, 1.22, 1.21, 1.17, 1.14, 1.98, 2.22, 1.92, 1.62,
    1.45, 1.34, 1.29, 1.27, 1.24, 1.25, 1.28, 1.34, 1.41, 1.5,
    1.4, 1.41, 1.37, 1.33, 2.09, 2.35, 1.98, 1.69, 1.65, 1.65,
    1.64, 1.65, 1.66, 1.65, 1.61, 1.59, 1.59, 1.58, 1.57, 1.56,
    1.56, 1.56, 1.44, 1.34, 1.3, 1.28, 1.26, 1.26, 1.29, 1.34,
    1.44, 1.55, 1.54, 1.52, 1.53, 1.5, 2.2, 3.24, 2.68, 2.25,
    2.16, 1.93, 1.66, 1.57, 1.81, 2.21, 1.43, 1.42, 1.4, 1.39,
    1.38, 1.37, 1.36, 1.34, 1.3, 1.3,
};

constexpr int kRows = static_cast<int>(sizeof(kSymbols) / sizeof(kSymbols[0]));
static_assert(kRows == 104, "symbols");
static_assert(sizeof(kMasses) / sizeof(kMasses[0]) == 104, "masses");
static_assert(sizeof(kCovalent) / sizeof(kCovalent[0]) == 104, "covalent radii");
static_assert(sizeof(kVanDerWaals) / sizeof(kVanDerWaals[0]) == 104, "van der Waals radii");
static_assert(sizeof(kColour) / sizeof(kColour[0]) == 104, "colours");
static_assert(sizeof(kBondRadius) / sizeof(kBondRadius[0]) == 106, "bond radii");

std::string name_from_mass(FileIO& io, double mass) {
  char out[8];
  std::memset(out, 'x', sizeof(out));
  io.find_element_name_from_mass(mass, out);
  EXPECT_EQ(out[2], '\0') << "mass " << mass;
  return std::string(out);
}

std::string name_from_index(FileIO& io, int index) {
  char out[8];
  std::memset(out, 'x', sizeof(out));
  io.find_element_name_from_index(index, out);
  return std::string(out);
}

}  // namespace

TEST(ElementTable, HasExactly104RowsAnd106BondRadii) {
  EXPECT_EQ(NUM_ELEMENTS_M, 104);
  EXPECT_EQ(sizeof(Elements_m) / sizeof(Elements_m[0]), 104u);
  EXPECT_EQ(sizeof(nw_elem_radius_m) / sizeof(nw_elem_radius_m[0]), 106u);
}

TEST(ElementTable, EveryRowMatchesTheSecondTranscription) {
  for (int i = 0; i < kRows; ++i) {
    SCOPED_TRACE("row " + std::to_string(i));
    ASSERT_NE(Elements_m[i].symbol, nullptr);
    EXPECT_STREQ(Elements_m[i].symbol, kSymbols[i]);
    EXPECT_EQ(Elements_m[i].mass, kMasses[i]);
    EXPECT_EQ(Elements_m[i].cov_radius, kCovalent[i]);
    EXPECT_EQ(Elements_m[i].vdw_radius, kVanDerWaals[i]);
    EXPECT_EQ(Elements_m[i].color, kColour[i]);
    EXPECT_EQ(nw_elem_radius_m[i], kBondRadius[i]);
  }
}

TEST(ElementTable, BondRadiusPlaceholderAndSpareEntries) {
  EXPECT_EQ(nw_elem_radius_m[0], 99999.99);
  EXPECT_EQ(nw_elem_radius_m[104], 1.3);
  EXPECT_EQ(nw_elem_radius_m[105], 1.3);
}

TEST(ElementTable, SymbolsAreTwoCharactersCapitalThenLowerCaseOrBlank) {
  EXPECT_STREQ(Elements_m[0].symbol, "  ");
  for (int i = 1; i < NUM_ELEMENTS_M; ++i) {
    SCOPED_TRACE("row " + std::to_string(i));
    const char* s = Elements_m[i].symbol;
    ASSERT_EQ(std::strlen(s), 2u);
    EXPECT_TRUE(std::isupper(static_cast<unsigned char>(s[0])));
    EXPECT_TRUE(s[1] == ' ' || std::islower(static_cast<unsigned char>(s[1])));
  }
}

TEST(ElementTable, NamesAreCapitalsInBritishSpellingAndRowZeroHasNone) {
  EXPECT_STREQ(Elements_m[0].name, "");
  EXPECT_STREQ(Elements_m[1].name, "HYDROGEN");
  EXPECT_STREQ(Elements_m[6].name, "CARBON");
  EXPECT_STREQ(Elements_m[13].name, "ALUMINIUM");
  EXPECT_STREQ(Elements_m[16].name, "SULPHUR");
  EXPECT_STREQ(Elements_m[55].name, "CAESIUM");
  EXPECT_STREQ(Elements_m[103].name, "LAWRENCIUM");
  for (int i = 1; i < NUM_ELEMENTS_M; ++i) {
    SCOPED_TRACE("row " + std::to_string(i));
    const std::string name = Elements_m[i].name;
    ASSERT_FALSE(name.empty());
    for (char ch : name) EXPECT_TRUE(ch >= 'A' && ch <= 'Z') << name;
  }
}

// ---- look-up by name --------------------------------------------------------

TEST(ElementLookup, IndexFromNameIgnoresCaseOfBothLetters) {
  FileIO io;
  EXPECT_EQ(io.find_element_index_from_name("He"), 2);
  EXPECT_EQ(io.find_element_index_from_name("HE"), 2);
  EXPECT_EQ(io.find_element_index_from_name("he"), 2);
}

TEST(ElementLookup, IndexFromNameMissesUnknownSymbol) {
  FileIO io;
  EXPECT_EQ(io.find_element_index_from_name("X"), -1);
  EXPECT_EQ(io.find_element_index_from_name("Xx"), -1);
}

TEST(ElementLookup, TwoBlanksFindThePlaceholderRow) {
  FileIO io;
  EXPECT_EQ(io.find_element_index_from_name("  "), 0);
}

TEST(ElementLookup, OneLetterNameIsPaddedWithABlank) {
  FileIO io;
  EXPECT_EQ(io.find_element_index_from_name("C"), 6);
  EXPECT_EQ(io.find_element_index_from_name("c"), 6);
  EXPECT_EQ(io.find_element_index_from_name("H"), 1);
  EXPECT_EQ(io.find_element_index_from_name(" "), 0);
}

TEST(ElementLookup, CharactersFromTheThirdOnAreIgnored) {
  FileIO io;
  EXPECT_EQ(io.find_element_index_from_name("CL"), 17);
  EXPECT_EQ(io.find_element_index_from_name("cl"), 17);
  EXPECT_EQ(io.find_element_index_from_name("Cl1"), 17);
  EXPECT_EQ(io.find_element_index_from_name("Cl12xyz"), 17);
  EXPECT_EQ(io.find_element_index_from_name("C "), 6);
  EXPECT_EQ(io.find_element_index_from_name("C 7"), 6);
}

TEST(ElementLookup, DigitAsSecondCharacterMatchesNothing) {
  FileIO io;
  EXPECT_EQ(io.find_element_index_from_name("C1"), -1);
  EXPECT_EQ(io.find_element_index_from_name("H12"), -1);
}

TEST(ElementLookup, UpperCaseTwoLetterNameIsReadAsSymbolNotAsFormula) {
  FileIO io;
  // CO folds to Co: cobalt, not carbon.
  EXPECT_EQ(io.find_element_index_from_name("CO"), 27);
  EXPECT_EQ(io.find_element_index_from_name("NI"), 28);
}

TEST(ElementLookup, EmptyNameMatchesNothing) {
  FileIO io;
  EXPECT_EQ(io.find_element_index_from_name(""), -1);
  EXPECT_EQ(io.find_element_radius_from_name(""), 9999.99);
}

TEST(ElementLookup, EverySymbolFindsItsOwnRowInAnyCase) {
  FileIO io;
  for (int i = 1; i < kRows; ++i) {
    std::string sym = kSymbols[i];
    if (sym[1] == ' ') sym.resize(1);
    std::string upper = sym;
    std::string lower = sym;
    for (char& ch : upper) ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
    for (char& ch : lower) ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
    EXPECT_EQ(io.find_element_index_from_name(sym), i) << sym;
    EXPECT_EQ(io.find_element_index_from_name(upper), i) << upper;
    EXPECT_EQ(io.find_element_index_from_name(lower), i) << lower;
    EXPECT_EQ(io.find_element_radius_from_name(sym), kBondRadius[i]) << sym;
  }
}

TEST(ElementLookup, RadiusFromNameIsTheBondRadius) {
  FileIO io;
  EXPECT_EQ(io.find_element_radius_from_name("C"), 0.77);
  EXPECT_EQ(io.find_element_radius_from_name("cl"), 0.99);
  EXPECT_EQ(io.find_element_radius_from_name("Fe3"), 1.165);
}

TEST(ElementLookup, RadiusFromNameOfUnknownSymbolIs9999_99) {
  FileIO io;
  EXPECT_EQ(io.find_element_radius_from_name("X"), 9999.99);
  EXPECT_EQ(io.find_element_radius_from_name("C1"), 9999.99);
}

TEST(ElementLookup, RadiusFromNameOfTwoBlanksIsThePlaceholderRadius) {
  FileIO io;
  EXPECT_EQ(io.find_element_radius_from_name("  "), 99999.99);
}

// ---- look-up by mass ----------------------------------------------------------

TEST(ElementLookup, NameFromMassKeepsTheBlankOfAOneLetterSymbol) {
  FileIO io;
  EXPECT_EQ(name_from_mass(io, 12.0), "C ");
  EXPECT_EQ(name_from_mass(io, 1.0), "H ");
}

TEST(ElementLookup, NameFromMassNearZeroHitsPlaceholderRowAndFails) {
  FileIO io;
  EXPECT_EQ(name_from_mass(io, 0.05), "A ");
  EXPECT_EQ(name_from_mass(io, 0.0), "A ");
  EXPECT_EQ(name_from_mass(io, -0.05), "A ");
}

TEST(ElementLookup, NameFromMassTakesTheFirstRowWithinTheWindow) {
  FileIO io;
  // Ni (58.6934) comes after Co (58.9332), which is 0.23 away.
  EXPECT_EQ(name_from_mass(io, 58.7), "Ni");
  // Cm and Bk both have 247; Cm comes first.
  EXPECT_EQ(name_from_mass(io, 247.0), "Cm");
  EXPECT_EQ(name_from_mass(io, 32.066), "S ");
}

TEST(ElementLookup, NameFromMassWindowIsOneTenthWide) {
  FileIO io;
  EXPECT_EQ(name_from_mass(io, 1.10793), "H ");  // 0.09999 above hydrogen
  EXPECT_EQ(name_from_mass(io, 1.10795), "A ");  // 0.10001 above hydrogen
  EXPECT_EQ(name_from_mass(io, 97.91), "Tc");
  EXPECT_EQ(name_from_mass(io, 97.89), "A ");
}

TEST(ElementLookup, NameFromMassWithNoRowNearbyFails) {
  FileIO io;
  EXPECT_EQ(name_from_mass(io, 100.0), "A ");
  EXPECT_EQ(name_from_mass(io, 1000.0), "A ");
}

// ---- look-ups by index --------------------------------------------------------

TEST(ElementLookup, NameFromIndexDropsTheBlankOfAOneLetterSymbol) {
  FileIO io;
  EXPECT_EQ(name_from_index(io, 6), "C");
  EXPECT_EQ(name_from_index(io, 1), "H");
  EXPECT_EQ(name_from_index(io, 92), "U");
}

TEST(ElementLookup, NameFromIndexCopiesTwoLetterSymbols) {
  FileIO io;
  EXPECT_EQ(name_from_index(io, 2), "He");
  EXPECT_EQ(name_from_index(io, 17), "Cl");
  EXPECT_EQ(name_from_index(io, 103), "Lr");
}

TEST(ElementLookup, NameFromIndexOfPlaceholderRowIsOneBlank) {
  FileIO io;
  EXPECT_EQ(name_from_index(io, 0), " ");
}

TEST(ElementLookup, NameFromIndexAndFromMassDifferOnlyInTheBlank) {
  FileIO io;
  for (int i = 1; i < kRows; ++i) {
    std::string sym = kSymbols[i];
    const std::string from_index = name_from_index(io, i);
    if (sym[1] == ' ') {
      EXPECT_EQ(from_index, sym.substr(0, 1));
    } else {
      EXPECT_EQ(from_index, sym);
    }
  }
  EXPECT_EQ(name_from_index(io, 8), "O");
  EXPECT_EQ(name_from_mass(io, 15.9994), "O ");
}

TEST(ElementLookup, MassFromIndexIsTheTableMass) {
  FileIO io;
  EXPECT_EQ(io.find_element_mass_from_index(6), 12.011);
  EXPECT_EQ(io.find_element_mass_from_index(1), 1.00794);
  EXPECT_EQ(io.find_element_mass_from_index(0), 0.0);
  for (int i = 0; i < kRows; ++i) EXPECT_EQ(io.find_element_mass_from_index(i), kMasses[i]) << i;
}

TEST(ElementLookup, RadiusFromIndexIsCovalentColumnOver250) {
  FileIO io;
  EXPECT_DOUBLE_EQ(io.find_element_radius_from_index(6), 0.72);
  EXPECT_EQ(io.find_element_radius_from_index(6), 180 / 250.0);
  EXPECT_EQ(io.find_element_radius_from_index(1), 80 / 250.0);
  for (int i = 0; i < kRows; ++i) EXPECT_EQ(io.find_element_radius_from_index(i), kCovalent[i] / 250.0) << i;
}

TEST(ElementLookup, CovalentAndBondRadiusOfCarbonDiffer) {
  FileIO io;
  EXPECT_DOUBLE_EQ(io.find_element_radius_from_index(6), 0.72);
  EXPECT_EQ(io.find_element_radius_from_index_nw(6), 0.77);
  EXPECT_EQ(io.find_element_radius_from_name("C"), 0.77);
}

TEST(ElementLookup, BondRadiusFromIndexZeroIsThePlaceholder) {
  FileIO io;
  EXPECT_EQ(io.find_element_radius_from_index_nw(0), 99999.99);
}

TEST(ElementLookup, BondRadiusFromIndexCoversTheSpareEntries) {
  FileIO io;
  EXPECT_EQ(io.find_element_radius_from_index_nw(104), 1.3);
  EXPECT_EQ(io.find_element_radius_from_index_nw(105), 1.3);
  for (int i = 0; i < 106; ++i) EXPECT_EQ(io.find_element_radius_from_index_nw(i), kBondRadius[i]) << i;
}

// An index outside the tables (readers store -1 for an unknown symbol) is
// answered as an unknown symbol: radius 9999.99, mass 0.0, symbol "A".
TEST(ElementLookup, IndexOutsideTheTableAnswersAsAnUnknownSymbol) {
  FileIO io;
  for (int index : {-1, -1000, 104, 105, 1 << 30}) {
    SCOPED_TRACE("index " + std::to_string(index));
    EXPECT_EQ(io.find_element_mass_from_index(index), 0.0);
    EXPECT_EQ(io.find_element_radius_from_index(index), 9999.99);
    EXPECT_EQ(name_from_index(io, index), "A");
  }
  EXPECT_EQ(io.find_element_radius_from_index(-1), io.find_element_radius_from_name("X"));
}

TEST(ElementLookup, BondRadiusIndexOutsideItsTableAnswersAsAnUnknownSymbol) {
  FileIO io;
  EXPECT_EQ(io.find_element_radius_from_index_nw(-1), 9999.99);
  EXPECT_EQ(io.find_element_radius_from_index_nw(106), 9999.99);
  EXPECT_EQ(io.find_element_radius_from_index_nw(-1), io.find_element_radius_from_name("X"));
}
