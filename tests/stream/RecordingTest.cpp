// Recording samples to CSV: the header, a row per sample, empty cells for what was not read,
// and rows on disk while the recording runs.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "stream/MonitorFixture.h"
#include "support/Polling.h"
#include "support/TemporaryDirectory.h"

namespace {

using namespace std::chrono_literals;
using tavclient::StateField;
using tavclient::StateSample;
using tavtest::Fresh;
using tavtest::MonitorFixture;
using tavtest::SampleWaiter;

std::vector<std::string> Lines(const std::string& path) {
  std::ifstream file(path);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    lines.push_back(line);
  }
  return lines;
}

std::vector<std::string> Cells(const std::string& line) {
  std::vector<std::string> cells;
  std::stringstream stream(line);
  for (std::string cell; std::getline(stream, cell, ',');) {
    cells.push_back(cell);
  }
  if (!line.empty() && line.back() == ',') {
    cells.emplace_back();
  }
  return cells;
}

TEST_F(MonitorFixture, RecordsAHeaderWithUnitsAndARowPerSample) {
  tavtest::TemporaryDirectory directory;
  const std::string path = directory.Path() + "/state.csv";
  auto monitor = Monitor(100.0, StateField::Angles | StateField::Velocities | StateField::Currents);
  SampleWaiter waiter(*monitor);
  ASSERT_EQ(monitor->StartRecording(path), 0);
  ASSERT_EQ(monitor->Start(), 0);
  ASSERT_TRUE(waiter.WaitFor([](const StateSample& s) { return s.sequence >= 20; }));
  monitor->StopRecording();
  const auto lines = Lines(path);
  ASSERT_GE(lines.size(), 21u);
  EXPECT_EQ(lines[0],
            "time_s,wall_time_s,sequence,code,"
            "angle_1_deg,angle_2_deg,angle_3_deg,angle_4_deg,angle_5_deg,angle_6_deg,"
            "velocity_1_deg_per_s,velocity_2_deg_per_s,velocity_3_deg_per_s,"
            "velocity_4_deg_per_s,velocity_5_deg_per_s,velocity_6_deg_per_s,"
            "current_1_A,current_2_A,current_3_A,current_4_A,current_5_A,current_6_A");
  EXPECT_EQ(lines.size() - 1, monitor->Stats().recordedRows);
  double previous = -1.0;
  for (std::size_t i = 1; i < lines.size(); ++i) {
    const auto cells = Cells(lines[i]);
    ASSERT_EQ(cells.size(), 22u) << lines[i];
    EXPECT_GT(std::stod(cells[0]), previous);
    previous = std::stod(cells[0]);
    EXPECT_EQ(cells[2], std::to_string(i));
    EXPECT_EQ(cells[3], "0");
    EXPECT_EQ(std::stod(cells[5]), -90.0);  // joint 2 where the simulator starts it
  }
  EXPECT_EQ(std::stod(Cells(lines[1])[0]), 0.0);
  // Stopped, the file takes no more rows.
  ASSERT_TRUE(waiter.WaitFor([](const StateSample& s) { return s.sequence >= 25; }));
  EXPECT_EQ(Lines(path).size(), lines.size());
}

TEST_F(MonitorFixture, RowsReachTheDiskWhileRecordingAndFailuresLeaveCellsEmpty) {
  tavtest::TemporaryDirectory directory;
  const std::string path = directory.Path() + "/state.csv";
  auto monitor = Monitor(50.0, StateField::Angles | StateField::Pose);
  SampleWaiter waiter(*monitor);
  ASSERT_EQ(monitor->Start(), 0);
  ASSERT_TRUE(waiter.WaitFor(Fresh));
  ASSERT_EQ(monitor->StartRecording(path), 0);
  robot->Disconnect();
  ASSERT_TRUE(waiter.WaitFor([](const StateSample& s) { return s.code != 0; }));
  // Flushed within a second, with the recording still open.
  ASSERT_TRUE(tavtest::PollUntil(3s, [&] {
    const auto lines = Lines(path);
    return lines.size() > 2 && Cells(lines.back())[3] == "1001011";
  }));
  const auto lines = Lines(path);
  EXPECT_EQ(Cells(lines[0]).back(), "yaw_rad");
  const auto failed = Cells(lines.back());
  ASSERT_EQ(failed.size(), 16u) << lines.back();
  for (std::size_t i = 4; i < failed.size(); ++i) {
    EXPECT_EQ(failed[i], "") << "column " << i;
  }
  EXPECT_EQ(monitor->StartRecording(directory.Path() + "/missing/state.csv"), 1005011);
}

}  // namespace
