// Writing matrices and vectors as text tables.
#include "txutil.h"

namespace {

FILE* open_for_writing(const char* path) {
  FILE* fp = std::fopen(path, "w");
  if (fp == nullptr) TX_FATAL(txunit::txutil, 1, stdout, "Failed to create file %s\n", path);
  return fp;
}

}  // namespace

// Blocks of `ncol` columns, each under a head of column numbers; rows and
// columns are numbered from 0. An `ncol` below 1 puts all columns in one block.
void output_matrix(double** m, int n, int ncol, const char* path) {
  FILE* fp = open_for_writing(path);
  if (ncol < 1) ncol = n > 0 ? n : 1;
  for (int first = 0; first < n; first += ncol) {
    int last = first + ncol < n ? first + ncol : n;
    std::fprintf(fp, "%8s", "");
    for (int j = first; j < last; ++j) std::fprintf(fp, "%13d", j);
    std::fprintf(fp, "\n");
    for (int i = 0; i < n; ++i) {
      std::fprintf(fp, "%7d    ", i);
      for (int j = first; j < last; ++j) std::fprintf(fp, "%13.8f", m[i][j]);
      std::fprintf(fp, "\n");
    }
  }
  std::fclose(fp);
}

// A line ends after every `per_line` values and once more at the end, so a
// count that fills its last line exactly is followed by an empty line. A
// `per_line` below 1 writes all values on one line.
void output_vector(const double* v, int n, int per_line, const char* path) {
  FILE* fp = open_for_writing(path);
  for (int i = 0; i < n; ++i) {
    std::fprintf(fp, "%14.7e", v[i]);
    if (per_line > 0 && (i + 1) % per_line == 0) std::fprintf(fp, "\n");
  }
  std::fprintf(fp, "\n");
  std::fclose(fp);
}

// The column count is that of the first row; each row writes its own values.
void output_vvector(const std::vector<std::vector<double>>& m, const char* path) {
  size_t ncols = m.empty() ? 0 : m[0].size();
  std::printf("ncols = %zu\n", ncols);
  std::printf("nrows = %zu\n", m.size());
  FILE* fp = open_for_writing(path);
  for (const std::vector<double>& row : m) {
    for (double value : row) std::fprintf(fp, " %14.7e", value);
    std::fprintf(fp, "\n");
  }
  std::fclose(fp);
}
