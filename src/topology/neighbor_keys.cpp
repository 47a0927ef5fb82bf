// Transport: neighbor keys. A key is the flat index of a (root, column) pair with
// the roots in order: zero-based in memory, one-based in pair_keylist.
#include <cstdio>

#include "transport.h"

// A key at or past the key count leaves *mol and *nei as the caller had them.
void Transport::neighbor_map_key_1d_to_2d(int key, int* mol, int* nei) {
  int sum = 0;
  for (int i = 0; i < nmols_uc; ++i) {
    const int before = sum;
    sum += nneighbors[i];
    if (key < sum) {
      *mol = i;
      *nei = key - before;
      return;
    }
  }
}

// Root 0 (or below) gives `nei` itself, unchecked even past that root's count: the
// shortcut is deliberate and stays. A root at or past nmols_uc leaves *key as it was.
void Transport::neighbor_map_key_2d_to_1d(int mol, int nei, int* key) {
  if (mol < 1) {
    *key = nei;
    return;
  }
  if (mol >= nmols_uc) return;
  int sum = 0;
  for (int i = 0; i < mol; ++i) sum += nneighbors[i];
  *key = nei + sum;
}

int Transport::neighbor_map_key_1d_to_uc_id(int key) {
  int sum = 0;
  for (int i = 0; i < nmols_uc; ++i) {
    sum += nneighbors[i];
    if (key < sum) return i;
  }
  TX_FATAL(txunit::transport, -1, stdout, "neighbor key mapping error!\n");
}

// `key` is one-based, as the list holds it.
int Transport::check_if_key_in_keylist(int key) {
  for (int k = 0; k < pair_keylist_count; ++k)
    if (pair_keylist[k] == key) return 1;
  return 0;
}
