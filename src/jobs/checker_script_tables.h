// checker_script_tables.h - the scripts that travel with a run, held as tables of lines,
// and the helpers that write a table out.
//
//   checker_script_tables.cpp   the tables
//   checker_scripts.cpp         write_script_lines, write_script_file and the seven
//                               Transport writers of the checker and extension scripts
#ifndef TAVIX_CHECKER_SCRIPT_TABLES_H
#define TAVIX_CHECKER_SCRIPT_TABLES_H

#include <cstddef>
#include <cstdio>
#include <string>

// End tests of the quantum-chemistry outputs, written into the scr directory.
extern const char* const gaussian_log_check_py[];
extern const std::size_t gaussian_log_check_py_size;
extern const char* const orca_out_check_py[];
extern const std::size_t orca_out_check_py_size;
extern const char* const qchem_out_check_py[];
extern const std::size_t qchem_out_check_py_size;
extern const char* const bdf_out_check_py[];
extern const std::size_t bdf_out_check_py_size;

// Extension scripts: ".FChk" to ".fchk", ".out" to ".log", ".fch" to ".fchk".
extern const char* const qchem_fchk_ext_lowercase_py[];
extern const std::size_t qchem_fchk_ext_lowercase_py_size;
extern const char* const gau_ext_out_to_log_py[];
extern const std::size_t gau_ext_out_to_log_py_size;
extern const char* const gau_ext_fch_to_fchk_py[];
extern const std::size_t gau_ext_fch_to_fchk_py_size;

// Other forms of the Gaussian end test; no operation writes them.
extern const char* const gaussian_log_check_py_b[];
extern const std::size_t gaussian_log_check_py_b_size;
extern const char* const gaussian_log_check_py_n[];
extern const std::size_t gaussian_log_check_py_n_size;

// Head of prepare-mc.py and prepare-me.py.
extern const char* const prepare_mc_py_head[];
extern const std::size_t prepare_mc_py_head_size;

// Pieces of get_RE.py; exp_re_py_write_lambda_eh is not written by any operation.
extern const char* const exp_re_py_head[];
extern const std::size_t exp_re_py_head_size;
extern const char* const exp_re_py_read_lambda_elec[];
extern const std::size_t exp_re_py_read_lambda_elec_size;
extern const char* const exp_re_py_read_lambda_hole[];
extern const std::size_t exp_re_py_read_lambda_hole_size;
extern const char* const exp_re_py_write_lambda_eh[];
extern const std::size_t exp_re_py_write_lambda_eh_size;

// Kept as data without a writer. extract_homo_lumo_py is in the old print-statement
// form and does not compile under a current interpreter.
extern const char* const extract_homo_lumo_py[];
extern const std::size_t extract_homo_lumo_py_size;
extern const char* const exp_inf_py[];
extern const std::size_t exp_inf_py_size;

// Writes every entry of `table` through "%s" with a newline, in order.
void write_script_lines(FILE* fp, const char* const* table, std::size_t size);

// Opens `path` with "wt", writes the table and closes the file. A file that cannot be
// opened is fatal (unit transport, status -1) with "Failed to open output file " and the path.
void write_script_file(const std::string& path, const char* const* table, std::size_t size);

#endif  // TAVIX_CHECKER_SCRIPT_TABLES_H
