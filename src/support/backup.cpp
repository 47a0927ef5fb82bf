// Moving old output aside: backup_file ("name#") and make_file_backup ("name.k").
#include <cstdio>
#include <cstdlib>

#include "txutil.h"

namespace {
constexpr size_t kMoveCommandSize = 264;  // bytes, terminator included
}

// The move runs through the shell and its result is not checked; a previous
// "name#" is replaced. A name too long for the command buffer is refused rather
// than cut, since a cut command would move the file to some other name.
void backup_file(const char* path) {
  if (!file_exists(path)) return;
  char command[kMoveCommandSize];
  int needed = std::snprintf(command, sizeof command, "mv %s %s#", path, path);
  if (needed < 0 || static_cast<size_t>(needed) >= sizeof command) {
    std::fprintf(stderr, "Couldn't backup %s: the name is too long\n", path);
    return;
  }
  int status = std::system(command);
  (void)status;
}

// Takes the first free name of "<dir>/<name>.1" to ".9". When all nine exist the
// first is deleted and taken again: a fixed limit with reuse of slot 1, not a
// rotation, which is how the scheme has always stood.
void make_file_backup(const std::string& path) {
  if (path.empty() || !file_exists(path.c_str())) return;
  std::pair<std::string, std::string> parts = getParentPathAndBasename(path);
  std::string dir = parts.first.empty() ? std::string(".") : parts.first;

  std::string backup;
  for (int k = 1; k <= 9; ++k) {
    std::string candidate = format_string("%s/%s.%d", dir.c_str(), parts.second.c_str(), k);
    if (!file_exists(candidate.c_str())) {
      backup = candidate;
      break;
    }
  }
  if (backup.empty()) {
    backup = format_string("%s/%s.%d", dir.c_str(), parts.second.c_str(), 1);
    std::remove(backup.c_str());
  }

  if (std::rename(path.c_str(), backup.c_str()) == 0)
    std::fprintf(stderr, "Backed up %s to %s\n", path.c_str(), backup.c_str());
  else
    std::fprintf(stderr, "Couldn't backup %s to %s\n", path.c_str(), backup.c_str());
}
