// Writes the seed corpora: the messages the library receives, as the simulated controller
// encodes them for a short session (messages/), and streams of them cut into reads in the
// framer harness's chunk format (streams/). Usage: fuzz_seeds CORPUS_DIR
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "ChunkStream.h"
#include "core/ControllerReplies.h"
#include "model/SimulatedController.h"
#include "server/RequestHandler.h"
#include "server/ServerCodes.h"

namespace {

using Seeds = std::vector<std::pair<std::string, std::string>>;  // file name, content

// Commands in the client's own parameter texts, answered by a freshly set-up arm.
Seeds commandReplies() {
  const std::vector<std::pair<std::string, tavsim::Params>> commands{
      {"Robot", {{"name", "arm"}, {"parameters", R"({"channel_name": "can0","host_id": 1})"}, {"virtual", "1"}}},
      {"get_motor_ids", {}},
      {"get_angles", {{"motor_ids", R"(["1","2","3","4","5","6"])"}}},
      {"get_current", {{"motor_ids", R"(["2","3"])"}}},
      {"get_input", {{"motor_ids", R"(["1","2"])"}}},
      {"get_position", {}},
      {"forward", {{"angles", "[0.000000,-90.000000,90.000000,-90.000000,-90.000000,0.000000]"}}},
      {"move_to_angles",
       {{"motor_ids", R"(["1"])"}, {"position", "[10.000000]"}, {"velocity", "[20.000000]"},
        {"acceleration", "[40.000000]"}, {"relative", "0"}, {"block", "0"}}},
      {"get_velocity", {{"motor_ids", R"(["9"])"}}},
  };
  tavsim::SimulatedController controller;
  Seeds seeds;
  int timestamp = 1;
  for (const auto& [name, params] : commands) {
    const tavsim::Reply reply = controller.handle(name, params);
    seeds.emplace_back("reply-" + name, tavsim::CommandAnswer(std::to_string(timestamp++), name, reply).text);
  }
  return seeds;
}

Seeds messages() {
  Seeds seeds = commandReplies();
  const std::string mismatch = std::to_string(tavsim::ServerCodes::kChecksumMismatch);
  seeds.emplace_back("connresult-accepted", tavsim::ConnResultMessage("0"));
  seeds.emplace_back("connresult-refused", tavsim::ConnResultMessage(mismatch));
  seeds.emplace_back("heart", tavsim::HeartReplyMessage());
  seeds.emplace_back("error", tavsim::ErrorMessage(std::to_string(tavsim::ServerCodes::kUnreadableMessage)));
  seeds.emplace_back("reply-bad-checksum", tavsim::CommandReplyMessage({"7", "get_angles", "0", {{"result1", "[1.5]"}}}, "0"));
  return seeds;
}

std::string joined(const Seeds& seeds) {
  std::string stream;
  for (const auto& seed : seeds) {
    stream += seed.second;
  }
  return stream;
}

// Sessions as the Receiver reads them: whole, a byte at a time, after noise, with the tags
// split between reads, two in one read, and after a message that outgrows the framer's limit.
Seeds streams(const Seeds& replies) {
  const std::string session = joined(replies);
  const std::string heart = tavsim::HeartReplyMessage();
  const std::string error = tavsim::ErrorMessage(std::to_string(tavsim::ServerCodes::kInjectedError));
  const std::string login = tavsim::ConnResultMessage("0");
  const std::string noise(200, 'x');
  std::string split;
  for (const std::string& piece : {login.substr(0, 3), login.substr(3, login.size() - 6), login.substr(login.size() - 3)}) {
    split += WriteChunks(piece, 255);
  }
  const std::string oversized = WriteChunks("<root><result1>", 255) + WriteRepeatedChunk(noise, 4) +
                                WriteChunks(heart, 255);
  return {
      {"session", WriteChunks(session, 255)},
      {"bytewise", WriteChunks(login + heart, 1)},
      {"noise-first", WriteChunks(noise + "</root>" + login, 64)},
      {"split-tags", split},
      {"two-in-one-read", WriteChunks(heart + error, 255)},
      {"oversized", oversized},
  };
}

bool writeAll(const std::filesystem::path& dir, const Seeds& seeds) {
  std::filesystem::create_directories(dir);
  for (const auto& [name, content] : seeds) {
    std::ofstream file(dir / name, std::ios::binary);
    file << content;
    if (!file) {
      std::cerr << "cannot write " << (dir / name) << "\n";
      return false;
    }
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: fuzz_seeds CORPUS_DIR\n";
    return 2;
  }
  const std::filesystem::path corpus = argv[1];
  const Seeds replies = messages();
  return writeAll(corpus / "messages", replies) && writeAll(corpus / "streams", streams(replies)) ? 0 : 1;
}
