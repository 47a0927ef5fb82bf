// Transport: the checker and extension scripts that travel with a run, and the
// helpers that write a table of script lines.
#include <cstdio>
#include <string>

#include "checker_script_tables.h"
#include "transport.h"
#include "txutil.h"

void write_script_lines(FILE* fp, const char* const* table, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) std::fprintf(fp, "%s\n", table[i]);
}

void write_script_file(const std::string& path, const char* const* table, std::size_t size) {
  FILE* fp = std::fopen(path.c_str(), "wt");
  if (fp == nullptr) TX_FATAL(txunit::transport, -1, stderr, "Failed to open output file %s\n", path.c_str());
  write_script_lines(fp, table, size);
  std::fclose(fp);
}

// The scripts go into the run's own scr directory, the one the preparing stage creates;
// Jobscript's copy of that name is what the job scripts call them by, and both are "scr".

void Transport::write_gaussian_log_check_py_file() {
  write_script_file(format_string("%s/gaussian_log_check.py", scr_dir.c_str()), gaussian_log_check_py,
                    gaussian_log_check_py_size);
}

void Transport::write_orca_out_check_py_file() {
  write_script_file(format_string("%s/orca_out_check.py", scr_dir.c_str()), orca_out_check_py, orca_out_check_py_size);
}

void Transport::write_qchem_out_check_py_file() {
  write_script_file(format_string("%s/qchem_out_check.py", scr_dir.c_str()), qchem_out_check_py,
                    qchem_out_check_py_size);
}

void Transport::write_bdf_out_check_py_file() {
  write_script_file(format_string("%s/bdf_out_check.py", scr_dir.c_str()), bdf_out_check_py, bdf_out_check_py_size);
}

void Transport::write_qchem_fchk_ext_lowercase_py_file() {
  write_script_file(format_string("%s/qchem_fchk_ext_lowercase.py", scr_dir.c_str()), qchem_fchk_ext_lowercase_py,
                    qchem_fchk_ext_lowercase_py_size);
}

void Transport::write_gaussian_ext_out_to_log_py_file() {
  write_script_file(format_string("%s/gau_ext_out_to_log.py", scr_dir.c_str()), gau_ext_out_to_log_py,
                    gau_ext_out_to_log_py_size);
}

void Transport::write_gaussian_ext_fch_to_fchk_py_file() {
  write_script_file(format_string("%s/gau_ext_fch_to_fchk.py", scr_dir.c_str()), gau_ext_fch_to_fchk_py,
                    gau_ext_fch_to_fchk_py_size);
}
