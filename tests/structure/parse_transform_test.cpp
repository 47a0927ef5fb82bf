// Symmetry operators to matrix and translation, with the parser's sign and
// numerator rules. Expected values are worked out by hand from those rules.
#include <gtest/gtest.h>

#include <clocale>
#include <string>

#include "fileio.h"

namespace {

struct Parsed {
  double rot[3][3] = {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}};
  double trans[3] = {0, 0, 0};
};

Parsed parse(const std::string& op) {
  FileIO io;
  Parsed p;
  io.ParseTransformString(op, p.rot, p.trans);
  return p;
}

void expect_rot(const Parsed& p, const double want[3][3]) {
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_EQ(p.rot[i][j], want[i][j]) << "rot[" << i << "][" << j << "]";
}

void expect_trans(const Parsed& p, double t0, double t1, double t2) {
  EXPECT_DOUBLE_EQ(p.trans[0], t0);
  EXPECT_DOUBLE_EQ(p.trans[1], t1);
  EXPECT_DOUBLE_EQ(p.trans[2], t2);
}

const double kIdentity[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
const double kZero[3][3] = {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}};

}  // namespace

TEST(ParseTransform, IdentityOperator) {
  const Parsed p = parse("x,y,z");
  expect_rot(p, kIdentity);
  expect_trans(p, 0, 0, 0);
}

TEST(ParseTransform, UpperCaseLettersParse) {
  const double want[3][3] = {{-1, 0, 0}, {0, 1, 0}, {0, 0, -1}};
  const Parsed p = parse("-X+1/2,Y,-Z");
  expect_rot(p, want);
  expect_trans(p, 0.5, 0, 0);
}

TEST(ParseTransform, BlanksAndUnderscoresAreIgnoredInTheCommaForm) {
  const double want[3][3] = {{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}};
  const Parsed p = parse(" y , -x + 1/4 , z_+_3/4 ");
  expect_rot(p, want);
  expect_trans(p, 0, 0.25, 0.75);
}

TEST(ParseTransform, HalfAfterTheLetter) { expect_trans(parse("x+1/2,y,z"), 0.5, 0, 0); }

TEST(ParseTransform, HalfBeforeTheLetter) {
  const Parsed p = parse("1/2+x,y,z");
  expect_rot(p, kIdentity);
  expect_trans(p, 0.5, 0, 0);
}

TEST(ParseTransform, NegativeHalfWrapsToPositiveHalf) {
  const Parsed p = parse("x-1/2,y,z");
  expect_rot(p, kIdentity);
  expect_trans(p, 0.5, 0, 0);  // -0.5 + 1
}

TEST(ParseTransform, NegativeFractionWrapsIntoTheCell) {
  expect_trans(parse("x,y-3/4,z"), 0, 0.25, 0);  // -0.75 + 1
}

TEST(ParseTransform, NegativeFractionBeforeTheLetter) {
  const Parsed p = parse("-1/2+x,y,z");
  expect_rot(p, kIdentity);  // "+" cleared the sign before x
  expect_trans(p, 0.5, 0, 0);
}

TEST(ParseTransform, DecimalTranslationTakesItsSign) {
  const double want[3][3] = {{-1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  const Parsed p = parse("-x+0.5,y,z-0.25");
  expect_rot(p, want);
  expect_trans(p, 0.5, 0, 0.75);
}

TEST(ParseTransform, LeadingPointNumberTakesItsSign) { expect_trans(parse("x,y-.25,z"), 0, 0.75, 0); }

TEST(ParseTransform, OperatorWithUnsignedOneWrapsToZero) {
  const double want[3][3] = {{-1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  const Parsed p = parse("-x+1,y,z");
  expect_rot(p, want);
  expect_trans(p, 0, 0, 0);  // 1 wraps to 0
}

TEST(ParseTransform, SignIsNotAppliedToAWholeNumberStandingAlone) {
  // "-1" reads as +1, which wraps to 0; "-1.5" reads as +1.5, which wraps to 0.5.
  expect_trans(parse("x-1,y-1.5,z"), 0, 0.5, 0);
}

TEST(ParseTransform, NegativeSignLastsUntilPlusOrTheNextField) {
  const double want[3][3] = {{-1, -1, 0}, {1, 0, 0}, {0, 0, 1}};
  const Parsed p = parse("-xy,x,z");
  expect_rot(p, want);
}

TEST(ParseTransform, NumeratorIsHeldAcrossFieldsOfOneOperator) {
  // The numerator starts at 0 once per operator: "/3" in the second field
  // divides the 1 remembered in the first.
  expect_trans(parse("x+1/2,y/3,z"), 0.5, 1.0 / 3.0, 0);
  expect_trans(parse("x,y/3,z"), 0, 0, 0);
}

TEST(ParseTransform, FractionFlagIsNotConsultedForALeadingZero) {
  // "/0.5": the zero branch stores 0.5 as it stands.
  expect_trans(parse("x+1/0.5,y,z"), 0.5, 0, 0);
}

TEST(ParseTransform, ExtraFieldsAreIgnoredAndMissingRowsStayZero) {
  const double want[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 0}};
  expect_rot(parse("x,y"), want);
  expect_rot(parse("x,y,z,-x"), kIdentity);
}

TEST(ParseTransform, EmptyFieldsKeepTheirRowPositions) {
  const double want[3][3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  expect_rot(parse(",x,y"), want);
}

TEST(ParseTransform, OperatorWithoutCommaOrBlankLeavesZeroMatrix) {
  const Parsed p = parse("loop_");
  expect_rot(p, kZero);
  expect_trans(p, 0, 0, 0);
}

TEST(ParseTransform, OnlyTheWrapRunsOnAnOperatorWithoutCommaOrBlank) {
  FileIO io;
  double rot[3][3] = {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}};
  double trans[3] = {-0.25, 1.25, 0.5};
  io.ParseTransformString("xyz", rot, trans);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_EQ(rot[i][j], 0.0);
  EXPECT_DOUBLE_EQ(trans[0], 0.75);
  EXPECT_DOUBLE_EQ(trans[1], 0.25);
  EXPECT_DOUBLE_EQ(trans[2], 0.5);
}

TEST(ParseTransform, BlankSeparatedFormReadsTwelveNumbersRowByRow) {
  const double want[3][3] = {{0, -1, 0}, {1, 0, 0}, {0, 0, -1}};
  const Parsed p = parse("0 -1 0 0.5  1 0 0 -0.25  0 0 -1 1.5");
  expect_rot(p, want);
  expect_trans(p, 0.5, 0.75, 0.5);
}

TEST(ParseTransform, LonePointDoesNotStallTheScan) {
  const Parsed p = parse("x+.,y,z");
  expect_rot(p, kIdentity);
  expect_trans(p, 0, 0, 0);
}

TEST(ParseTransform, TranslationWrapsByOneStepOnly) {
  expect_trans(parse("x+2.5,y,z"), 1.5, 0, 0);
  expect_trans(parse("x-0.75,y,z"), 0.25, 0, 0);
}

TEST(ParseTransform, NumbersAreReadInTheCLocaleWhateverTheProcessLocale) {
  const char* const comma_locales[] = {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8", "de_DE", "fr_FR"};
  const std::string saved = std::setlocale(LC_ALL, nullptr);
  bool switched = false;
  for (const char* name : comma_locales) {
    if (std::setlocale(LC_ALL, name)) {
      switched = true;
      break;
    }
  }
  if (!switched) GTEST_SKIP() << "no locale with a decimal comma installed";
  const Parsed p = parse("x+0.25,y,z");
  const Parsed q = parse("0 1 0 0.75 1 0 0 0 0 0 1 0");
  std::setlocale(LC_ALL, saved.c_str());
  expect_trans(p, 0.25, 0, 0);
  expect_trans(q, 0.75, 0, 0);
}
