#include "stream/SampleReader.h"

#include <numeric>
#include <stdexcept>

#include "common/RobotEvent.h"

namespace tavclient {

namespace {

constexpr int kDefaultInputCount = 10;

std::vector<int> InputIdsOrDefault(const std::vector<int>& ids) {
  if (!ids.empty()) {
    return ids;
  }
  std::vector<int> all(kDefaultInputCount);
  std::iota(all.begin(), all.end(), 1);
  return all;
}

}  // namespace

SampleReader::SampleReader(std::shared_ptr<SharedRobot> shared, const MonitorOptions& options)
    : robot(std::move(shared)),
      fields(options.fields),
      inputIds(InputIdsOrDefault(options.inputIds)) {}

StateSample SampleReader::Read(std::uint64_t sequence) const {
  StateSample sample;
  sample.sequence = sequence;
  const auto before = std::chrono::steady_clock::now();
  int code = 0;
  try {
    code = robot->Use([&](Robot& arm) { return _query(arm, sample); });
  } catch (const std::exception&) {
    // A reply value that is not a number.
    code = RobotEvents::kDecodeFailed;
  }
  const auto after = std::chrono::steady_clock::now();
  // The values stand for the middle of the queries that read them.
  sample.time = before + (after - before) / 2;
  sample.wallTime =
      std::chrono::system_clock::now() -
      std::chrono::duration_cast<std::chrono::system_clock::duration>(after - sample.time);
  sample.code = code;
  return sample;
}

int SampleReader::_query(Robot& arm, StateSample& sample) const {
  arm.get_motor_ids(sample.motorIds);
  const auto read = [&](StateField field, auto&& query) {
    if (!Has(fields, field)) {
      return 0;
    }
    int code = query();
    if (code == 0) {
      sample.fresh |= Fields(field);
    }
    return code;
  };
  int code = read(StateField::Angles, [&] { return arm.get_angles(sample.angles); });
  if (code == 0) {
    code = read(StateField::Velocities, [&] { return arm.get_velocity(sample.velocities); });
  }
  if (code == 0) {
    code = read(StateField::Currents, [&] { return arm.get_current(sample.currents); });
  }
  if (code == 0) {
    code = read(StateField::Inputs, [&] {
      sample.inputIds = inputIds;
      return arm.get_input(inputIds.size(), inputIds.data(), sample.inputs);
    });
  }
  if (code == 0) {
    code = read(StateField::Pose, [&] { return arm.get_pose(sample.pose); });
  }
  return code;
}

}  // namespace tavclient
