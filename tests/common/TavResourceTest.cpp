#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "TestHelpers.h"
#include "common/TavResource.h"
#include "support/TemporaryDirectory.h"

namespace fs = std::filesystem;

namespace {

// HOME on a fresh directory, and a working directory of its own for the properties file.
class TavResourceTest : public ::testing::Test {
protected:
  void ExpectDefaultsUnderHome() {
    const TavResource& resource = TavResource::GetInstance();
    EXPECT_EQ(resource.GetHome(), home.Path());
    EXPECT_EQ(resource.GetBasePath(), home.Path() + "/TavClient");
    EXPECT_EQ(resource.GetLogPath(), home.Path() + "/TavClient/log");
    EXPECT_EQ(resource.GetRepositoryPath(), home.Path() + "/TavClient/repository");
    EXPECT_TRUE(resource.IsLoaded());
    EXPECT_TRUE(fs::is_directory(resource.GetLogPath()) && fs::is_directory(resource.GetRepositoryPath()));
  }

  tavtest::TemporaryDirectory home;
  tavtest::TemporaryDirectory workingDirectory;
  const tavtest::WorkingDirectory inside{workingDirectory.Path()};
  const tavtest::ScopedHome homeVariable{home.Path()};
  const std::string properties = workingDirectory.Path() + "/TavClientResource.properties";
};

TEST_F(TavResourceTest, WithoutAPropertiesFileOrWithCommentsOnlyUsesTheDefaults) {
  EXPECT_EQ(TavResource::GetInstance().Load(), 0);
  ExpectDefaultsUnderHome();
  tavtest::WriteFile(properties, "/* TAVCLIENT_PATH=/elsewhere */\n\n");
  EXPECT_EQ(TavResource::GetInstance().Load(), 0) << "again, over existing directories";
  ExpectDefaultsUnderHome();
}

// Any key=value line makes the reader throw: Load has read HOME then and made nothing.
TEST_F(TavResourceTest, APropertiesFileWithAKeyThrowsBeforeMakingAnything) {
  tavtest::WriteFile(properties, "LOG_PATH=" + home.Path() + "/logs\n");
  EXPECT_THROW(TavResource::GetInstance().Load(), std::out_of_range);
  EXPECT_EQ(TavResource::GetInstance().GetHome(), home.Path());
  EXPECT_TRUE(fs::is_empty(home.Path()));
}

TEST_F(TavResourceTest, ADirectoryThatCannotBeMadeGivesTheFailureCode) {
  const std::string file = home.Path() + "/file";
  tavtest::WriteFile(file, "x");
  const tavtest::ScopedHome homeOnAFile(file);
  EXPECT_EQ(TavResource::GetInstance().Load(), 1005011);
  EXPECT_EQ(TavResource::GetInstance().GetBasePath(), file + "/TavClient");
}

}  // namespace
