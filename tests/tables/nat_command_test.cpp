// What the nat command makes of its words and of failures: stale words, second steps.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/command_line.h"
#include "support/scripted_bus.h"
#include "support/scripted_console.h"
#include "tables/nat.h"

namespace monitor {
namespace {

/// A line of each form.
const std::vector<std::string> kComplete{
    "nat 5 = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 8001 258 server",
    "nat s 5 = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 8001 258 server",
    "nat h = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 8001 258 server",
    "nat d 5 1",
    "nat d s 5 1",
    "nat d h 10.0.0.65 50",
    "nat h 10.0.0.65 50"};

TEST(NatCommand, CtrlCEndsAWaitThatNeverEnds) {
  PressCtrlCInWaits(true);
  ScriptedBus bus(R"(
    w8  051a 05
    w8  051b 00
    r8  051c 07
    r8  051c 04
    w8  051c 0c
    r8  051c 0c
    w8  051c 04
    r8  051c 06 x100000
  )");
  const Outcome outcome = RunLine("nat 5");
  PressCtrlCInWaits(false);
  EXPECT_EQ(outcome.result, kFailed);
  EXPECT_EQ(outcome.output, "NAT Read failed\n\r");
}

TEST(NatCommand, MissingWordsOfDeletesAreTakenFromEarlierLines) {
  // Server slot 6 comes from the word after "s" in the first line.
  EXPECT_EQ(RunLine("nat x y 6").result, kUsage);
  {
    ScriptedBus bus("w8 051a 06\n w8 051b 01\n r8 051c 00");
    const Outcome outcome = RunLine("nat d s");
    EXPECT_EQ(outcome.result, kFailed);
    EXPECT_EQ(outcome.output, "NAT Delete failed\n\r");
  }
  // The number after it is not taken: one slot is deleted.
  EXPECT_EQ(RunLine("nat x y 6 2").result, kUsage);
  {
    ScriptedBus bus(R"(
      w8  051a 06
      w8  051b 01
      r8  051c 03
      r8  051c 04
      w8  051c 0c
      r8  051c 0c
      w8  051c 04
      r8  051c 07
      r8  051c 07
      r8  051c 07
      r8  051c 04
      w8  051c 1c
      r8  051c 1c
      w8  051c 14
      r8  051c 07
    )");
    const Outcome outcome = RunLine("nat d s");
    EXPECT_EQ(outcome.result, kDone);
    EXPECT_EQ(outcome.output, "DELETED ENTRY:  6\n\r");
  }
  // What is left there may also not fit.
  EXPECT_EQ(RunLine("nat x y 8").result, kUsage);
  ScriptedBus bus("");
  EXPECT_EQ(RunLine("nat d s").result, kUsage);
}

TEST(NatCommand, TheKeyOfAHashDeleteMayBeStale) {
  // 10.0.0.65 and port 50: home slot 41 XOR 50.
  constexpr char kBusyAtHome[] = "w8 051a 11\n w8 051b 00\n r8 051c 00";
  EXPECT_EQ(RunLine("nat x y 10.0.0.65 50").result, kUsage);
  for (const char* const line : {"nat d h", "nat d h 10.0.0.65", "nat d h 10.0.0.65 50 6 7 8 9"}) {
    ScriptedBus bus(kBusyAtHome);
    const Outcome outcome = RunLine(line);
    EXPECT_EQ(outcome.result, kFailed) << line;
    EXPECT_EQ(outcome.output, "NAT Hash Delete failed\n\r") << line;
  }
  ScriptedBus bus("");
  EXPECT_EQ(RunLine("nat d h 10.0.0").result, kUsage);
  EXPECT_EQ(RunLine("nat x y 10.0.0.65 10000").result, kUsage);
  EXPECT_EQ(RunLine("nat d h").result, kUsage);
}

TEST(NatCommand, AStaleWordThatFillsItsSlotRunsIntoTheNextOne) {
  // 32 characters leave no room for a terminator, so the next word follows directly: 10.0.0.65
  // and port 5, whose home slot is 44.
  EXPECT_EQ(RunLine("nat x y 00000000000000000000000010.0.0.6 5").result, kUsage);
  ScriptedBus bus("w8 051a 44\n w8 051b 00\n r8 051c 00");
  EXPECT_EQ(RunLine("nat d h").result, kFailed);
}

TEST(NatCommand, MissingWordsOfOtherFormsAreUsageErrors) {
  ScriptedBus bus("");
  EXPECT_EQ(RunLine("nat x 5 6 10.0.0.1 50").result, kUsage);
  ExpectLinesRefused(kComplete, {"nat", "nat s", "nat h", "nat d", "nat h 10.0.0.1"});
}

TEST(NatCommand, AMainEntryReadsBackWithoutTheServerBitUnlessTheEngineSetsIt) {
  for (const bool set : {false, true}) {
    const std::string transcript = std::string(R"(
      lock
      w8  051a 0d
      w32 0500 c0a80102
      w32 0508 0a000041
      w16 0504 0401
      w16 050c 0050
      w32 0548 01020304
      w16 0506 8001
      w16 0516 0258
      w8  051b 00
      r8  051c 03
      r8  051c 04
      w8  051c 5c
      r8  051c 5c
      w8  051c 54
      unlock
      r8  051c 07
      r8  051c 07
      w8  051a 0d
      w8  051b 00
      r8  051c 07
      r8  051c 57
      w8  051c 4e
      r8  051c 4e
      w8  051c 46
      r8  051c 47
      r8  051c 47
      r32 0500 c0a80102
      r32 0508 0a000041
      r16 0504 0401
      r16 050c 0050
      r8  051b 00
      r16 0516 0258
    )") + (set ? "r8 051b 02" : "r8 051b 00") +
                                   R"(
      r32 0548 01020304
      r16 0506 8001
      r8  0524 20
    )";
    ScriptedBus bus(transcript.c_str());
    const Outcome outcome =
        RunLine("nat 0d = 192.168.1.2 401 10.0.0.65 50 udp 1.2.3.4 8001 258 server");
    EXPECT_EQ(outcome.result, kDone);
    EXPECT_EQ(outcome.output, std::string("INDEX:  d\tVALID\n\r"
                                          "SIP: 192.168.1.2    \tSPORT:  401\t"
                                          "DIP: 10.0.0.65      \tDPORT:   50\n\r"
                                          "PROTOCOL: UDP\tNSIP: 1.2.3.4        \tNSPORT: 8001\n\r"
                                          "AGE OUT:  258\tINSIDESERVER: ") +
                                  (set ? "TRUE" : "FALSE") + "\n\r\n\r");
  }
}

TEST(NatCommand, AFailedReadBackHasTheTextOfItsForm) {
  constexpr char kData[] = R"(
    w32 0500 c0a80102
    w32 0508 0a000041
    w16 0504 0401
    w16 050c 0050
    w32 0548 01020304
    w16 0506 8001
    w16 0516 0258
  )";
  constexpr char kPulse[] = R"(
    r8  051c 03
    r8  051c 04
    w8  051c 5c
    r8  051c 5c
    w8  051c 54
  )";
  const std::string entry = "192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 8001 258";
  {
    const std::string transcript = std::string("lock\n w8 051a 05") + kData + "w8 051b 04" +
                                   kPulse + "unlock\n r8 051c 07\n r8 051c 07\n" +
                                   "w8 051a 05\n w8 051b 00\n r8 051c 05";
    ScriptedBus bus(transcript.c_str());
    const Outcome outcome = RunLine("nat 5 = " + entry);
    EXPECT_EQ(outcome.result, kFailed);
    EXPECT_EQ(outcome.output, "NAT Read failed\n\r");
  }
  {
    const std::string transcript = std::string("lock\n w8 051a 05") + kData + "w8 051b 07" +
                                   kPulse + "unlock\n r8 051c 07\n r8 051c 07\n" +
                                   "w8 051a 05\n w8 051b 01\n r8 051c 05";
    ScriptedBus bus(transcript.c_str());
    const Outcome outcome = RunLine("nat s 5 = " + entry + " server");
    EXPECT_EQ(outcome.result, kFailed);
    EXPECT_EQ(outcome.output, "NAT Read failed\n\r");
  }
  const std::string transcript = std::string("lock\n") + kData + "w8 051b 04\n w8 051a 11" +
                                 kPulse + "r8 051c 07\n r8 051c 07\n unlock\n" +
                                 "w8 051a 11\n w8 051b 00\n r8 051c 05";
  ScriptedBus bus(transcript.c_str());
  const Outcome outcome = RunLine("nat h = " + entry + " server");
  EXPECT_EQ(outcome.result, kFailed);
  EXPECT_EQ(outcome.output, "NAT Hash Read failed\n\r");
}

TEST(NatCommand, BadWordsTouchNothing) {
  ScriptedBus bus("");
  ExpectLinesRefused(kComplete,
                     {"nat 100",
                      "nat =",
                      "nat 5 10000",
                      "nat 5 6 7",
                      "nat 5 6 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 8001 258",
                      "nat 5 = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 8001 258 client",
                      "nat 5 = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 8001 258 server server",
                      "nat 100 = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 8001 258",
                      "nat 5 = 192.168.1 401 10.0.0.65 50 tcp 1.2.3.4 8001 258",
                      "nat 5 = 192.168.1.2 10401 10.0.0.65 50 tcp 1.2.3.4 8001 258",
                      "nat 5 = 192.168.1.2 401 10.0.0.256 50 tcp 1.2.3.4 8001 258",
                      "nat 5 = 192.168.1.2 401 10.0.0.65 g tcp 1.2.3.4 8001 258",
                      "nat 5 = 192.168.1.2 401 10.0.0.65 50 icmp 1.2.3.4 8001 258",
                      "nat 5 = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4.5 8001 258",
                      "nat 5 = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 10000 258",
                      "nat 5 = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 8001 12345",
                      "nat s 10",
                      "nat s 5 6 7",
                      "nat s 10 = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 8001 258",
                      "nat s 5 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 8001 258 1",
                      "nat s 5 = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 8001 258 client",
                      "nat s 5 = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 8001 258 server server",
                      "nat s 5 = 192.168.1 401 10.0.0.65 50 tcp 1.2.3.4 8001 258",
                      "nat s 5 = 192.168.1.2 10401 10.0.0.65 50 tcp 1.2.3.4 8001 258",
                      "nat s 5 = 192.168.1.2 401 10.0.0.256 50 tcp 1.2.3.4 8001 258",
                      "nat s 5 = 192.168.1.2 401 10.0.0.65 g tcp 1.2.3.4 8001 258",
                      "nat s 5 = 192.168.1.2 401 10.0.0.65 50 icmp 1.2.3.4 8001 258",
                      "nat s 5 = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4.5 8001 258",
                      "nat s 5 = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 10000 258",
                      "nat s 5 = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 8001 12345",
                      "nat h = 50",
                      "nat h 10.0.0 50",
                      "nat h 10.0.0.65 10050",
                      "nat h 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 8001 258 1",
                      "nat h = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 8001 258 client",
                      "nat h = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 8001 258 server server",
                      "nat h = 192.168.1 401 10.0.0.65 50 tcp 1.2.3.4 8001 258",
                      "nat h = 192.168.1.2 10401 10.0.0.65 50 tcp 1.2.3.4 8001 258",
                      "nat h = 192.168.1.2 401 10.0.0.256 50 tcp 1.2.3.4 8001 258",
                      "nat h = 192.168.1.2 401 10.0.0.65 g tcp 1.2.3.4 8001 258",
                      "nat h = 192.168.1.2 401 10.0.0.65 50 icmp 1.2.3.4 8001 258",
                      "nat h = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4.5 8001 258",
                      "nat h = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 10000 258",
                      "nat h = 192.168.1.2 401 10.0.0.65 50 tcp 1.2.3.4 8001 12345",
                      "nat d 100",
                      "nat d 5 10000",
                      "nat d 5 6 7",
                      "nat d s 8",
                      "nat d s ff",
                      "nat d s 100",
                      "nat d s 5 10000",
                      "nat d s 5 6 7",
                      "nat d h 10.0.0.65 10050"});
}

}  // namespace
}  // namespace monitor
