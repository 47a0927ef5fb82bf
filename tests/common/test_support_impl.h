// Template parts of test_support.h.
#ifndef TAVIX_TEST_SUPPORT_IMPL_H
#define TAVIX_TEST_SUPPORT_IMPL_H

#include <gtest/gtest.h>

namespace txtest {

template <typename F>
std::string capture_stdout(F&& f) {
  testing::internal::CaptureStdout();
  f();
  std::fflush(stdout);
  return testing::internal::GetCapturedStdout();
}

}  // namespace txtest

#endif  // TAVIX_TEST_SUPPORT_IMPL_H
