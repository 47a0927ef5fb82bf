// Trimming: the plain, C-buffer and space-group families.
//
// The left sets are narrower than the right sets on purpose: a leading line feed
// or carriage return is text, a trailing one is a line ending.
#include <algorithm>
#include <cstring>

#include "txutil.h"

namespace {

const char* const kLeftSet = " \t";
const char* const kRightSet = " \t\r\n";
const char* const kSgLeftSet = " \t\"'";
const char* const kSgRightSet = " \t\"'\r\n";

std::string& trim_left_of(std::string& s, const char* set) {
  s.erase(0, s.find_first_not_of(set));
  return s;
}

std::string& trim_right_of(std::string& s, const char* set) {
  size_t last = s.find_last_not_of(set);
  s.erase(last == std::string::npos ? 0 : last + 1);
  return s;
}

bool in_set(char c, const char* set) { return c != '\0' && std::strchr(set, c) != nullptr; }

}  // namespace

std::string& triml(std::string& s) { return trim_left_of(s, kLeftSet); }

std::string& trimr(std::string& s) { return trim_right_of(s, kRightSet); }

std::string& trim(std::string& s) { return trimr(triml(s)); }

char* c_triml(char* s) {
  if (s == nullptr) return s;
  size_t skip = 0;
  while (in_set(s[skip], kLeftSet)) ++skip;
  if (skip > 0) std::memmove(s, s + skip, std::strlen(s + skip) + 1);
  return s;
}

// Deliberately never removes the first character: callers rely on a lone line
// feed surviving c_trim, and on two blanks shrinking to one.
char* c_trimr(char* s) {
  if (s == nullptr) return s;
  size_t len = std::strlen(s);
  for (size_t i = len; i > 1 && in_set(s[i - 1], kRightSet); --i) s[i - 1] = '\0';
  return s;
}

char* c_trim(char* s) { return c_trimr(c_triml(s)); }

std::string& sg_triml(std::string& s) { return trim_left_of(s, kSgLeftSet); }

std::string& sg_trimr(std::string& s) { return trim_right_of(s, kSgRightSet); }

// Space-group names: "'P 21/c'" becomes "P21/c", so inner blanks go as well.
std::string& sg_trim(std::string& s) {
  sg_trimr(sg_triml(s));
  s.erase(std::remove(s.begin(), s.end(), ' '), s.end());
  return s;
}
