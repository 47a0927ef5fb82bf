// molecule_arrays.h - the per-molecule arrays of FileIO as the molecule
// separation and the two-XYZ route of dipole tuning allocate them. Defined in
// molecule_separation.cpp.
#ifndef TAVIX_MOLECULE_ARRAYS_H
#define TAVIX_MOLECULE_ARRAYS_H

#include "fileio.h"

// Fresh per-molecule arrays for `n` molecules: sizes 0, rows null (the readers
// allocate them), centres and masses zero so that anything sorting by them
// before calc_x_com has run sees defined values, mol_index unset. Recorded in the
// allocation bookkeeping; mol_files is not touched.
void allocate_molecule_arrays(FileIO& io, int n);

#endif  // TAVIX_MOLECULE_ARRAYS_H
