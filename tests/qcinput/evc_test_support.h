// Shared checks of the normal-mode, four-point and ONIOM tests: a produced file
// against its expected file, the interpreter's compiler and the shell's syntax check
// on generated scripts, and a fatal path run in a child process.
#ifndef TAVIX_TESTS_EVC_TEST_SUPPORT_H
#define TAVIX_TESTS_EVC_TEST_SUPPORT_H

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "test_support.h"
#include "transport.h"

namespace evctest {

// The position line of a fatal report of the transport unit, line number masked.
const std::string kFatalHead = "\nERROR  transport : transport : line # : \n";

// `produced` equals tests/data/golden/qcinput/<golden> byte for byte; both must exist.
inline void expect_golden(const std::string& produced, const std::string& golden) {
  const std::string path = txtest::data_path("golden/qcinput/" + golden);
  ASSERT_TRUE(txtest::path_exists(path)) << path;
  ASSERT_TRUE(txtest::path_exists(produced)) << produced;
  EXPECT_EQ(txtest::read_file(produced), txtest::read_file(path)) << produced;
}

inline void expect_py_compiles(const std::string& path) {
  const txtest::RunResult r = txtest::run_command("python3 -m py_compile '" + path + "'");
  EXPECT_EQ(r.status, 0) << path << "\n" << r.err;
}

inline void expect_bash_syntax(const std::string& path) {
  const txtest::RunResult r = txtest::run_command("bash -n '" + path + "'");
  EXPECT_EQ(r.status, 0) << path << "\n" << r.err;
}

// `call` on a fresh object of one molecule with electron work, in a child process.
inline txtest::RunResult forked(const std::function<void(Transport&)>& call) {
  return txtest::run_forked([&] {
    Transport t;
    t.nmols_uc = 1;
    t.chargetype = "e";
    call(t);
  });
}

// A forked `call` ends with status -1 (255), the position line and `message` on
// standard error.
inline void expect_fatal_open(const std::function<void(Transport&)>& call, const std::string& message) {
  const txtest::RunResult r = forked(call);
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(txtest::mask_line_numbers(r.out), kFatalHead);
  EXPECT_EQ(r.err, message);
}

}  // namespace evctest

#endif  // TAVIX_TESTS_EVC_TEST_SUPPORT_H
