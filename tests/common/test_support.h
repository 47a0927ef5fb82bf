// Shared helpers of the test programs: temporary run directories, running the
// real executable, and reading and writing small files.
#ifndef TAVIX_TEST_SUPPORT_H
#define TAVIX_TEST_SUPPORT_H

#include <functional>
#include <string>

namespace txtest {

// A fresh directory under the system temp area, removed with its contents at
// the end of the scope. With `enter` the process works inside it meanwhile.
class TempDir {
 public:
  explicit TempDir(bool enter = true);
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::string& path() const { return path_; }
  std::string file(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
  std::string previous_cwd_;
  bool entered_;
};

struct RunResult {
  int status;        // exit status, or 128 + signal number
  std::string out;   // standard output
  std::string err;   // standard error
};

// Runs `command` through /bin/sh in directory `dir` (the current one if empty).
RunResult run_command(const std::string& command, const std::string& dir = "");

// Runs `f` in a forked child with standard output and error captured, so that a
// fatal path's exact text and exit status can be compared byte for byte. A child
// whose `f` returns exits with status 0.
RunResult run_forked(const std::function<void()>& f);

// Runs tavix_gather.exe with the given argument text.
RunResult run_gather(const std::string& args, const std::string& dir = "");

std::string read_file(const std::string& path);
void write_file(const std::string& path, const std::string& content);
bool path_exists(const std::string& path);

// Replaces the source line number of every fatal position line by "#", so that
// expected texts do not depend on where in a source file the report stands.
std::string mask_line_numbers(const std::string& text);

// A file of tests/data.
std::string data_path(const std::string& relative);

// Captures what a callable prints on standard output (through stdio).
template <typename F>
std::string capture_stdout(F&& f);

}  // namespace txtest

#include "test_support_impl.h"

#endif  // TAVIX_TEST_SUPPORT_H
