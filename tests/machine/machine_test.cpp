// The machine by itself, without a console.
#include "machine/machine.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/descriptor.h"

namespace board {
namespace {

using monitor::PortId;

std::filesystem::path NewFolder() {
  std::string folder = (std::filesystem::temp_directory_path() / "machine.XXXXXX").string();
  EXPECT_NE(mkdtemp(folder.data()), nullptr);
  return folder;
}

/// Each test has a folder of its own.
class MachineTest : public testing::Test {
 protected:
  ~MachineTest() override { std::filesystem::remove_all(folder_); }

  [[nodiscard]] std::string Path(const char* name) const { return folder_ / name; }

  [[nodiscard]] std::string Content(const char* name) const {
    std::ostringstream text;
    text << std::ifstream(Path(name)).rdbuf();
    return text.str();
  }

 private:
  std::filesystem::path folder_ = NewFolder();
};

/// A program on a port.
Descriptor Connect(const std::string& path) {
  Descriptor peer(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof(address.sun_path) - 1);
  EXPECT_EQ(connect(peer.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
  return peer;
}

/// A machine with a program on its LAN port.
class PumpTest : public MachineTest {
 protected:
  void SendFrame() {
    constexpr std::array<char, 64> kFrame{};
    EXPECT_EQ(send(peer_.Get(), kFrame.data(), kFrame.size(), 0), 64);
  }

  [[nodiscard]] bool IsReady() const {
    pollfd entry{.fd = machine_.WatchedFd(), .events = POLLIN, .revents = 0};
    return poll(&entry, 1, 0) == 1;
  }

 private:
  [[nodiscard]] MachineSetup WithPort() const {
    MachineSetup setup;
    setup.network.ports[PortId::kLan] = "unix:" + Path("lan");
    return setup;
  }

 protected:
  Machine machine_{WithPort()};

 private:
  Descriptor peer_{Connect(Path("lan"))};
};

TEST_F(PumpTest, FramesComeInWhenItIsPumped) {
  machine_.Pump();
  EXPECT_FALSE(IsReady());
  SendFrame();
  EXPECT_TRUE(IsReady());
  EXPECT_FALSE(machine_.FramesPending());
  machine_.Pump();
  EXPECT_TRUE(machine_.FramesPending());
  EXPECT_FALSE(IsReady());
}

TEST_F(PumpTest, BetweenStepsItIsPumpedOnceInAWhile) {
  SendFrame();
  unsigned steps = 0;
  for (; !machine_.FramesPending() && steps < 1000; ++steps) machine_.PumpWhenDue();
  EXPECT_EQ(steps, 64U);
}

TEST_F(PumpTest, OnePumpTakes64FramesOfAPort) {
  for (unsigned i = 0; i < 65; ++i) SendFrame();
  const std::size_t free = machine_.Chip().frames.pool.Free();
  machine_.Pump();
  EXPECT_EQ(free - machine_.Chip().frames.pool.Free(), 64U);
  machine_.Pump();
  EXPECT_EQ(free - machine_.Chip().frames.pool.Free(), 65U);
}

TEST_F(MachineTest, FilesKeepTheirContentUntilItStarts) {
  MachineSetup setup;
  setup.uart_file = Path("uart");
  setup.trace_file = Path("trace");
  for (const char* const name : {"uart", "trace"}) std::ofstream(Path(name)) << "old";
  Machine machine(setup);
  EXPECT_EQ(Content("uart"), "old");
  EXPECT_EQ(Content("trace"), "old");
  machine.Start();
  EXPECT_EQ(Content("uart"), "");
  EXPECT_EQ(Content("trace"), "");
}

TEST_F(MachineTest, ItsStateIsSavedAndLoaded) {
  MachineSetup setup;
  setup.save_file = Path("state");
  {
    Machine machine(setup);
    machine.Start();
    machine.Chip().registers.Store(0x0610, 4, 0x12345678);
    EXPECT_TRUE(machine.Finish());
  }
  setup.load_file = setup.save_file;
  Machine again(setup);
  EXPECT_EQ(again.Chip().registers.Load(0x0610, 4), 0x12345678U);
}

TEST_F(MachineTest, FinishReportsAStateThatCannotBeSaved) {
  MachineSetup setup;
  std::filesystem::create_directory(Path("folder"));
  setup.save_file = Path("folder/state");
  Machine machine(setup);
  machine.Start();
  std::filesystem::remove_all(Path("folder"));
  testing::internal::CaptureStderr();
  EXPECT_FALSE(machine.Finish());
  EXPECT_NE(testing::internal::GetCapturedStderr().find("folder/state"), std::string::npos);
}

}  // namespace
}  // namespace board
