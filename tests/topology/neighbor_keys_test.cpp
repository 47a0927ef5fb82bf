// Neighbor keys: flat (root, column) indices and the key list.
#include <gtest/gtest.h>

#include <string>

#include "test_support.h"
#include "transport.h"

namespace {

// Roots with 2, 0 and 3 neighbors: keys 0, 1 | - | 2, 3, 4.
void counts_2_0_3(Transport& t) {
  t.nmols_uc = 3;
  t.nneighbors = new int[3]{2, 0, 3};
  t.neighbor_rows_allocated = 0;  // no rows behind the counts
}

TEST(NeighborKeys, OneDimensionalToPair) {
  Transport t;
  counts_2_0_3(t);
  int mol = -7, nei = -7;
  t.neighbor_map_key_1d_to_2d(0, &mol, &nei);
  EXPECT_EQ(mol, 0);
  EXPECT_EQ(nei, 0);
  t.neighbor_map_key_1d_to_2d(1, &mol, &nei);
  EXPECT_EQ(mol, 0);
  EXPECT_EQ(nei, 1);
  t.neighbor_map_key_1d_to_2d(2, &mol, &nei);
  EXPECT_EQ(mol, 2);
  EXPECT_EQ(nei, 0);
  t.neighbor_map_key_1d_to_2d(4, &mol, &nei);
  EXPECT_EQ(mol, 2);
  EXPECT_EQ(nei, 2);
}

TEST(NeighborKeys, KeyPastTheCountLeavesTheOutputsAlone) {
  Transport t;
  counts_2_0_3(t);
  int mol = -7, nei = -8;
  t.neighbor_map_key_1d_to_2d(5, &mol, &nei);
  EXPECT_EQ(mol, -7);
  EXPECT_EQ(nei, -8);
}

TEST(NeighborKeys, PairToOneDimensional) {
  Transport t;
  counts_2_0_3(t);
  int key = -7;
  t.neighbor_map_key_2d_to_1d(0, 1, &key);
  EXPECT_EQ(key, 1);
  t.neighbor_map_key_2d_to_1d(2, 0, &key);
  EXPECT_EQ(key, 2);
  t.neighbor_map_key_2d_to_1d(2, 2, &key);
  EXPECT_EQ(key, 4);
  t.neighbor_map_key_2d_to_1d(1, 0, &key);
  EXPECT_EQ(key, 2);
}

TEST(NeighborKeys, RootZeroReturnsTheColumnEvenPastItsCount) {
  Transport t;
  counts_2_0_3(t);
  int key = -7;
  t.neighbor_map_key_2d_to_1d(0, 9, &key);
  EXPECT_EQ(key, 9);
  t.neighbor_map_key_2d_to_1d(-1, 5, &key);
  EXPECT_EQ(key, 5);
}

TEST(NeighborKeys, RootPastTheCellLeavesTheKeyAlone) {
  Transport t;
  counts_2_0_3(t);
  int key = -7;
  t.neighbor_map_key_2d_to_1d(3, 0, &key);
  EXPECT_EQ(key, -7);
}

TEST(NeighborKeys, KeyToRoot) {
  Transport t;
  counts_2_0_3(t);
  EXPECT_EQ(t.neighbor_map_key_1d_to_uc_id(0), 0);
  EXPECT_EQ(t.neighbor_map_key_1d_to_uc_id(1), 0);
  EXPECT_EQ(t.neighbor_map_key_1d_to_uc_id(2), 2);
  EXPECT_EQ(t.neighbor_map_key_1d_to_uc_id(4), 2);
}

TEST(NeighborKeys, KeyPastTheCountIsFatalWithMinusOne) {
  const txtest::RunResult r = txtest::run_forked([] {
    Transport t;
    counts_2_0_3(t);
    t.neighbor_map_key_1d_to_uc_id(5);
  });
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), "\nERROR  transport : transport : line # : \nneighbor key mapping error!\n");
  EXPECT_EQ(r.err, "");
}

TEST(NeighborKeys, KeyListMembershipUsesOneBasedKeysWithinTheCount) {
  Transport t;
  t.pair_keylist = new int[3]{1, 3, 5};
  t.pair_keylist_count = 2;
  EXPECT_EQ(t.check_if_key_in_keylist(1), 1);
  EXPECT_EQ(t.check_if_key_in_keylist(3), 1);
  EXPECT_EQ(t.check_if_key_in_keylist(0), 0);
  EXPECT_EQ(t.check_if_key_in_keylist(2), 0);
  // Beyond the count, even though the array holds it.
  EXPECT_EQ(t.check_if_key_in_keylist(5), 0);
}

}  // namespace
