// Editing text: replacements, path-text fixes, number trimming, printf to string.
#include <climits>
#include <cstring>

#include "txutil.h"

// Goes on behind each replacement, so a replacement is never scanned again.
// An empty `from` would match everywhere without end and leaves `s` alone.
void findAndReplaceAll(std::string& s, const std::string& from, const std::string& to) {
  if (from.empty()) return;
  size_t pos = s.find(from);
  while (pos != std::string::npos) {
    s.replace(pos, from.size(), to);
    pos = s.find(from, pos + to.size());
  }
}

std::string RemoveWhiteSpaceUnderscore(const std::string& s) {
  std::string out;
  out.reserve(s.size());
  for (char c : s)
    if (c != ' ' && c != '_') out += c;
  return out;
}

void ReplaceSlashWithUnderscore(char* s) {
  if (s == nullptr) return;
  for (; *s; ++s)
    if (*s == '/' || *s == '\\') *s = '_';
}

void ReplaceSlashWithUnderscore(std::string& s) {
  for (char& c : s)
    if (c == '/' || c == '\\') c = '_';
}

void ReplaceBackSlashWithSlash(char* s) {
  if (s == nullptr) return;
  for (; *s; ++s)
    if (*s == '\\') *s = '/';
}

// "C:/dir" becomes the MSYS2 form "/C/dir"; anything else is left as it is.
void FixMsys2PathDrive(char* s) {
  if (s == nullptr || s[0] == '\0' || s[1] != ':') return;
  s[1] = s[0];
  s[0] = '/';
}

void FixMsys2PathDrive(std::string& s) {
  if (s.size() < 2 || s[1] != ':') return;
  s[1] = s[0];
  s[0] = '/';
}

// With a negative `digits` the text is cut at the point and the whole part then
// loses its trailing zeros too ("100.5" gives "1"). Deliberate: the routine is
// kept as the sibling programs have always had it. The zero stripping stops at
// the start of the buffer, so "0.5" becomes empty.
void morphNumericString(char* s, int digits) {
  if (s == nullptr) return;
  char* point = std::strchr(s, '.');
  if (point == nullptr) return;
  size_t cut = static_cast<size_t>(point - s);
  if (digits >= 0) {
    size_t len = std::strlen(s);
    size_t want = cut + 1 + static_cast<size_t>(digits);
    cut = want < len ? want : len;
  }
  s[cut] = '\0';
  while (cut > 0 && s[cut - 1] == '0') s[--cut] = '\0';
  if (cut > 0 && s[cut - 1] == '.') s[--cut] = '\0';
}

std::string formatString(const char* fmt, ...) {
  va_list args;
  va_start(args, fmt);
  std::string out = formatStringV(fmt, args);
  va_end(args);
  return out;
}

// Starts at 1024 bytes; a negative result doubles the size, a result too long
// for the buffer sets the size to the needed length plus one. A format that
// keeps failing ends the growth at INT_MAX with an empty result.
std::string formatStringV(const char* fmt, va_list args) {
  if (fmt == nullptr) return std::string();
  size_t size = 1024;
  while (true) {
    std::unique_ptr<char[]> buf(new char[size]);
    va_list attempt;
    va_copy(attempt, args);
    int written = std::vsnprintf(buf.get(), size, fmt, attempt);
    va_end(attempt);
    if (written >= 0 && static_cast<size_t>(written) < size) return std::string(buf.get(), written);
    if (written >= 0) {
      size = static_cast<size_t>(written) + 1;
    } else {
      if (size > static_cast<size_t>(INT_MAX) / 2) return std::string();
      size *= 2;
    }
  }
}
