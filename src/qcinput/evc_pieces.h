// evc_pieces.h - internal to the normal-mode chain (evc_inputs.cpp, evc_scripts.cpp):
// the two carriers with the names they give files and directories, and the molecule
// numbers the plain and the unique forms cover.
#ifndef TAVIX_EVC_PIECES_H
#define TAVIX_EVC_PIECES_H

#include <string>
#include <vector>

namespace txevc {

struct Carrier {
  const char* tag;    // "e" or "h", in file names
  const char* dir;    // "elec" or "hole", the work directory under evc/mol<n>
  const char* state;  // charged state of the relaxation runs: "anion" or "cation"
};

extern const Carrier kElectron;
extern const Carrier kHole;

// The carriers `chargetype` asks for, electron first: by its first letter in lower
// case, "a" both, "e" electrons, "h" holes, anything else none.
std::vector<const Carrier*> carriers_of(const std::string& chargetype);

// One-based molecule numbers: 1..n, or the first `count` entries of `list`.
std::vector<int> numbers_up_to(int n);
std::vector<int> numbers_listed(const int* list, int count);

}  // namespace txevc

#endif  // TAVIX_EVC_PIECES_H
