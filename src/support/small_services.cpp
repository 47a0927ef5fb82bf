// Small services: OS names, dates, random names and draws, FNW_hash.
#include <cstdlib>
#include <ctime>

#include "txutil.h"

namespace {

constexpr int kRandomStringBuffer = 256;  // bytes, terminator included
bool g_random_string_seeded = false;

const char* const kWeekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                               "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

std::tm local_now() {
  std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  return parts;
}

}  // namespace

const char* get_OS_str() { return "Linux"; }

const char* get_OS_sub_str() { return "linux"; }

int get_date(int* month, int* day, int* year) {
  std::tm now = local_now();
  if (month) *month = now.tm_mon + 1;
  if (day) *day = now.tm_mday;
  if (year) *year = now.tm_year + 1900;
  return now.tm_year + 1900;
}

// `dst` takes at most 25 bytes for any four-digit year.
void get_now_date_time(char* dst) {
  if (dst == nullptr) return;
  std::tm now = local_now();
  std::sprintf(dst, "%s %s %d %02d:%02d:%02d %4d", kWeekdays[now.tm_wday], kMonths[now.tm_mon], now.tm_mday,
               now.tm_hour, now.tm_min, now.tm_sec, now.tm_year + 1900);
}

char* get_now_date_time() {
  static char text[256];
  get_now_date_time(text);
  return text;
}

// The buffer is static and overwritten by the next call. Lengths above 255 are
// clamped to 255 so that the text and its terminator fit.
char* randomString(int n) {
  static const char charset[] = "abcdefghijklmnopqrstuvwxyz0123456789";
  static char text[kRandomStringBuffer];
  if (!g_random_string_seeded) {
    std::srand(static_cast<unsigned>(std::time(nullptr)));
    g_random_string_seeded = true;
  }
  if (n < 0) n = 0;
  if (n > kRandomStringBuffer - 1) n = kRandomStringBuffer - 1;
  for (int i = 0; i < n; ++i) text[i] = charset[std::rand() % 36];
  text[n] = '\0';
  return text;
}

int intN(int n) {
  if (n == 0) TX_FATAL(txunit::txutil, 1, stderr, "intN: cannot draw from an empty range (n = 0)\n");
  return std::rand() % n;
}

// FNV-1 in its steps, but the state is kept in 64 bits and never cut back to
// 32, and each character is sign-extended before the XOR. Deliberately not the
// published FNV-1: hash values must stay the same from one release to the next.
uint64_t FNW_hash(const char* text) {
  uint64_t hash = 0x811c9dc5u;
  if (text == nullptr) return hash;
  for (const char* p = text; *p; ++p) {
    hash *= 16777619u;
    hash ^= static_cast<uint64_t>(static_cast<int64_t>(static_cast<signed char>(*p)));
  }
  return hash;
}

uint64_t FNW_hash(const std::string& text) { return FNW_hash(text.c_str()); }
