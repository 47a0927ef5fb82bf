#include "test_support.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace txtest {

TempDir::TempDir(bool enter) : entered_(enter) {
  const char* base = std::getenv("TMPDIR");
  std::string templ = std::string(base && *base ? base : "/tmp") + "/tavix_test_XXXXXX";
  char* made = mkdtemp(&templ[0]);
  if (!made) throw std::runtime_error("mkdtemp failed");
  path_ = made;
  if (entered_) {
    char buf[4096];
    if (getcwd(buf, sizeof buf)) previous_cwd_ = buf;
    if (chdir(path_.c_str()) != 0) throw std::runtime_error("chdir failed");
  }
}

TempDir::~TempDir() {
  if (entered_ && !previous_cwd_.empty()) {
    if (chdir(previous_cwd_.c_str()) != 0) {
    }
  }
  std::string cmd = "rm -rf '" + path_ + "'";
  if (std::system(cmd.c_str()) != 0) {
  }
}

RunResult run_command(const std::string& command, const std::string& dir) {
  TempDir capture(false);
  std::string out_path = capture.file("stdout");
  std::string err_path = capture.file("stderr");
  std::string full = (dir.empty() ? std::string() : "cd '" + dir + "' && ") + "( " + command + " ) >'" +
                     out_path + "' 2>'" + err_path + "'";
  int raw = std::system(full.c_str());
  RunResult r;
  if (WIFEXITED(raw))
    r.status = WEXITSTATUS(raw);
  else if (WIFSIGNALED(raw))
    r.status = 128 + WTERMSIG(raw);
  else
    r.status = -1;
  r.out = read_file(out_path);
  r.err = read_file(err_path);
  return r;
}

RunResult run_forked(const std::function<void()>& f) {
  TempDir capture(false);
  std::string out_path = capture.file("stdout");
  std::string err_path = capture.file("stderr");
  std::fflush(stdout);
  std::fflush(stderr);
  pid_t pid = fork();
  if (pid == 0) {
    if (!std::freopen(out_path.c_str(), "w", stdout)) _exit(120);
    if (!std::freopen(err_path.c_str(), "w", stderr)) _exit(121);
    f();
    std::fflush(stdout);
    std::fflush(stderr);
    std::exit(0);
  }
  int raw = 0;
  waitpid(pid, &raw, 0);
  RunResult r;
  if (WIFEXITED(raw))
    r.status = WEXITSTATUS(raw);
  else if (WIFSIGNALED(raw))
    r.status = 128 + WTERMSIG(raw);
  else
    r.status = -1;
  r.out = read_file(out_path);
  r.err = read_file(err_path);
  return r;
}

RunResult run_gather(const std::string& args, const std::string& dir) {
  return run_command(std::string("'") + TAVIX_GATHER_EXE + "' " + args, dir);
}

std::string read_file(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream ss;
  ss << in.rdbuf();
  return ss.str();
}

void write_file(const std::string& path, const std::string& content) {
  std::ofstream out(path, std::ios::binary);
  out << content;
}

bool path_exists(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0;
}

std::string mask_line_numbers(const std::string& text) {
  static const std::string marker = "ERROR  transport : ";
  std::string out;
  size_t pos = 0;
  while (true) {
    size_t hit = text.find(marker, pos);
    if (hit == std::string::npos) break;
    size_t line = text.find(" : line ", hit + marker.size());
    if (line == std::string::npos) break;
    size_t digits = line + 8;
    size_t end = digits;
    while (end < text.size() && std::isdigit(static_cast<unsigned char>(text[end]))) ++end;
    out += text.substr(pos, digits - pos) + "#";
    pos = end;
  }
  return out + text.substr(pos);
}

std::string data_path(const std::string& relative) { return std::string(TAVIX_TEST_DATA_DIR) + "/" + relative; }

}  // namespace txtest
