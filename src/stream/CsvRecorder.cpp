#include "stream/CsvRecorder.h"

#include <utility>

namespace tavclient {

namespace {

constexpr std::size_t kBufferBytes = 64 * 1024;
constexpr auto kFlushInterval = std::chrono::seconds(1);

// Each per-motor quantity: its field, its column name and its unit.
struct Quantity {
  StateField field;
  const char* name;
  const char* unit;
};
constexpr Quantity kPerMotor[] = {{StateField::Angles, "angle", "deg"},
                                  {StateField::Velocities, "velocity", "deg_per_s"},
                                  {StateField::Currents, "current", "A"}};
constexpr const char* kPoseColumns[] = {"x_m", "y_m", "z_m", "roll_rad", "pitch_rad", "yaw_rad"};

}  // namespace

std::unique_ptr<CsvRecorder> CsvRecorder::Open(const std::string& path, StateFields fields,
                                               std::vector<int> motorIds,
                                               std::vector<int> inputIds) {
  std::FILE* file = std::fopen(path.c_str(), "w");
  if (file == nullptr) {
    return nullptr;
  }
  std::unique_ptr<CsvRecorder> recorder(
      new CsvRecorder(file, fields, std::move(motorIds), std::move(inputIds)));
  recorder->_header();
  return recorder;
}

CsvRecorder::CsvRecorder(std::FILE* opened, StateFields chosen, std::vector<int> motors,
                         std::vector<int> inputs)
    : file(opened),
      fields(chosen),
      motorIds(std::move(motors)),
      inputIds(std::move(inputs)),
      buffer(kBufferBytes) {
  std::setvbuf(file, buffer.data(), _IOFBF, buffer.size());
}

CsvRecorder::~CsvRecorder() { std::fclose(file); }

void CsvRecorder::_header() {
  std::fputs("time_s,wall_time_s,sequence,code", file);
  for (const Quantity& quantity : kPerMotor) {
    if (Has(fields, quantity.field)) {
      for (int id : motorIds) {
        std::fprintf(file, ",%s_%d_%s", quantity.name, id, quantity.unit);
      }
    }
  }
  if (Has(fields, StateField::Inputs)) {
    for (int id : inputIds) {
      std::fprintf(file, ",input_%d", id);
    }
  }
  if (Has(fields, StateField::Pose)) {
    for (const char* column : kPoseColumns) {
      std::fprintf(file, ",%s", column);
    }
  }
  std::fputc('\n', file);
  std::fflush(file);
  lastFlush = std::chrono::steady_clock::now();
}

void CsvRecorder::Write(const StateSample& sample) {
  if (!started) {
    started = true;
    origin = sample.time;
  }
  const double seconds = std::chrono::duration<double>(sample.time - origin).count();
  const double wall = std::chrono::duration<double>(sample.wallTime.time_since_epoch()).count();
  std::fprintf(file, "%.6f,%.6f,%llu,%d", seconds, wall,
               static_cast<unsigned long long>(sample.sequence), sample.code);
  _values(StateField::Angles, sample.angles);
  _values(StateField::Velocities, sample.velocities);
  _values(StateField::Currents, sample.currents);
  if (Has(fields, StateField::Inputs)) {
    const bool fresh = Has(sample.fresh, StateField::Inputs);
    for (std::size_t i = 0; i < inputIds.size(); ++i) {
      if (fresh && i < sample.inputs.size()) {
        std::fprintf(file, ",%d", sample.inputs[i]);
      } else {
        std::fputc(',', file);
      }
    }
  }
  if (Has(fields, StateField::Pose)) {
    const bool fresh = Has(sample.fresh, StateField::Pose);
    const _Pose& pose = sample.pose;
    for (double value : {pose.x, pose.y, pose.z, pose.roll, pose.pitch, pose.yaw}) {
      if (fresh) {
        _cell(value);
      } else {
        std::fputc(',', file);
      }
    }
  }
  std::fputc('\n', file);
  const auto now = std::chrono::steady_clock::now();
  if (now - lastFlush >= kFlushInterval) {
    Flush();
  }
}

void CsvRecorder::Flush() {
  std::fflush(file);
  lastFlush = std::chrono::steady_clock::now();
}

void CsvRecorder::_values(StateField field, const std::vector<double>& values) {
  if (!Has(fields, field)) {
    return;
  }
  // Values arrive with about seven significant digits; more would only add noise to the file.
  for (std::size_t i = 0; i < motorIds.size(); ++i) {
    if (i < values.size()) {
      _cell(values[i]);
    } else {
      std::fputc(',', file);
    }
  }
}

void CsvRecorder::_cell(double value) { std::fprintf(file, ",%.7g", value); }

}  // namespace tavclient
