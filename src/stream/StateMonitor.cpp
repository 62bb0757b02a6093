#include "StateMonitor.h"

#include <atomic>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "common/RobotEvent.h"
#include "stream/CsvRecorder.h"
#include "stream/SampleReader.h"
#include "stream/SamplingSchedule.h"
#include "stream/SubscriberMailbox.h"

namespace tavclient {

namespace {

constexpr double kMinRateHz = 1.0;
constexpr double kMaxRateHz = 500.0;
constexpr StateFields kAllFields = StateField::Angles | StateField::Velocities |
                                   StateField::Currents | StateField::Inputs | StateField::Pose;

}  // namespace

class StateMonitor::Impl {
public:
  Impl(std::shared_ptr<SharedRobot> shared, MonitorOptions chosen)
      : robot(std::move(shared)), options(std::move(chosen)), reader(robot, options) {}

  int Start();
  void Stop();
  int StartRecording(const std::string& path);
  void StopRecording();
  int Subscribe(Subscriber subscriber);
  void Unsubscribe(int id);
  MonitorStats Stats() const;

  std::shared_ptr<SharedRobot> robot;
  MonitorOptions options;
  SampleReader reader;
  std::atomic<bool> running{false};

  mutable std::mutex latestMutex;
  std::shared_ptr<const StateSample> latest;

private:
  void _loop();
  void _publish(const std::shared_ptr<const StateSample>& sample);

  // Start and Stop one at a time; the loop's wake-up beside.
  std::mutex controlMutex;
  std::mutex loopMutex;
  std::condition_variable wake;
  bool stopping = false;
  std::thread thread;
  std::uint64_t sequence = 0;  // the sampling thread's alone

  std::mutex subscribersMutex;
  std::map<int, std::unique_ptr<SubscriberMailbox>> subscribers;
  int nextId = 1;

  std::mutex recorderMutex;
  std::unique_ptr<CsvRecorder> recorder;

  std::atomic<std::uint64_t> samples{0};
  std::atomic<std::uint64_t> missedCycles{0};
  std::atomic<std::uint64_t> failedSamples{0};
  std::atomic<std::uint64_t> droppedDeliveries{0};
  std::atomic<std::uint64_t> recordedRows{0};
};

int StateMonitor::Impl::Start() {
  if (!(options.rateHz >= kMinRateHz && options.rateHz <= kMaxRateHz) ||
      (options.fields & kAllFields) == 0) {
    return RobotEvents::kInvalidArgument;
  }
  std::lock_guard<std::mutex> control(controlMutex);
  if (thread.joinable()) {
    return 0;
  }
  for (auto* counter :
       {&samples, &missedCycles, &failedSamples, &droppedDeliveries, &recordedRows}) {
    counter->store(0);
  }
  stopping = false;
  running = true;
  thread = std::thread([this] { _loop(); });
  return 0;
}

void StateMonitor::Impl::Stop() {
  std::lock_guard<std::mutex> control(controlMutex);
  if (!thread.joinable()) {
    return;
  }
  {
    std::lock_guard<std::mutex> lock(loopMutex);
    stopping = true;
  }
  wake.notify_one();
  thread.join();
  running = false;
  std::lock_guard<std::mutex> lock(recorderMutex);
  if (recorder) {
    recorder->Flush();
  }
}

void StateMonitor::Impl::_loop() {
  const auto period = std::chrono::duration_cast<SamplingSchedule::Clock::duration>(
      std::chrono::duration<double>(1.0 / options.rateHz));
  SamplingSchedule schedule(SamplingSchedule::Clock::now(), period);
  std::unique_lock<std::mutex> lock(loopMutex);
  while (!wake.wait_until(lock, schedule.Next(), [this] { return stopping; })) {
    lock.unlock();
    _publish(std::make_shared<const StateSample>(reader.Read(++sequence)));
    missedCycles += schedule.Advance(SamplingSchedule::Clock::now());
    lock.lock();
  }
}

void StateMonitor::Impl::_publish(const std::shared_ptr<const StateSample>& sample) {
  ++samples;
  if (sample->code != 0) {
    ++failedSamples;
  }
  {
    std::lock_guard<std::mutex> lock(latestMutex);
    latest = sample;
  }
  {
    std::lock_guard<std::mutex> lock(recorderMutex);
    if (recorder) {
      recorder->Write(*sample);
      ++recordedRows;
    }
  }
  std::lock_guard<std::mutex> lock(subscribersMutex);
  for (auto& entry : subscribers) {
    entry.second->Post(sample);
  }
}

int StateMonitor::Impl::Subscribe(Subscriber subscriber) {
  auto mailbox = std::make_unique<SubscriberMailbox>(std::move(subscriber), droppedDeliveries);
  std::lock_guard<std::mutex> lock(subscribersMutex);
  const int id = nextId++;
  subscribers.emplace(id, std::move(mailbox));
  return id;
}

void StateMonitor::Impl::Unsubscribe(int id) {
  std::unique_ptr<SubscriberMailbox> ended;
  {
    std::lock_guard<std::mutex> lock(subscribersMutex);
    auto found = subscribers.find(id);
    if (found == subscribers.end()) {
      return;
    }
    ended = std::move(found->second);
    subscribers.erase(found);
  }
  // Joined outside the lock: sampling goes on while the subscriber finishes its last call.
  ended.reset();
}

int StateMonitor::Impl::StartRecording(const std::string& path) {
  std::vector<int> motorIds;
  {
    std::lock_guard<std::mutex> lock(latestMutex);
    if (latest) {
      motorIds = latest->motorIds;
    }
  }
  if (motorIds.empty()) {
    robot->Use([&](Robot& arm) { return arm.get_motor_ids(motorIds); });
  }
  std::vector<int> inputIds = reader.InputIds();
  std::lock_guard<std::mutex> lock(recorderMutex);
  recorder.reset();
  recorder = CsvRecorder::Open(path, options.fields, std::move(motorIds), std::move(inputIds));
  return recorder ? 0 : RobotEvents::kResourceFailed;
}

void StateMonitor::Impl::StopRecording() {
  std::lock_guard<std::mutex> lock(recorderMutex);
  recorder.reset();
}

MonitorStats StateMonitor::Impl::Stats() const {
  MonitorStats stats;
  stats.samples = samples;
  stats.missedCycles = missedCycles;
  stats.failedSamples = failedSamples;
  stats.droppedDeliveries = droppedDeliveries;
  stats.recordedRows = recordedRows;
  return stats;
}

StateMonitor::StateMonitor(std::shared_ptr<SharedRobot> robot, MonitorOptions options)
    : impl(std::make_unique<Impl>(std::move(robot), std::move(options))) {}

StateMonitor::~StateMonitor() { impl->Stop(); }

int StateMonitor::Start() { return impl->Start(); }
void StateMonitor::Stop() { impl->Stop(); }
bool StateMonitor::Running() const { return impl->running; }

std::shared_ptr<const StateSample> StateMonitor::Latest() const {
  std::lock_guard<std::mutex> lock(impl->latestMutex);
  return impl->latest;
}

int StateMonitor::Subscribe(Subscriber subscriber) {
  return impl->Subscribe(std::move(subscriber));
}
void StateMonitor::Unsubscribe(int id) { impl->Unsubscribe(id); }
int StateMonitor::StartRecording(const std::string& path) { return impl->StartRecording(path); }
void StateMonitor::StopRecording() { impl->StopRecording(); }
MonitorStats StateMonitor::Stats() const { return impl->Stats(); }
const MonitorOptions& StateMonitor::Options() const { return impl->options; }

}  // namespace tavclient
