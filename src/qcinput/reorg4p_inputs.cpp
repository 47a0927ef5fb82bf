// FileIO: the Gaussian inputs of the four-point route, relaxations of the ground and
// the excited state from the user's atoms and excitation runs on their checkpoints.
#include <cstdio>
#include <string>
#include <vector>

#include "fileio.h"
#include "txutil.h"

namespace {

// Link-0 lines, route, title and charge line, which every input of the route has.
FILE* open_with_head(const char* path, const char* chk_name, int memory_mb, int nprocs, const std::string& route,
                     const char* title, int multiplicity) {
  FILE* fp = std::fopen(path, "wt");
  if (fp == nullptr) TX_FATAL(txunit::fileio, -1, stderr, "Failed to open output file %s\n", path);
  std::fprintf(fp, "%%chk=%s.chk\n", chk_name);
  std::fprintf(fp, "%%mem=%dMB\n", memory_mb);
  std::fprintf(fp, "%%nprocs=%d\n", nprocs);
  std::fprintf(fp, "%s\n", route.c_str());
  std::fprintf(fp, "\n");
  std::fprintf(fp, "%s\n", title);
  std::fprintf(fp, "\n");
  std::fprintf(fp, "0 %d\n", multiplicity);
  return fp;
}

void close_with_atoms(FILE* fp, const std::vector<std::string>& atom_lines) {
  for (const std::string& a : atom_lines) std::fprintf(fp, "%s\n", a.c_str());
  std::fprintf(fp, "\n");
  std::fclose(fp);
}

}  // namespace

void FileIO::write_reorg4p_groundstate_gau_com(const char* path, const char* chk_name, int memory_mb, int nprocs,
                                               const char* basis, const std::vector<std::string>& atom_lines) {
  const std::string route = format_string("#P opt %s nosymm", basis);
  close_with_atoms(open_with_head(path, chk_name, memory_mb, nprocs, route, "ground state opt.", 1), atom_lines);
}

// A triplet is relaxed as the lowest state of its own multiplicity, without the
// excitation method; every other multiplicity relaxes an excited singlet.
void FileIO::write_reorg4p_excitedstate_gau_com(const char* path, const char* chk_name, int memory_mb, int nprocs,
                                                const char* es_opt, const char* basis, int multiplicity,
                                                const std::vector<std::string>& atom_lines) {
  const bool triplet = multiplicity == 3;
  const std::string route =
      triplet ? format_string("#P opt %s nosymm", basis) : format_string("#P opt %s %s nosymm", es_opt, basis);
  close_with_atoms(
      open_with_head(path, chk_name, memory_mb, nprocs, route, "excited state opt.", triplet ? 3 : 1), atom_lines);
}

void FileIO::write_reorg4p_gau_com_Read_from_chk(const char* path, const char* chk_name, int memory_mb, int nprocs,
                                                 const char* method, const char* basis, const char* title,
                                                 int multiplicity, bool guess_read) {
  const std::string route =
      format_string("#P %s %s nosymm Geom=Check%s", method, basis, guess_read ? " Guess=Read" : "");
  close_with_atoms(open_with_head(path, chk_name, memory_mb, nprocs, route, title, multiplicity), {});
}
