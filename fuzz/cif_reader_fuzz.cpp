// Fuzzes the CIF reader (line scan, loops, operator parsing, expansion and
// separation into molecules) with arbitrary text.
#include <algorithm>
#include <exception>

#include "fileio.h"
#include "fuzz_common.h"

namespace {

// Large inputs add nothing the small ones do not reach, and the overlap search
// is quadratic in the full cell.
constexpr size_t kMaxInputBytes = 64 * 1024;
// Each operator and each atom needs a line of its own, so operators times
// atoms stays below (lines / 2)^2: about 16000 copies at most.
constexpr long kMaxLines = 256;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  txfuzz::init();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > kMaxInputBytes) return 0;
  if (std::count(data, data + size, static_cast<uint8_t>('\n')) >= kMaxLines) return 0;
  const std::string path = txfuzz::write_input(data, size, "input.cif");
  // The last byte picks the traces, so that the verbose and debug prints run too.
  const bool verbose = size > 0 && (data[size - 1] & 1);
  try {
    FileIO io;
    io.debug_level = size > 0 && (data[size - 1] & 2) ? 1 : 0;
    io.read_data_cif(path.c_str(), verbose);
  } catch (const txfuzz::FatalExit&) {
  } catch (const std::exception&) {
  }
  return 0;
}
