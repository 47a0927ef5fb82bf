// Transport: the orbital index files of the transfer-integral tools, one number a
// molecule: the HOMO and the LUMO, each moved by the user's adjustment when given.
#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

#include "re_pieces.h"
#include "txutil.h"

namespace {

// An adjustment list is either absent or one entry a molecule; the same check and
// text as after the reading of the control file.
void check_adjustments(const std::vector<int>& adjustments, const char* key, int nmols) {
  if (!adjustments.empty() && static_cast<int>(adjustments.size()) != nmols)
    TX_FATAL(txunit::transport, 1, stdout, "%s: Number of input parameters (%d) is NOT equal to nmols_uc (%d)\n", key,
             static_cast<int>(adjustments.size()), nmols);
}

// One orbital index a line: `orbital[i]` plus the adjustment of molecule i.
void write_indexes(const std::string& path, const std::vector<int>& orbital, const std::vector<int>& adjustments) {
  FILE* fp = txre::open_re_file(path);
  for (std::size_t i = 0; i < orbital.size(); ++i)
    std::fprintf(fp, "%d\n", orbital[i] + (adjustments.empty() ? 0 : adjustments[i]));
  std::fclose(fp);
}

// The molecule count, then the adjustments.
void write_adjustments(const std::string& path, int nmols, const std::vector<int>& adjustments) {
  FILE* fp = txre::open_re_file(path);
  std::fprintf(fp, "%d\n", nmols);
  for (int a : adjustments) std::fprintf(fp, "%d\n", a);
  std::fclose(fp);
}

}  // namespace

void Transport::write_H_L_inp() {
  check_adjustments(homo_adjustment, "homo_adjustment", nmols_uc);
  check_adjustments(lumo_adjustment, "lumo_adjustment", nmols_uc);
  if (!homo_ready) calc_homo();
  std::vector<int> homo(homo_index, homo_index + nmols_uc);
  std::vector<int> lumo(homo);
  for (int& l : lumo) ++l;
  create_directory(data_dir);
  const char* dir = data_dir.c_str();
  write_indexes(format_string("%s/uc_H.inp", dir), homo, homo_adjustment);
  write_indexes(format_string("%s/uc_L.inp", dir), lumo, lumo_adjustment);
  if (!homo_adjustment.empty()) write_adjustments(format_string("%s/H_adj.inp", dir), nmols_uc, homo_adjustment);
  if (!lumo_adjustment.empty()) write_adjustments(format_string("%s/L_adj.inp", dir), nmols_uc, lumo_adjustment);
}
