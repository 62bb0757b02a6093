#include <string>
#include <vector>

#include "robot/RobotFixture.h"

namespace {

using RobotFormatterTest = RobotTest;

// The forms no command of the library sends, and the splitter's edge cases.
TEST_F(RobotFormatterTest, UnsentFormsAndSplitting) {
  std::string text = "replaced";
  const int values[3] = {1, 0, 1};
  robot.to_IntString(5, text);
  EXPECT_EQ(text, "[5]");
  robot.to_IntString(3, values, text);
  EXPECT_EQ(text, "[1,0,1]");
  robot.to_DoubleString(-0.5, text);
  EXPECT_EQ(text, "[-0.500000]");
  robot.to_SetupParamString({"", "can", "canopen", -1, 0}, text);
  EXPECT_EQ(text, "{\"channel_name\": \"\",\"channel_type\": \"can\",\"protocol\": \"canopen\",\"host_id\": -1,"
                  "\"baud_rate\": 0}");

  std::vector<std::string> pieces{"kept"};
  robot.SplitString("1,,2,", pieces, ",");
  robot.SplitString("", pieces, ",");
  robot.SplitString(",7", pieces, ",");
  robot.SplitString("8", pieces, "");
  EXPECT_EQ(pieces, (std::vector<std::string>{"kept", "1", "", "2", "", "7", "8"}));
}

}  // namespace
