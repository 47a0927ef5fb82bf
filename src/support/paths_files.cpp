// Paths and files: names, existence tests, directories, line counts, globbing.
#include <glob.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>

#include "txutil.h"

std::string base_filename(const std::string& path) {
  size_t cut = path.find_last_of("/\\");
  return cut == std::string::npos ? path : path.substr(cut + 1);
}

// Cuts at the last dot wherever it stands, a dot in a directory name included.
std::string remove_filename_extension(const std::string& path) {
  size_t dot = path.find_last_of('.');
  return dot == std::string::npos ? path : path.substr(0, dot);
}

std::pair<std::string, std::string> getParentPathAndBasename(const std::string& path) {
  size_t cut = path.find_last_of("/\\");
  if (cut == std::string::npos) return {std::string(), path};
  return {path.substr(0, cut), path.substr(cut + 1)};
}

void get_workdir(std::string& out) {
  char buf[PATH_MAX];
  if (getcwd(buf, sizeof buf) == nullptr) {
    std::printf("WARNING: getcwd failed!\n");
    return;
  }
  out = buf;
  for (char& c : out)
    if (c == '\\') c = '/';
}

// A null path is a failed query, as stat itself would report it.
int dir_exists(const char* path) {
  if (path == nullptr) return -1;
  struct stat st;
  if (stat(path, &st) != 0) return (errno == ENOENT || errno == ENOTDIR) ? 0 : -1;
  return S_ISDIR(st.st_mode) ? 1 : 0;
}

bool fileExist(const char* path) {
  struct stat st;
  return path != nullptr && stat(path, &st) == 0;
}

// True when the path opens for reading, so a readable directory passes too.
bool file_exists(const char* path) {
  if (path == nullptr) return false;
  FILE* fp = std::fopen(path, "r");
  if (fp == nullptr) return false;
  std::fclose(fp);
  return true;
}

bool _file_exist(const std::string& path) { return !path.empty() && file_exists(path.c_str()); }

int create_directory(const char* path) {
  if (dir_exists(path) > 0) return 0;
  return mkdir(path, 0755);
}

int create_directory(const std::string& path) { return create_directory(path.c_str()); }

// Every carriage return and every line feed counts, so CR LF counts twice and a
// last line without an ending does not count. Raw pieces rather than lines, so
// that a NUL byte inside a line cannot hide the line end behind it.
int count_lines(const char* path) {
  FILE* fp = path != nullptr ? std::fopen(path, "r") : nullptr;
  if (fp == nullptr) {
    std::printf("ERROR: Failed to open input file %s\n", path != nullptr ? path : "(null)");
    tx_exit(-1);
  }
  char buf[1023];
  int count = 0;
  size_t got;
  while ((got = std::fread(buf, 1, sizeof buf, fp)) > 0) {
    for (size_t i = 0; i < got; ++i)
      if (buf[i] == '\r' || buf[i] == '\n') ++count;
  }
  std::fclose(fp);
  return count;
}

std::vector<std::string> globFileVector(const std::string& pattern) {
  std::vector<std::string> files;
  glob_t found;
  std::memset(&found, 0, sizeof found);
  if (glob(pattern.c_str(), GLOB_TILDE, nullptr, &found) == 0) {
    for (size_t i = 0; i < found.gl_pathc; ++i) files.push_back(found.gl_pathv[i]);
  }
  globfree(&found);
  return files;
}
