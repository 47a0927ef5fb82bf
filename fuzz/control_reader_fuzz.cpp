// Fuzzes the control-file reader with arbitrary text.
#include <algorithm>
#include <cctype>
#include <exception>
#include <string>

#include "fuzz_common.h"
#include "transport.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  txfuzz::init();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string text(reinterpret_cast<const char*>(data), size);
  std::string lower = text;
  std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
  // The crystal key reads whatever file it names; that reader has its own fuzzer.
  if (lower.find("crystal") != std::string::npos) return 0;
  std::string path = txfuzz::write_input(data, size, "tavix.inp");
  try {
    Transport t;
    t.read_tavix_inp(path.c_str(), false);
  } catch (const txfuzz::FatalExit&) {
  } catch (const std::exception&) {
  }
  return 0;
}
