#include <gtest/gtest.h>

#include <memory>

#include "RosMaster.h"

namespace {

// Every test of the driver program talks to the program's own master.
class RosEnvironment : public ::testing::Environment {
public:
  void SetUp() override { master = std::make_unique<tavrostest::RosMaster>(); }
  void TearDown() override { master.reset(); }

private:
  std::unique_ptr<tavrostest::RosMaster> master;
};

const auto* const kRosEnvironment = ::testing::AddGlobalTestEnvironment(new RosEnvironment);

}  // namespace
