#include "qos/control_command.h"

#include <gtest/gtest.h>

#include "support/command_line.h"
#include "support/scripted_bus.h"

namespace monitor {
namespace {

constexpr char kRead[] = R"(
    r8  0105 fb
    r8  0107 00
    r8  0106 00
    r8  0104 00
    r16 000c 05dc
)";

/// Every switch written as 0, the PPP mode as `ppp`, the MTU as `mtu`.
std::string ReadAndWrite(const char* ppp, const char* mtu) {
  return std::string(kRead) + R"(
    lock
    r8  0105 fb
    w8  0105 fb
    r8  0107 00
    w8  0107 00
    r8  0107 00
    w8  0107 00
    r8  0107 00
    w8  0107 00
    r8  0107 00
    w8  0107 00
    r8  0107 00
    w8  0107 00
    r8  0107 00
    w8  0107 00
    r8  0107 00
    w8  0107 00
    r8  0106 00
    w8  0106 00
    r8  0104 00
    w8  0104 )" +
         ppp + R"(
    r8  0104 )" +
         ppp + R"(
    w8  0104 )" +
         ppp + R"(
    w16 000c )" +
         mtu + R"(
    unlock
  )";
}

TEST(ControlCommand, TheRecordIsReadOnceBeforeAnyWordIsLookedAt) {
  for (const char* const line :
       {"ctrl", "ctrl x", "ctrl =", "ctrl f mirrlan", "ctrl f mirrlan 2", "ctrl f mirrlan 01",
        "ctrl f mirrlan 1 frg", "ctrl f mirrlan 1 frg 1 1", "ctrl f mirr 1", "ctrl f 1 mirrlan",
        "ctrl f frg = 1", "ctrl mtu 12345", "ctrl mtu g", "ctrl mtu 5dc 1", "ctrl ppp bridge",
        "ctrl ppp 0", "ctrl ppp ip ip"}) {
    for (const char* const complete : {"ctrl f mtu 1 frg 1", "ctrl ppp ip", "ctrl mtu 5"}) {
      ScriptedBus bus(kRead);
      LeaveWords(complete);
      const Outcome outcome = RunLine(line);
      EXPECT_EQ(outcome.result, kUsage) << line << ", after " << complete;
      EXPECT_EQ(outcome.output, "") << line << ", after " << complete;
    }
  }
}

// The odd word is refused although the slot after the line still holds a fitting value.
TEST(ControlCommand, AStaleWordDoesNotCompleteAPair) {
  {
    ScriptedBus bus(kRead);
    EXPECT_EQ(RunLine("ctrl x x 1 1 1").result, kUsage);
  }
  ScriptedBus bus(kRead);
  EXPECT_EQ(RunLine("ctrl f mirrlan").result, kUsage);
}

TEST(ControlCommand, ShowingReadsOnce) {
  {
    ScriptedBus bus(kRead);
    EXPECT_EQ(RunLine("ctrl mtu").output, "MTU =  5dc\n\r");
  }
  ScriptedBus bus(kRead);
  EXPECT_EQ(RunLine("ctrl ppp").output, "PPP Mode : PPPoE proxy\n\r");
}

TEST(ControlCommand, AWriteIsFollowedByARead) {
  const std::string transcript = ReadAndWrite("00", "0234") + R"(
    r8  0105 00
    r8  0107 00
    r8  0106 00
    r8  0104 00
    r16 000c f235
  )";
  ScriptedBus bus(transcript.c_str());
  const Outcome outcome = RunLine("ctrl mtu 1234");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "MTU =  235\n\r");
}

TEST(ControlCommand, ThePppModeShownIsTheOneReadBack) {
  const std::string transcript = ReadAndWrite("08", "05dc") + R"(
    r8  0105 00
    r8  0107 00
    r8  0106 00
    r8  0104 fd
    r16 000c 0000
  )";
  ScriptedBus bus(transcript.c_str());
  const Outcome outcome = RunLine("ctrl ppp ip");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output, "PPP Mode : Not allowed\n\r");
}

}  // namespace
}  // namespace monitor
