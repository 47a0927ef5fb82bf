// The fatal report of the whole engine: one position line, one exit path.
#include "txutil.h"

#include <cstdlib>

namespace {
tx_exit_handler g_exit_handler = nullptr;
}

void fatal_report_head(const char* unit, int line) {
  std::printf("\nERROR  transport : %s : line %i : \n", unit, line);
}

tx_exit_handler set_tx_exit_handler(tx_exit_handler handler) {
  tx_exit_handler previous = g_exit_handler;
  g_exit_handler = handler;
  return previous;
}

void tx_exit(int status) {
  // Head and message may sit on different streams; flush both so neither is lost
  // when a harness handler takes over instead of exit().
  std::fflush(stdout);
  std::fflush(stderr);
  if (g_exit_handler) g_exit_handler(status);
  std::exit(status);
}

void fatal_report(const char* unit, int line, int status, FILE* stream, const char* fmt, ...) {
  fatal_report_head(unit, line);
  std::fflush(stdout);
  va_list args;
  va_start(args, fmt);
  std::vfprintf(stream, fmt, args);
  va_end(args);
  tx_exit(status);
}
