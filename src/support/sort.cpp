// Index sorts. The two differ on purpose (direct against indirect, exclusive against
// inclusive bound, first against middle pivot); neither is stable, and the order in
// which they leave equal keys decides the order of neighbors with equal distances, so
// the cursor moves below must stay exactly as they are.
#include "txutil.h"

void swap_int(int* a, int* b) {
  int t = *a;
  *a = *b;
  *b = t;
}

void swap_dbl(double* a, double* b) {
  double t = *a;
  *a = *b;
  *b = t;
}

// Sorts key[lo..hi-1] ascending, moving carry along. Pivot is key[lo]; elements
// greater than it are thrown to the shrinking right end, equal ones stay left.
void q_sort(int* key, int* carry, int lo, int hi) {
  while (hi - lo > 1) {
    const int pivot = key[lo];
    int l = lo + 1;
    int r = hi;
    while (l < r) {
      if (key[l] > pivot) {
        --r;
        swap_int(&key[l], &key[r]);
        swap_int(&carry[l], &carry[r]);
      } else {
        ++l;
      }
    }
    --l;
    swap_int(&key[lo], &key[l]);
    swap_int(&carry[lo], &carry[l]);
    // The two parts [lo, l) and [r, hi) are disjoint, so sorting them in either
    // order gives the same result; recursing into the smaller one keeps the stack
    // shallow even when many keys are equal (equal keys make the left part long).
    if (l - lo < hi - r) {
      q_sort(key, carry, lo, l);
      lo = r;
    } else {
      q_sort(key, carry, r, hi);
      hi = l;
    }
  }
}

void quickSort_i(int* key, int* carry, int n) { q_sort(key, carry, 0, n); }

// Sorts index[lo..hi] so that key[index[.]] ascends; key itself is not touched.
void q_sort2(const double* key, int* index, int lo, int hi) {
  // An empty or single range has nothing to sort; returning before the pivot read
  // keeps quickSort_d with n of 0 from touching index[0].
  if (lo >= hi) return;
  while (true) {
    const double pivot = key[index[(lo + hi) / 2]];
    int i = lo;
    int j = hi;
    // The scan stops as soon as the cursors meet; when they meet on one element,
    // that element belongs to both parts below. The left part must be sorted
    // before the right one because of that shared element.
    while (i < j) {
      while (key[index[i]] < pivot) ++i;
      while (key[index[j]] > pivot) --j;
      if (i <= j) {
        swap_int(&index[i], &index[j]);
        ++i;
        --j;
      }
    }
    if (lo < j) q_sort2(key, index, lo, j);
    if (i >= hi) return;
    lo = i;
  }
}

void quickSort_d(const double* key, int* index, int n) { q_sort2(key, index, 0, n - 1); }
