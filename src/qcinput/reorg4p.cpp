// Transport: the four-point route for one molecule. From one Gaussian input of the
// user it writes the relaxations of the ground and the excited state, the excitation
// runs on their checkpoints, a job and a driver for each, and the master RE_run.py
// (reorg4p_scripts.cpp).
#include <cstdio>
#include <string>
#include <vector>

#include "transport.h"
#include "txutil.h"

namespace {

// The atom block of a Gaussian input: from the first atom line up to the blank line
// that ends it, or to the end of the file.
std::vector<std::string> atom_block(const std::vector<std::string>& lines, int first) {
  std::vector<std::string> atoms;
  std::vector<std::string> words;
  for (size_t k = first < 0 ? lines.size() : static_cast<size_t>(first); k < lines.size(); ++k) {
    std::string line = lines[k];
    if (!line.empty() && line.back() == '\r') line.pop_back();
    split_to_words(line, " \t", words);
    if (words.empty()) break;
    atoms.push_back(line);
  }
  return atoms;
}

}  // namespace

void Transport::reorg4p_write_input_files(const std::string& com_file, bool verbose) {
  std::string com = com_file;
  if (com == ".") {
    const std::vector<std::string> found = globFileVector("*.gjf");
    if (found.empty()) TX_FATAL(txunit::transport, -1, stderr, "Failed to find any Gaussian com file!\n");
    com = found[0];
  }
  std::printf("Generate input files for reorganization calculation by 4P method...\n");
  std::printf("Using Gaussian input file %s...\n", com.c_str());
  std::vector<std::string> lines;
  const int first = parse_gaussian_com(com, lines);
  const std::vector<std::string> atoms = atom_block(lines, first);
  if (verbose) std::printf("  %d atom lines\n", static_cast<int>(atoms.size()));

  const bool triplet = qc_es_mult == 3;
  std::printf("Generate .com files...\n");
  if (verbose) std::printf("  re-gs.com\n");
  write_reorg4p_groundstate_gau_com("re-gs.com", "re-gs", qc_memory, qc_ppn, qc_basis_re.c_str(), atoms);
  if (verbose) std::printf("  re-es.com\n");
  write_reorg4p_excitedstate_gau_com("re-es.com", "re-es", qc_memory, qc_ppn, qc_es_opt.c_str(), qc_basis_re.c_str(),
                                     qc_es_mult, atoms);
  if (verbose) std::printf("  re-gs-tddft.com\n");
  write_reorg4p_gau_com_Read_from_chk("re-gs-tddft.com", "re-gs-tddft", qc_memory, qc_ppn, qc_gs_tddft.c_str(),
                                      qc_basis_re.c_str(), "ground state tddft", 1, true);
  if (triplet) {
    if (verbose) std::printf("  re-es-tddft.com\n");
    write_reorg4p_gau_com_Read_from_chk("re-es-tddft.com", "re-es-tddft", qc_memory, qc_ppn, qc_es_tddft.c_str(),
                                        qc_basis_re.c_str(), "excited state tddft", qc_es_mult, false);
  }

  std::printf("Generate script files...\n");
  reorg4p_write_gaussian_log_check_py_file();
  // The relaxations leave formatted checkpoints beside their outputs; the excitation
  // runs on finished geometries do not need them.
  reorg4p_write_job_and_driver("gs", true);
  reorg4p_write_job_and_driver("es", true);
  reorg4p_write_job_and_driver("gs-tddft", false);
  if (triplet) reorg4p_write_job_and_driver("es-tddft", false);
  reorg4p_write_RE_run_py_file();
  std::printf("Successfuly done.\n");
}
