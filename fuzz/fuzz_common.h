// Shared parts of the fuzz programs: the engine's fatal exits become an exception
// that the harness catches, since a reported bad input is a normal outcome; input
// bytes go to a private file because the readers take paths.
#ifndef TAVIX_FUZZ_COMMON_H
#define TAVIX_FUZZ_COMMON_H

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "txutil.h"

namespace txfuzz {

struct FatalExit {
  int status;
};

inline void throw_on_exit(int status) { throw FatalExit{status}; }

// Silences the readers' progress and error texts, installs the exit hook, and
// moves into a private directory for the input files.
inline void init() {
  if (!std::freopen("/dev/null", "w", stdout)) std::abort();
  set_tx_exit_handler(throw_on_exit);
  for (const char* name : {"TAVIX_JOB_SCHED", "TAVIX_JOB_QUEUE", "TAVIX_QC_EXE", "TAVIX_QC_NODES", "TAVIX_QC_PPN",
                           "TAVIX_MODULE_QC", "TAVIX_MODULE_TAVIX", "TAVIX_MODULE_MPICH2"})
    unsetenv(name);
  char templ[] = "/tmp/tavix_fuzz_XXXXXX";
  const char* dir = mkdtemp(templ);
  if (!dir || chdir(dir) != 0) std::abort();
}

inline std::string write_input(const uint8_t* data, size_t size, const char* name) {
  FILE* fp = std::fopen(name, "wb");
  if (!fp) std::abort();
  if (size) std::fwrite(data, 1, size, fp);
  std::fclose(fp);
  return name;
}

}  // namespace txfuzz

#endif  // TAVIX_FUZZ_COMMON_H
