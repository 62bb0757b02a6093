#ifndef TAVTEST_SUPPORT_TEMPORARYHOME_H
#define TAVTEST_SUPPORT_TEMPORARYHOME_H

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "support/TemporaryDirectory.h"

namespace tavtest {

// Sets HOME (or unsets it, for nullopt) for the object's life and puts back what was there,
// unset included.
class ScopedHome {
public:
  explicit ScopedHome(const std::optional<std::string>& home);
  ~ScopedHome();
  ScopedHome(const ScopedHome&) = delete;
  ScopedHome& operator=(const ScopedHome&) = delete;

private:
  std::optional<std::string> previous_;
};

// Points HOME at a fresh temporary directory for the whole test program, so the library's
// directories and log files never land in the real home. A test program gets it by linking
// the object library tav_testhome (support/HomeEnvironment.cpp registers it).
class TemporaryHome : public ::testing::Environment {
public:
  void SetUp() override {
    home_.emplace();
    variable_.emplace(home_->Path());
  }
  void TearDown() override {
    variable_.reset();
    home_.reset();
  }

private:
  std::optional<TemporaryDirectory> home_;
  std::optional<ScopedHome> variable_;
};

// Every line of every log file the library wrote under `home` so far.
std::vector<std::string> LogLines(const std::string& home);

}  // namespace tavtest

#endif
