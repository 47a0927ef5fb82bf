// control_values.h - the value conversions of the control-file readers, shared by
// the current reader (control_reader.cpp) and the legacy reader (legacy_reader.cpp).
#ifndef TAVIX_CONTROL_VALUES_H
#define TAVIX_CONTROL_VALUES_H

#include <string>
#include <vector>

#include "tavix_inp.h"

namespace control_values {

// Decimal or floating conversion of the leading part; text that is no number gives 0.
int to_int(const std::string& value);
double to_real(const std::string& value);
// Trimmed, and every double and single quote anywhere removed.
std::string to_text(const std::string& value);
// Trimmed, and only the double quotes removed (the legacy reader's texts).
std::string to_text_dq(const std::string& value);
// Trimmed, quotes stay.
std::string to_bare_text(const std::string& value);
// Up to n numbers separated by white space; fields left out keep their value.
void read_reals(const std::string& value, double* out, int n);
void read_ints(const std::string& value, int* out, int n);
std::vector<std::string> words_of(const std::string& value, const char* delims);

}  // namespace control_values

// `molecule = n name1 ... namen`: the count sets nmols_uc, the names mol_files, and
// the structure comes from molecule files. Words are split at blanks alone. Fewer
// names than the count end the process with a message naming the file and line.
void assign_molecule_files(TavixInp& p, const std::string& value, const char* path, int line);

#endif  // TAVIX_CONTROL_VALUES_H
