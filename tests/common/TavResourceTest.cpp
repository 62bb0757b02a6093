#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "common/TavResource.h"
#include "support/TemporaryHome.h"

namespace fs = std::filesystem;

namespace {

// HOME on a fresh directory, and a working directory of its own for the properties file.
class TavResourceTest : public ::testing::Test {
protected:
  tavtest::TemporaryDirectory home, workingDirectory;
  const tavtest::WorkingDirectory inside{workingDirectory.Path()};
  const tavtest::ScopedHome homeVariable{home.Path()};
  const std::string properties = workingDirectory.Path() + "/TavClientResource.properties";
  TavResource& resource = TavResource::GetInstance();
};

TEST_F(TavResourceTest, WithoutAPropertiesFileOrWithCommentsOnlyMakesTheDefaultsUnderHome) {
  for (const bool withComments : {false, true}) {
    if (withComments) std::ofstream(properties) << "/* TAVCLIENT_PATH=/elsewhere */\n\n";
    EXPECT_EQ(resource.Load(), 0);
    EXPECT_TRUE(resource.IsLoaded());
    EXPECT_EQ(resource.GetHome(), home.Path());
    EXPECT_EQ(resource.GetBasePath(), home.Path() + "/TavClient");
    EXPECT_EQ(resource.GetLogPath(), home.Path() + "/TavClient/log");
    EXPECT_EQ(resource.GetRepositoryPath(), home.Path() + "/TavClient/repository");
    EXPECT_TRUE(fs::is_directory(resource.GetLogPath()) && fs::is_directory(resource.GetRepositoryPath()));
  }
}

// Any key=value line makes the reader throw: Load has read HOME then and made nothing.
TEST_F(TavResourceTest, APropertiesFileWithAKeyThrowsBeforeMakingAnything) {
  std::ofstream(properties) << "LOG_PATH=" << home.Path() << "/logs\n";
  EXPECT_THROW(resource.Load(), std::out_of_range);
  EXPECT_EQ(resource.GetHome(), home.Path());
  EXPECT_TRUE(fs::is_empty(home.Path()));
}

TEST_F(TavResourceTest, ADirectoryThatCannotBeMadeGivesTheFailureCode) {
  const std::string file = home.Path() + "/file";
  std::ofstream(file) << "x";
  const tavtest::ScopedHome homeOnAFile(file);
  EXPECT_EQ(resource.Load(), 1005011);
  EXPECT_EQ(resource.GetBasePath(), file + "/TavClient");
}

}  // namespace
