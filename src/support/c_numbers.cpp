// Number conversions of the file readers, in the "C" locale.
#include <locale.h>
#include <stdlib.h>

#include <cerrno>
#include <climits>

#include "txutil.h"

namespace {
locale_t c_numeric_locale() {
  static const locale_t c_locale = newlocale(LC_NUMERIC_MASK, "C", static_cast<locale_t>(0));
  return c_locale;
}
}  // namespace

double strtod_c(const char* text, char** end) {
  locale_t loc = c_numeric_locale();
  if (loc == static_cast<locale_t>(0)) return std::strtod(text, end);
  return strtod_l(text, end, loc);
}

double strtod_c(const std::string& text) { return strtod_c(text.c_str(), nullptr); }

int leading_int(const char* text, const char** end) {
  char* stop = nullptr;
  long v = std::strtol(text, &stop, 10);
  if (end) *end = stop;
  if (v > INT_MAX) return INT_MAX;
  if (v < INT_MIN) return INT_MIN;
  return static_cast<int>(v);
}

int leading_int(const std::string& text) { return leading_int(text.c_str(), nullptr); }
