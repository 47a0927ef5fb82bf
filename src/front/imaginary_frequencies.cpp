// The warnings about imaginary frequencies: every evc.cart.dat under evc is read
// and its table of normal modes is searched for a negative frequency.
#include <dirent.h>
#include <sys/stat.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "tavix_output.h"

namespace {
// Deep enough for any run layout; a loop of directory links stops here.
constexpr int kMaxListDepth = 64;

void list_files_below(const char* dir, std::vector<std::string>& files, int depth) {
  if (depth > kMaxListDepth) return;
  DIR* d = opendir(dir);
  if (d == nullptr) return;
  // The directory test looks the bare entry name up relative to the current
  // directory, not under `dir`, and keeps the previous verdict when the lookup
  // fails. Deliberate: run directories have been laid out around that lookup.
  // Before any lookup has succeeded the verdict is "directory", the answer "."
  // gives, so the outcome does not hang on where a file system lists "." among
  // the entries; descending into something that is no directory finds nothing.
  bool is_dir = true;
  while (struct dirent* entry = readdir(d)) {
    const std::string name = entry->d_name;
    if (iequals(name, "evc.cart.dat")) files.push_back(std::string(dir) + "/" + name);
    struct stat st;
    if (stat(name.c_str(), &st) == 0) is_dir = S_ISDIR(st.st_mode);
    if (is_dir && name != "." && name != "..")
      list_files_below((std::string(dir) + "/" + name).c_str(), files, depth + 1);
  }
  closedir(d);
}
}  // namespace

void TavixDataOutput::listFiles(const char* dir, std::vector<std::string>& files) {
  list_files_below(dir, files, 0);
}

bool TavixDataOutput::is_directory(const char* path) {
  struct stat st = {};
  stat(path, &st);
  return S_ISDIR(st.st_mode);
}

bool TavixDataOutput::parse_evc_file_imag_freq(const std::string& path) {
  std::ifstream in(path);
  if (!in) {
    std::fprintf(stderr, "ERROR: Failed to open file %s\n", path.c_str());
    tx_exit(1);
  }
  std::vector<std::string> lines;
  std::string line;
  while (std::getline(in, line)) lines.push_back(trim(line));

  size_t start = 0;
  size_t stop = 0;
  bool found_stop = false;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (iequals(lines[i], "BEGIN_OUTPUT_1")) {
      i += 4;
      start = i;
    } else if (strcaseequal(lines[i], "--------", 8)) {
      stop = i;
      found_stop = true;
      break;
    }
  }
  if (!found_stop || start >= stop) return false;

  for (size_t i = start; i < stop; ++i) {
    std::vector<std::string> words;
    split_to_words(lines[i], " \t", words);
    // A shorter row has no frequency columns to read.
    if (words.size() < 10) {
      std::fprintf(stderr, "ERROR: %s line %zu: expected at least 10 columns in the normal-mode table, found %zu\n",
                   path.c_str(), i + 1, words.size());
      tx_exit(1);
    }
    // std::stod throws on a word that is no number, and nothing catches it.
    if (std::stod(words[3]) < 0.0 || std::stod(words[9]) < 0.0) return true;
  }
  return false;
}

void TavixDataOutput::check_imag_freq(FILE* report) {
  std::vector<std::string> files;
  listFiles("evc", files);
  for (const std::string& file : files) {
    if (parse_evc_file_imag_freq(file)) {
      std::fprintf(report, "WARNING\n");
      std::fprintf(report, "WARNING -- imaginary frequency found in file %s\n", file.c_str());
      std::fprintf(report, "WARNING\n");
      std::fprintf(report, "\n");
    }
  }
}
