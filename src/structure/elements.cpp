// FileIO: the element table and the look-ups by symbol, mass and index.
#include <cctype>
#include <cmath>
#include <string>

#include "fileio.h"

// Columns: symbol, mass (amu), covalent radius and van der Waals radius
// (1/250 angstrom), colour index, name. The index is the atomic number; row 0
// is a placeholder whose blank symbol is what a blank type field matches.
const ElementData Elements_m[NUM_ELEMENTS_M] = {
    /*   0 */ {"  ", 0.0,      180, 360, 12, ""},
    /*   1 */ {"H ", 1.00794,  80,  275, 4,  "HYDROGEN"},
    /*   2 */ {"He", 4.0026,   400, 550, 5,  "HELIUM"},
    /*   3 */ {"Li", 6.941,    170, 305, 14, "LITHIUM"},
    /*   4 */ {"Be", 9.01218,  88,  157, 12, "BERYLLIUM"},
    /*   5 */ {"B ", 10.811,   208, 387, 13, "BORON"},
    /*   6 */ {"C ", 12.011,   180, 387, 0,  "CARBON"},
    /*   7 */ {"N ", 14.0067,  170, 350, 1,  "NITROGEN"},
    /*   8 */ {"O ", 15.9994,  170, 337, 2,  "OXYGEN"},
    /*   9 */ {"F ", 18.9984,  160, 325, 6,  "FLUORINE"},
    /*  10 */ {"Ne", 20.1797,  280, 505, 12, "NEON"},
    /*  11 */ {"Na", 22.9898,  243, 550, 7,  "SODIUM"},
    /*  12 */ {"Mg", 24.305,   275, 375, 15, "MAGNESIUM"},
    /*  13 */ {"Al", 26.9815,  338, 375, 9,  "ALUMINIUM"},
    /*  14 */ {"Si", 28.0855,  300, 550, 6,  "SILICON"},
    /*  15 */ {"P ", 30.9738,  259, 470, 8,  "PHOSPHORUS"},
    /*  16 */ {"S ", 32.066,   255, 452, 3,  "SULPHUR"},
    /*  17 */ {"Cl", 35.4527,  250, 437, 13, "CHLORINE"},
    /*  18 */ {"Ar", 39.948,   392, 692, 12, "ARGON"},
    /*  19 */ {"K ", 39.0983,  332, 597, 12, "POTASSIUM"},
    /*  20 */ {"Ca", 40.078,   248, 487, 9,  "CALCIUM"},
    /*  21 */ {"Sc", 44.9559,  360, 330, 12, "SCANDIUM"},
    /*  22 */ {"Ti", 47.88,    368, 487, 9,  "TITANIUM"},
    /*  23 */ {"V ", 50.9415,  332, 265, 12, "VANADIUM"},
    /*  24 */ {"Cr", 51.996,   338, 282, 9,  "CHROMIUM"},
    /*  25 */ {"Mn", 54.938,   338, 297, 9,  "MANGANESE"},
    /*  26 */ {"Fe", 55.847,   335, 487, 8,  "IRON"},
    /*  27 */ {"Co", 58.9332,  332, 282, 12, "COBALT"},
    /*  28 */ {"Ni", 58.6934,  405, 310, 10, "NICKEL"},
    /*  29 */ {"Cu", 63.546,   380, 287, 10, "COPPER"},
    /*  30 */ {"Zn", 65.39,    362, 287, 10, "ZINC"},
    /*  31 */ {"Ga", 69.723,   305, 387, 12, "GALLIUM"},
    /*  32 */ {"Ge", 72.61,    292, 999, 12, "GERMANIUM"},
    /*  33 */ {"As", 74.9216,  302, 207, 12, "ARSENIC"},
    /*  34 */ {"Se", 78.96,    305, 225, 12, "SELENIUM"},
    /*  35 */ {"Br", 79.904,   302, 437, 10, "BROMINE"},
    /*  36 */ {"Kr", 83.8,     400, 475, 12, "KRYPTON"},
    /*  37 */ {"Rb", 85.4678,  368, 662, 12, "RUBIDIUM"},
    /*  38 */ {"Sr", 87.62,    280, 505, 12, "STRONTIUM"},
    /*  39 */ {"Y ", 88.9059,  445, 402, 12, "YTTRIUM"},
    /*  40 */ {"Zr", 91.224,   390, 355, 12, "ZIRCONIUM"},
    /*  41 */ {"Nb", 92.9064,  370, 332, 12, "NIOBIUM"},
    /*  42 */ {"Mo", 95.94,    368, 437, 12, "MOLYBDENUM"},
    /*  43 */ {"Tc", 98.0,     338, 450, 12, "TECHNETIUM"},
    /*  44 */ {"Ru", 101.07,   350, 300, 12, "RUTHENIUM"},
    /*  45 */ {"Rh", 102.906,  362, 305, 12, "RHODIUM"},
    /*  46 */ {"Pd", 106.42,   375, 360, 12, "PALLADIUM"},
    /*  47 */ {"Ag", 107.868,  398, 387, 9,  "SILVER"},
    /*  48 */ {"Cd", 112.41,   422, 437, 12, "CADMIUM"},
    /*  49 */ {"In", 114.82,   408, 362, 12, "INDIUM"},
    /*  50 */ {"Sn", 118.71,   365, 417, 12, "TIN"},
    /*  51 */ {"Sb", 121.757,  365, 280, 12, "ANTIMONY"},
    /*  52 */ {"Te", 127.6,    368, 315, 12, "TELLURIUM"},
    /*  53 */ {"I ", 126.904,  350, 437, 11, "IODINE"},
    /*  54 */ {"Xe", 131.29,   425, 525, 12, "XENON"},
    /*  55 */ {"Cs", 132.905,  418, 752, 12, "CAESIUM"},
    /*  56 */ {"Ba", 137.33,   335, 602, 8,  "BARIUM"},
    /*  57 */ {"La", 138.905,  468, 457, 12, "LANTHANUM"},
    /*  58 */ {"Ce", 140.12,   458, 465, 12, "CERIUM"},
    /*  59 */ {"Pr", 140.908,  455, 405, 12, "PRASEODYMIUM"},
    /*  60 */ {"Nd", 144.24,   452, 447, 12, "NEODYMIUM"},
    /*  61 */ {"Pm", 145.0,    450, 440, 12, "PROMETHIUM"},
    /*  62 */ {"Sm", 150.36,   450, 435, 12, "SAMARIUM"},
    /*  63 */ {"Eu", 151.965,  498, 490, 12, "EUROPIUM"},
    /*  64 */ {"Gd", 157.25,   448, 422, 12, "GADOLINIUM"},
    /*  65 */ {"Tb", 158.925,  440, 415, 12, "TERBIUM"},
    /*  66 */ {"Dy", 162.5,    438, 407, 12, "DYSPROSIUM"},
    /*  67 */ {"Ho", 164.93,   435, 402, 12, "HOLMIUM"},
    /*  68 */ {"Er", 167.26,   432, 397, 12, "ERBIUM"},
    /*  69 */ {"Tm", 168.934,  430, 392, 12, "THULIUM"},
    /*  70 */ {"Yb", 173.04,   485, 385, 12, "YTTERBIUM"},
    /*  71 */ {"Lu", 174.967,  430, 382, 12, "LUTETIUM"},
    /*  72 */ {"Hf", 178.49,   392, 350, 12, "HAFNIUM"},
    /*  73 */ {"Ta", 180.948,  358, 305, 12, "TANTALUM"},
    /*  74 */ {"W ", 183.85,   342, 315, 12, "TUNGSTEN"},
    /*  75 */ {"Re", 186.207,  338, 325, 12, "RHENIUM"},
    /*  76 */ {"Os", 190.2,    342, 395, 12, "OSMIUM"},
    /*  77 */ {"Ir", 192.22,   330, 305, 12, "IRIDIUM"},
    /*  78 */ {"Pt", 195.08,   375, 387, 12, "PLATINUM"},
    /*  79 */ {"Au", 196.966,  375, 362, 6,  "GOLD"},
    /*  80 */ {"Hg", 200.59,   425, 495, 12, "MERCURY"},
    /*  81 */ {"Tl", 204.282,  388, 427, 12, "THALLIUM"},
    /*  82 */ {"Pb", 207.2,    385, 540, 12, "LEAD"},
    /*  83 */ {"Bi", 208.98,   385, 432, 12, "BISMUTH"},
    /*  84 */ {"Po", 209.0,    420, 302, 12, "POLONIUM"},
    /*  85 */ {"At", 210.0,    302, 280, 12, "ASTATINE"},
    /*  86 */ {"Rn", 222.0,    475, 575, 12, "RADON"},
    /*  87 */ {"Fr", 223.0,    450, 810, 12, "FRANCIUM"},
    /*  88 */ {"Ra", 226.025,  358, 642, 12, "RADIUM"},
    /*  89 */ {"Ac", 227.0,    295, 530, 12, "ACTINIUM"},
    /*  90 */ {"Th", 232.038,  255, 460, 12, "THORIUM"},
    /*  91 */ {"Pa", 231.036,  222, 400, 12, "PROTACTINIUM"},
    /*  92 */ {"U ", 238.029,  242, 437, 12, "URANIUM"},
    /*  93 */ {"Np", 237.048,  238, 427, 12, "NEPTUNIUM"},
    /*  94 */ {"Pu", 244.0,    232, 417, 12, "PLUTONIUM"},
    /*  95 */ {"Am", 243.0,    230, 415, 12, "AMERICIUM"},
    /*  96 */ {"Cm", 247.0,    228, 412, 12, "CURIUM"},
    /*  97 */ {"Bk", 247.0,    225, 410, 12, "BERKELIUM"},
    /*  98 */ {"Cf", 251.0,    222, 407, 12, "CALIFORNIUM"},
    /*  99 */ {"Es", 252.0,    220, 405, 12, "EINSTEINIUM"},
    /* 100 */ {"Fm", 257.0,    218, 402, 12, "FERMIUM"},
    /* 101 */ {"Md", 258.0,    215, 400, 12, "MENDELEVIUM"},
    /* 102 */ {"No", 259.0,    212, 397, 12, "NOBELIUM"},
    /* 103 */ {"Lr", 260.0,    210, 395, 12, "LAWRENCIUM"},
};

// Bond radii (angstrom) used to separate a crystal into molecules. They differ
// from the covalent column of Elements_m on purpose: separation relies on these,
// bonds inside an already separated molecule on the covalent column.
const double nw_elem_radius_m[106] = {
    /*   0 */ 99999.99, 0.35,  1.22,  1.23,  0.89,  0.88,  0.77,  0.72,
    /*   8 */ 0.66,  0.58,  1.6,   1.4,   1.36,  1.25,  1.17,  1.1,
    /*  16 */ 1.04,  0.99,  1.91,  2.03,  1.74,  1.44,  1.32,  1.22,
    /*  24 */ 1.19,  1.17,  1.165, 1.16,  1.15,  1.17,  1.25,  1.25,
    /*  32 */ 1.22,  1.21,  1.17,  1.14,  1.98,  2.22,  1.92,  1.62,
    /*  40 */ 1.45,  1.34,  1.29,  1.27,  1.24,  1.25,  1.28,  1.34,
    /*  48 */ 1.41,  1.5,   1.4,   1.41,  1.37,  1.33,  2.09,  2.35,
    /*  56 */ 1.98,  1.69,  1.65,  1.65,  1.64,  1.65,  1.66,  1.65,
    /*  64 */ 1.61,  1.59,  1.59,  1.58,  1.57,  1.56,  1.56,  1.56,
    /*  72 */ 1.44,  1.34,  1.3,   1.28,  1.26,  1.26,  1.29,  1.34,
    /*  80 */ 1.44,  1.55,  1.54,  1.52,  1.53,  1.5,   2.2,   3.24,
    /*  88 */ 2.68,  2.25,  2.16,  1.93,  1.66,  1.57,  1.81,  2.21,
    /*  96 */ 1.43,  1.42,  1.4,   1.39,  1.38,  1.37,  1.36,  1.34,
    /* 104 */ 1.3,   1.3,
};

namespace {

constexpr int kBondRadiusEntries = 106;

// Answers for an index outside the tables. Readers store -1 for a symbol that
// is not in the table and later code looks such atoms up by index, so every
// index-taking look-up answers as for a symbol that is not found: radius
// 9999.99 angstrom (as cif_radii holds for it, so an unknown atom bonds the
// same way at separation and when the molecule is made whole), mass 0.0 amu,
// and the symbol "A", the stand-in that the mass look-up also gives.
constexpr double kUnknownRadius = 9999.99;  // angstrom
constexpr double kUnknownMass = 0.0;        // amu
constexpr char kUnknownSymbol = 'A';

bool is_element_row(int index) { return index >= 0 && index < NUM_ELEMENTS_M; }

// The two-letter key: first character upper case, second lower case, a blank
// for a one-character name, anything after the second character ignored. So
// "CL", "cl" and "Cl1" all give "Cl", while "C1" gives "C1" and matches nothing.
// An empty name has no key and matches nothing.
bool element_key(const std::string& name, char key[2]) {
  if (name.empty()) return false;
  key[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(name[0])));
  key[1] = name.size() == 1 ? ' ' : static_cast<char>(std::tolower(static_cast<unsigned char>(name[1])));
  return true;
}

// First row, in ascending order, whose symbol equals the key of `name`; -1 if none.
int element_row_of_name(const std::string& name) {
  char key[2];
  if (!element_key(name, key)) return -1;
  for (int i = 0; i < NUM_ELEMENTS_M; ++i) {
    if (Elements_m[i].symbol[0] == key[0] && Elements_m[i].symbol[1] == key[1]) return i;
  }
  return -1;
}

}  // namespace

int FileIO::find_element_index_from_name(const std::string& name) { return element_row_of_name(name); }

double FileIO::find_element_radius_from_name(const std::string& name) {
  const int index = element_row_of_name(name);
  return index < 0 ? kUnknownRadius : nw_elem_radius_m[index];
}

// `out` needs room for 3 characters. The symbol keeps its trailing blank here,
// unlike find_element_name_from_index; the difference is deliberate and part
// of the interface of the two look-ups. Row 0 lies within 0.1 of any mass
// below 0.1 and is hit first, so such a mass ends as a miss.
void FileIO::find_element_name_from_mass(double mass, char* out) {
  for (int i = 0; i < NUM_ELEMENTS_M; ++i) {
    if (std::fabs(mass - Elements_m[i].mass) < 0.1) {
      if (i == 0) break;
      out[0] = Elements_m[i].symbol[0];
      out[1] = Elements_m[i].symbol[1];
      out[2] = '\0';
      return;
    }
  }
  out[0] = kUnknownSymbol;
  out[1] = ' ';
  out[2] = '\0';
}

// `out` needs room for 3 characters. A one-letter symbol ends right after the
// letter, so that "%s%d" gives labels like "C12"; row 0 gives a single blank.
void FileIO::find_element_name_from_index(int index, char* out) {
  if (!is_element_row(index)) {
    out[0] = kUnknownSymbol;
    out[1] = '\0';
    return;
  }
  out[0] = Elements_m[index].symbol[0];
  out[1] = Elements_m[index].symbol[1];
  out[2] = '\0';
  if (out[1] == ' ') out[1] = '\0';
}

double FileIO::find_element_mass_from_index(int index) {
  return is_element_row(index) ? Elements_m[index].mass : kUnknownMass;
}

// Covalent radius in angstrom, the source of bonds inside a separated molecule.
double FileIO::find_element_radius_from_index(int index) {
  return is_element_row(index) ? Elements_m[index].cov_radius / 250.0 : kUnknownRadius;
}

// Bond radius in angstrom, the source of bonds when a crystal is separated.
double FileIO::find_element_radius_from_index_nw(int index) {
  return index >= 0 && index < kBondRadiusEntries ? nw_elem_radius_m[index] : kUnknownRadius;
}
