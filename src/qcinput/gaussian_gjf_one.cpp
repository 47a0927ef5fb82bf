// FileIO: the older single-molecule Gaussian input. It names checkpoint and
// title after the file itself, so one input of a series needs no other name.
#include <cstdio>
#include <string>

#include "fileio.h"

// The path less its extension is the checkpoint name and the title. The file
// ends with the blank line behind the atoms; no append text follows.
void FileIO::write_data_gjf_one(const char* path, int natoms, int* elements, double* x, int nprocs, int memory_mb,
                                const char* method_basis) {
  FILE* fp = std::fopen(path, "wt");
  if (fp == nullptr) TX_FATAL(txunit::fileio, -1, stdout, "Failed to open output file %s\n", path);
  const std::string base = remove_filename_extension(path);
  std::fprintf(fp, "%%chk=%s.chk\n", base.c_str());
  std::fprintf(fp, "%%nprocs=%d\n", nprocs);
  std::fprintf(fp, "%%mem=%dMB\n", memory_mb);
  std::fprintf(fp, "#P %s iop(3/33=1,5/33=2) pop=full nosymm\n", method_basis != nullptr ? method_basis : "");
  std::fprintf(fp, "\n");
  std::fprintf(fp, "%s\n", base.c_str());
  std::fprintf(fp, "\n");
  std::fprintf(fp, "0 1\n");
  for (int a = 0; a < natoms; ++a) {
    char symbol[3];
    find_element_name_from_index(elements[a], symbol);
    std::fprintf(fp, "%-2s %9.4f %9.4f %9.4f\n", symbol, x[3 * a], x[3 * a + 1], x[3 * a + 2]);
  }
  std::fprintf(fp, "\n");
  std::fclose(fp);
}
