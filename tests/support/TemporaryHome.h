#ifndef TAVTEST_SUPPORT_TEMPORARYHOME_H
#define TAVTEST_SUPPORT_TEMPORARYHOME_H

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/TemporaryDirectory.h"

namespace tavtest {

// Points HOME at a fresh temporary directory for the whole test program, so the library's
// directories and log files never land in the real home. Register it from the test program
// (a static library cannot register it by itself):
//   const auto* const kHome = ::testing::AddGlobalTestEnvironment(new tavtest::TemporaryHome);
class TemporaryHome : public ::testing::Environment {
public:
  void SetUp() override;
  void TearDown() override;

  // The HOME of the running test program; empty before SetUp.
  static std::string Path();
  // Every line of every log file the library wrote under this HOME so far.
  static std::vector<std::string> LogLines();

private:
  std::unique_ptr<TemporaryDirectory> home_;
  std::optional<std::string> previousHome_;
};

}  // namespace tavtest

#endif
