// Splitting text into words: tokenize, split_to_words, split_string, strhed.
#include <cstring>
#include <sstream>

#include "txutil.h"

namespace {

// Cuts at any character of `delims`; runs of delimiters give no empty words.
void cut_words(const std::string& text, const std::string& delims, std::vector<std::string>& out) {
  size_t start = text.find_first_not_of(delims);
  while (start != std::string::npos) {
    size_t end = text.find_first_of(delims, start);
    out.push_back(text.substr(start, end == std::string::npos ? std::string::npos : end - start));
    start = text.find_first_not_of(delims, end);
  }
}

// Blank and the control characters 8 to 13 (backspace, tab, line feed,
// vertical tab, form feed, carriage return).
bool is_rest_blank(char c) { return c == ' ' || (c >= 8 && c <= 13); }

}  // namespace

int tokenize(std::vector<std::string>& out, const char* text, const char* delims) {
  out.clear();
  if (text == nullptr || delims == nullptr) return 0;
  cut_words(text, delims, out);
  return 1;
}

int tokenize(std::vector<std::string>& out, const std::string& text, const std::string& delims) {
  out.clear();
  cut_words(text, delims, out);
  return 1;
}

void split_to_words(const std::string& text, const std::string& delims, std::vector<std::string>& out) {
  out.clear();
  cut_words(text, delims, out);
}

std::vector<std::string> split_string(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> words;
  std::string word;
  while (in >> word) words.push_back(word);
  return words;
}

std::vector<std::string> split_string_dl(const std::string& text, char delim) {
  std::vector<std::string> words;
  std::string word;
  for (char c : text + delim) {
    if (c == delim) {
      if (!word.empty()) words.push_back(word);
      word.clear();
    } else {
      word += c;
    }
  }
  return words;
}

// Cuts the first word out of *p in place and leaves *p on the trimmed rest.
char* strhed(char** p) {
  if (p == nullptr || *p == nullptr) return nullptr;
  char* word = *p;
  while (*word == ' ' || *word == '\t' || *word == '\n') ++word;
  char* rest = word;
  while (*rest != '\0' && *rest != ' ' && *rest != '\t' && *rest != '\n') ++rest;
  if (*rest != '\0') *rest++ = '\0';
  while (is_rest_blank(*rest)) ++rest;
  size_t len = std::strlen(rest);
  while (len > 0 && is_rest_blank(rest[len - 1])) rest[--len] = '\0';
  *p = rest;
  return word;
}
