// Case-blind comparison: ci_char_traits, iequals, strcaseequal, strcasestr_n.
#include <cctype>

#include "txutil.h"

namespace {

// Characters above 127 go through unsigned char so that the ctype calls stay defined.
inline int lower(char c) { return std::tolower(static_cast<unsigned char>(c)); }
inline int upper(char c) { return std::toupper(static_cast<unsigned char>(c)); }

}  // namespace

bool ci_char_traits::eq(char c1, char c2) { return lower(c1) == lower(c2); }

bool ci_char_traits::ne(char c1, char c2) { return lower(c1) != lower(c2); }

bool ci_char_traits::lt(char c1, char c2) { return lower(c1) < lower(c2); }

// Stops at a terminator of either text as well as after n characters.
int ci_char_traits::compare(const char* s1, const char* s2, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    if (s1[i] == '\0') return s2[i] != '\0' ? -1 : 0;
    if (s2[i] == '\0') return 1;
    int c1 = lower(s1[i]);
    int c2 = lower(s2[i]);
    if (c1 < c2) return -1;
    if (c1 > c2) return 1;
  }
  return 0;
}

// Deliberately answers "not found" with the end position s + n, not a null
// pointer. The search members of ci_string (find, rfind, ...) expect null for a
// miss, so callers compare ci_strings whole and never search them.
const char* ci_char_traits::find(const char* s, int n, char a) {
  if (n < 1) return s;
  int i = 0;
  while (i < n && lower(s[i]) != lower(a)) ++i;
  return s + i;
}

bool iequals(const std::string& a, const std::string& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (upper(a[i]) != upper(b[i])) return false;
  return true;
}

bool strcaseequal(const std::string& a, const std::string& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (lower(a[i]) != lower(b[i])) return false;
  return true;
}

bool strcaseequal(const std::string& a, const std::string& b, unsigned long n) {
  if (n > a.size() || n > b.size()) return false;
  for (unsigned long i = 0; i < n; ++i)
    if (lower(a[i]) != lower(b[i])) return false;
  return true;
}

// A prefix comparison of n characters, despite the name. Two texts that end
// together before n count as equal: nothing is read behind their terminators.
int strcasestr_n(const char* a, const char* b, int n) {
  if (n < 1) return 1;
  if (a == nullptr || b == nullptr) return 0;
  for (int i = 0; i < n; ++i) {
    if (lower(a[i]) != lower(b[i])) return 0;
    if (a[i] == '\0') return 1;
  }
  return 1;
}

bool isAlphabetical(const std::string& s) {
  if (s.empty()) return false;
  for (char c : s)
    if (!std::isalpha(static_cast<unsigned char>(c))) return false;
  return true;
}
