// Index sorts: ascending order, the partner array following the keys, and the
// exact placement of equal keys that neighbor ordering relies on.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "txutil.h"

TEST(SwapHelpers, ExchangeTwoValues) {
  int a = 1, b = 2;
  swap_int(&a, &b);
  EXPECT_EQ(a, 2);
  EXPECT_EQ(b, 1);
  double x = 1.5, y = -2.5;
  swap_dbl(&x, &y);
  EXPECT_EQ(x, -2.5);
  EXPECT_EQ(y, 1.5);
}

TEST(QuickSortInt, SortsDistinctKeysAndCarriesPartners) {
  int key[] = {5, 3, 9, 1, 7};
  int carry[] = {50, 30, 90, 10, 70};
  quickSort_i(key, carry, 5);
  const int want_key[] = {1, 3, 5, 7, 9};
  const int want_carry[] = {10, 30, 50, 70, 90};
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(key[i], want_key[i]);
    EXPECT_EQ(carry[i], want_carry[i]);
  }
}

// Hand trace: pivot 2, nothing is greater, the cursor runs to the end and the
// pivot goes to slot 3 -> keys 1 1 2 2, carry 3 1 2 0. Left part [0,3) with
// pivot 1: the 2 at slot 2 is thrown right onto itself, the pivot swaps into slot
// 1 -> carry 1 3 2 0.
TEST(QuickSortInt, EqualKeysSortAndKeepTheCursorOrder) {
  int key[] = {2, 1, 2, 1};
  int carry[] = {0, 1, 2, 3};
  quickSort_i(key, carry, 4);
  const int want_key[] = {1, 1, 2, 2};
  const int want_carry[] = {1, 3, 2, 0};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(key[i], want_key[i]) << i;
    EXPECT_EQ(carry[i], want_carry[i]) << i;
  }
}

// Expected order from an independent python3 transcription of the first-element
// cursor sort (plain recursion, left part first).
TEST(QuickSortInt, ManyEqualKeysMatchIndependentTranscription) {
  int key[] = {3, 1, 2, 3, 1, 2, 2, 3, 1, 1, 2, 3};
  int carry[12];
  for (int i = 0; i < 12; ++i) carry[i] = i;
  quickSort_i(key, carry, 12);
  const int want_key[] = {1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3};
  const int want_carry[] = {1, 4, 9, 8, 6, 2, 5, 10, 3, 7, 11, 0};
  for (int i = 0; i < 12; ++i) {
    EXPECT_EQ(key[i], want_key[i]) << i;
    EXPECT_EQ(carry[i], want_carry[i]) << i;
  }
}

TEST(QuickSortInt, ZeroOrOneElementLeavesArraysAlone) {
  int key[] = {7, 3};
  int carry[] = {1, 2};
  quickSort_i(key, carry, 0);
  EXPECT_EQ(key[0], 7);
  EXPECT_EQ(key[1], 3);
  EXPECT_EQ(carry[0], 1);
  EXPECT_EQ(carry[1], 2);
  quickSort_i(key, carry, 1);
  EXPECT_EQ(key[0], 7);
  EXPECT_EQ(key[1], 3);
  EXPECT_EQ(carry[0], 1);
  EXPECT_EQ(carry[1], 2);
}

// Equal keys stay left of the pivot, so a long run of them is the slow, deep case.
TEST(QuickSortInt, LongRunOfEqualKeysSorts) {
  const int n = 20000;
  std::vector<int> key(n, 4);
  std::vector<int> carry(n);
  for (int i = 0; i < n; ++i) carry[i] = i;
  key[n / 2] = 1;
  quickSort_i(key.data(), carry.data(), n);
  EXPECT_EQ(key[0], 1);
  EXPECT_EQ(carry[0], n / 2);
  for (int i = 1; i < n; ++i) ASSERT_EQ(key[i], 4);
}

TEST(QuickSortInt, PseudoRandomKeysComeOutAscendingWithTheirPartners) {
  const int n = 5000;
  std::vector<int> key(n), carry(n), orig(n);
  unsigned s = 12345;
  for (int i = 0; i < n; ++i) {
    s = s * 1103515245u + 12345u;
    key[i] = orig[i] = static_cast<int>((s >> 16) % 100);
    carry[i] = i;
  }
  quickSort_i(key.data(), carry.data(), n);
  for (int i = 0; i < n; ++i) {
    if (i > 0) {
      ASSERT_LE(key[i - 1], key[i]);
    }
    ASSERT_EQ(orig[carry[i]], key[i]);
  }
}

TEST(QuickSortDouble, SortsIndexAndLeavesKeysInPlace) {
  const double key[] = {3.0, 1.0, 2.0};
  int index[] = {0, 1, 2};
  quickSort_d(key, index, 3);
  EXPECT_EQ(index[0], 1);
  EXPECT_EQ(index[1], 2);
  EXPECT_EQ(index[2], 0);
  EXPECT_EQ(key[0], 3.0);
  EXPECT_EQ(key[1], 1.0);
  EXPECT_EQ(key[2], 2.0);
}

// Hand trace: pivot key 1; the outer entries swap (2 1 0) and the cursors meet on
// slot 1, which then belongs to both parts: [0,1] swaps to 1 2 0, [1,2] to 1 0 2.
TEST(QuickSortDouble, CursorsMeetingOnOneElementShareItBetweenBothParts) {
  const double key[] = {1.0, 1.0, 1.0};
  int index[] = {0, 1, 2};
  quickSort_d(key, index, 3);
  EXPECT_EQ(index[0], 1);
  EXPECT_EQ(index[1], 0);
  EXPECT_EQ(index[2], 2);
}

// Expected order from an independent python3 transcription of the middle-pivot
// cursor sort.
TEST(QuickSortDouble, ManyEqualKeysMatchIndependentTranscription) {
  const double key[] = {0.5, 0.25, 0.5, 0.75, 0.25, 0.5, 0.5, 0.75, 0.25, 0.5, 0.75, 0.25};
  int index[12];
  for (int i = 0; i < 12; ++i) index[i] = i;
  quickSort_d(key, index, 12);
  const int want[] = {4, 8, 11, 1, 6, 9, 2, 0, 5, 3, 10, 7};
  for (int i = 0; i < 12; ++i) EXPECT_EQ(index[i], want[i]) << i;
}

TEST(QuickSortDouble, EmptyRangeReadsNothing) {
  // Zero-length heap arrays: any access would be reported by AddressSanitizer.
  std::unique_ptr<double[]> key(new double[0]);
  std::unique_ptr<int[]> index(new int[0]);
  quickSort_d(key.get(), index.get(), 0);
  const double one_key[] = {2.0};
  int one_index[] = {0};
  quickSort_d(one_key, one_index, 1);
  EXPECT_EQ(one_index[0], 0);
}

TEST(QuickSortDouble, PseudoRandomKeysComeOutAscending) {
  const int n = 5000;
  std::vector<double> key(n);
  std::vector<int> index(n);
  unsigned s = 777;
  for (int i = 0; i < n; ++i) {
    s = s * 1103515245u + 12345u;
    key[i] = static_cast<double>((s >> 16) % 64) * 0.125;
    index[i] = i;
  }
  const std::vector<double> before = key;
  quickSort_d(key.data(), index.data(), n);
  EXPECT_EQ(key, before);
  std::vector<int> seen(n, 0);
  for (int i = 0; i < n; ++i) {
    if (i > 0) {
      ASSERT_LE(key[index[i - 1]], key[index[i]]);
    }
    ++seen[index[i]];
  }
  for (int i = 0; i < n; ++i) ASSERT_EQ(seen[i], 1);
}
