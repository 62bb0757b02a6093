#include <gtest/gtest.h>

#include "model/ParamReader.h"
#include "model/ResultText.h"

namespace tavsim {
namespace {

TEST(ParamReader, ReadsTheClientsForms) {
  Params params{{"motor_ids", R"(["1","2"])"},
                {"position", "[10.000000,-0.500000]"},
                {"signal", R"({"1": 0,"2": 1})"},
                {"pose", "[0.100000,0.200000,0.300000,[0.000000,1.570000,0.000000]]"},
                {"points", "[[1.0,2.0,3.0,[0.0,0.0,0.0]],[4.0,5.0,6.0,[0.1,0.2,0.3]]]"},
                {"velocity", "0.500000"},
                {"relative", "1"},
                {"parameters", R"({"channel_name": "","host_id": 1})"}};
  ParamReader reader(params);

  std::vector<int> ids;
  ASSERT_TRUE(reader.ids("motor_ids", ids));
  EXPECT_EQ(ids, (std::vector<int>{1, 2}));
  std::vector<double> reals;
  ASSERT_TRUE(reader.reals("position", reals));
  EXPECT_EQ(reals, (std::vector<double>{10.0, -0.5}));
  std::vector<std::pair<int, int>> signals;
  ASSERT_TRUE(reader.signals("signal", signals));
  EXPECT_EQ(signals, (std::vector<std::pair<int, int>>{{1, 0}, {2, 1}}));
  Pose pose;
  ASSERT_TRUE(reader.pose("pose", pose));
  EXPECT_DOUBLE_EQ(pose.y, 0.2);
  EXPECT_DOUBLE_EQ(pose.pitch, 1.57);
  std::vector<Pose> points;
  ASSERT_TRUE(reader.poses("points", points));
  ASSERT_EQ(points.size(), 2u);
  EXPECT_DOUBLE_EQ(points[1].yaw, 0.3);
  double velocity = 0.0;
  EXPECT_TRUE(reader.positive("velocity", velocity));
  EXPECT_DOUBLE_EQ(velocity, 0.5);
  bool relative = false;
  EXPECT_TRUE(reader.flag("relative", relative));
  EXPECT_TRUE(relative);
  EXPECT_TRUE(reader.object("parameters"));

  Params empty{{"motor_ids", "[]"}, {"points", "[]"}, {"signal", "{}"}};
  ParamReader none(empty);
  EXPECT_TRUE(none.ids("motor_ids", ids));
  EXPECT_TRUE(ids.empty());
  EXPECT_TRUE(none.poses("points", points));
  EXPECT_TRUE(none.signals("signal", signals));
}

TEST(ParamReader, RejectsMalformedTextsWithoutThrowing) {
  Params params{{"ids", R"(["1","x"])"},      {"open", "[1.0,2.0"},
                {"trailing", "[1.0]]"},       {"word", "abc"},
                {"nan", "nan"},               {"flag", "2"},
                {"short", "[0.1,0.2,[0.0,0.0,0.0]]"},
                {"signal", R"({"a": 1})"},    {"deep", "[[[[[[[[[[[[1]]]]]]]]]]]]"},
                {"unquoted", R"({1: 0})"},    {"zero", "0.000000"},
                {"huge", "99999999999999999999"}};
  ParamReader reader(params);
  std::vector<int> ids;
  std::vector<double> reals;
  std::vector<std::pair<int, int>> signals;
  Pose pose;
  double real = 0.0;
  int integer = 0;
  bool flag = false;
  EXPECT_FALSE(reader.ids("ids", ids));
  EXPECT_FALSE(reader.reals("open", reals));
  EXPECT_FALSE(reader.reals("trailing", reals));
  EXPECT_FALSE(reader.real("word", real));
  EXPECT_FALSE(reader.real("nan", real));
  EXPECT_FALSE(reader.flag("flag", flag));
  EXPECT_FALSE(reader.pose("short", pose));
  EXPECT_FALSE(reader.signals("signal", signals));
  EXPECT_FALSE(reader.reals("deep", reals));
  EXPECT_FALSE(reader.signals("unquoted", signals));
  EXPECT_FALSE(reader.positive("zero", real));
  EXPECT_FALSE(reader.integer("huge", integer));
  EXPECT_FALSE(reader.reals("missing", reals));
}

TEST(ResultText, ListsInTheFormsTheClientSplits) {
  EXPECT_EQ(fixedList({45.0, -0.5, -0.0}), "[45.000000,-0.500000,0.000000]");
  EXPECT_EQ(integerList({1, 2, 3}), "[1,2,3]");
  EXPECT_EQ(integerList({}), "[]");
  EXPECT_EQ(poseList({0.123456789012, 0, -1.5, 0, 3.14159265358979, 0}),
            "[0.123456789,0,-1.5,0,3.14159265,0]");
}

}  // namespace
}  // namespace tavsim
