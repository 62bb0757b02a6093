#include "FaultyController.h"

#include <chrono>
#include <utility>

#include "SimulatorProcess.h"
#include "server/SimulatorServer.h"
#include "support/ScriptedController.h"

namespace tavtest {

namespace {

using namespace std::chrono_literals;

class InjectingSimulator : public FaultyController {
public:
  explicit InjectingSimulator(tavsim::Fault fault) { server_.Faults().Add(std::move(fault)); }
  std::uint16_t Port() const override { return server_.Port(); }
  bool Struck() override { return server_.Faults().Fired() == 1; }

private:
  tavsim::SimulatorServer server_;
};

class KilledSimulatorProcess : public FaultyController {
public:
  std::uint16_t Port() const override { return process_.Port(); }
  // The drop rule holds the reply back; its line says the call is waiting.
  void Strike() override {
    ASSERT_TRUE(process_.WaitForOutput("fault: drop", 5s)) << "the call never reached the simulator";
    process_.Kill();
    killed_ = true;
  }
  bool Struck() override { return killed_; }

private:
  bool killed_ = false;
  SimulatorProcess process_{TAVSIM_PROGRAM, {"--port", "0", "--fault", std::string("drop,on=") + kStruckCommand}};
};

class ResettingController : public FaultyController {
public:
  std::uint16_t Port() const override { return controller_.Port(); }
  void Strike() override {
    tavsim::ClientMessage message;
    ASSERT_TRUE(controller_.Accept());
    ASSERT_TRUE(controller_.ReceiveClientInfo(message));
    ASSERT_TRUE(controller_.SendConnResult());
    ASSERT_TRUE(controller_.ReceiveCommand("Robot", message));
    ASSERT_TRUE(controller_.Reply(message));
    ASSERT_TRUE(controller_.ReceiveCommand("get_motor_ids", message));
    ASSERT_TRUE(controller_.Reply(message, "0", {{"result1", "[1]"}}));
    ASSERT_TRUE(controller_.ReceiveCommand(kStruckCommand, message));
    controller_.Reset();
    reset_ = true;
  }
  bool Struck() override { return reset_; }

private:
  bool reset_ = false;
  ScriptedController controller_;
};

}  // namespace

std::unique_ptr<FaultyController> InjectedFault(tavsim::Fault fault) {
  return std::make_unique<InjectingSimulator>(std::move(fault));
}

std::unique_ptr<FaultyController> KilledProcess() {
  return std::make_unique<KilledSimulatorProcess>();
}

std::unique_ptr<FaultyController> ResetConnection() {
  return std::make_unique<ResettingController>();
}

}  // namespace tavtest
