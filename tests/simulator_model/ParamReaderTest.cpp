#include <gtest/gtest.h>

#include "model/ParamReader.h"
#include "model/ResultText.h"

namespace tavsim {
namespace {

// The controller tests drive every reader with the client's texts; these are texts it must refuse.
TEST(ParamReader, RejectsMalformedTextsWithoutThrowing) {
  Params params{{"ids", R"(["1","x"])"},
                {"open", "[1.0,2.0"},
                {"trailing", "[1.0]]"},
                {"word", "abc"},
                {"nan", "nan"},
                {"short", "[0.1,0.2,[0.0,0.0,0.0]]"},
                {"signal", R"({"a": 1})"},
                {"deep", "[[[[[[[[[[[[1]]]]]]]]]]]]"},
                {"unquoted", R"({1: 0})"},
                {"huge", "99999999999999999999"}};
  ParamReader reader(params);
  std::vector<int> ids;
  std::vector<double> reals;
  std::vector<std::pair<int, int>> signals;
  Pose pose;
  double real = 0.0;
  int integer = 0;
  EXPECT_FALSE(reader.Ids("ids", ids));
  EXPECT_FALSE(reader.Reals("open", reals));
  EXPECT_FALSE(reader.Reals("trailing", reals));
  EXPECT_FALSE(reader.Real("word", real));
  EXPECT_FALSE(reader.Real("nan", real));
  EXPECT_FALSE(reader.SinglePose("short", pose));
  EXPECT_FALSE(reader.Signals("signal", signals));
  EXPECT_FALSE(reader.Reals("deep", reals));
  EXPECT_FALSE(reader.Signals("unquoted", signals));
  EXPECT_FALSE(reader.Integer("huge", integer));
  EXPECT_FALSE(reader.Reals("missing", reals));
}

TEST(ResultText, ListsInTheFormsTheClientSplits) {
  EXPECT_EQ(FixedList({45.0, -0.5, -0.0}), "[45.000000,-0.500000,0.000000]");
  EXPECT_EQ(IntegerList({1, 2, 3}), "[1,2,3]");
  EXPECT_EQ(IntegerList({}), "[]");
  EXPECT_EQ(PoseList({0.123456789012, 0, -1.5, 0, 3.14159265358979, 0}),
            "[0.123456789,0,-1.5,0,3.14159265,0]");
}

}  // namespace
}  // namespace tavsim
