#include "qos/qos.h"

#include <gtest/gtest.h>

#include "support/command_line.h"
#include "support/scripted_bus.h"
#include "support/scripted_console.h"

namespace monitor {
namespace {

constexpr char kReadSystem[] = R"(
    r8  0823 4f        # RED on, threshold 4e
    r8  0821 11
    r8  0822 12
    r8  0820 10
    r8  0845 45
    r8  0846 46
    r8  0844 44
)";

TEST(Qos, SystemReadLoadsEachRegisterOnce) {
  ScriptedBus bus(kReadSystem);
  SystemQos qos{};
  EXPECT_EQ(ReadSystemQos(qos), DriverStatus::kOk);
  EXPECT_EQ(qos.redEnable, 1);
  EXPECT_EQ(qos.bufthrhd, 0x4E);
  EXPECT_EQ(qos.mcasth, 0x11);
  EXPECT_EQ(qos.mcastl, 0x12);
  EXPECT_EQ(qos.sharepool, 0x10);
  EXPECT_EQ(qos.xonthrhd, 0x45);
  EXPECT_EQ(qos.xoffthrhd, 0x46);
  EXPECT_EQ(qos.no_buf, 0x44);
}

TEST(Qos, SystemReadWithRedOff) {
  ScriptedBus bus(R"(
    r8  0823 fe
    r8  0821 00
    r8  0822 00
    r8  0820 00
    r8  0845 00
    r8  0846 00
    r8  0844 00
  )");
  SystemQos qos{};
  EXPECT_EQ(ReadSystemQos(qos), DriverStatus::kOk);
  EXPECT_EQ(qos.redEnable, 0);
  EXPECT_EQ(qos.bufthrhd, 0xFE);
}

TEST(Qos, SystemWriteDropsTheLowestBitOfTheDropThreshold) {
  ScriptedBus bus(R"(
    lock
    w8  0823 30
    w8  0821 01
    w8  0822 02
    w8  0820 03
    w8  0845 05
    w8  0846 06
    w8  0844 07
    unlock
    lock
    w8  0823 ff
    w8  0821 01
    w8  0822 02
    w8  0820 03
    w8  0845 05
    w8  0846 06
    w8  0844 07
    unlock
  )");
  SystemQos qos{.redEnable = 0,
                .mcasth = 1,
                .mcastl = 2,
                .sharepool = 3,
                .bufthrhd = 0x31,
                .xonthrhd = 5,
                .xoffthrhd = 6,
                .no_buf = 7};
  EXPECT_EQ(WriteSystemQos(qos), DriverStatus::kOk);
  qos.redEnable = 1;
  qos.bufthrhd = 0xFE;
  EXPECT_EQ(WriteSystemQos(qos), DriverStatus::kOk);
}

TEST(Qos, ThePortModeIsTheTopOfItsByte) {
  ScriptedBus bus(R"(
    r8  0000 7f
    r8  0001 bf
    r8  0002 c0
    r8  0108 25
  )");
  std::uint8_t mode = 9;
  EXPECT_EQ(ReadPortQos(1, mode), DriverStatus::kOk);
  EXPECT_EQ(mode, 1);
  EXPECT_EQ(ReadPortQos(2, mode), DriverStatus::kOk);
  EXPECT_EQ(mode, 2);
  EXPECT_EQ(ReadPortQos(4, mode), DriverStatus::kOk);
  EXPECT_EQ(mode, 3);
  EXPECT_EQ(ReadPortQos(8, mode), DriverStatus::kOk);
  EXPECT_EQ(mode, 0);
}

TEST(Qos, APortModeWriteKeepsTheRestOfTheByte) {
  ScriptedBus bus(R"(
    lock
    r8  0000 a5
    w8  0000 65
    unlock
    lock
    r8  0001 da
    w8  0001 1a
    unlock
    lock
    r8  0002 3f
    w8  0002 7f
    unlock
    lock
    r8  0108 e5
    w8  0108 25
    unlock
  )");
  EXPECT_EQ(WritePortQos(1, 1), DriverStatus::kOk);
  EXPECT_EQ(WritePortQos(2, 0), DriverStatus::kOk);
  EXPECT_EQ(WritePortQos(4, 1), DriverStatus::kOk);
  EXPECT_EQ(WritePortQos(8, 0), DriverStatus::kOk);
}

TEST(Qos, EachQueueHasItsFourRegisters) {
  ScriptedBus bus(R"(
    r8  0800 01        # WAN 0
    r8  0801 02
    r8  0824 43
    r8  0834 05
    r8  080e 11        # LAN 3
    r8  080f 12
    r8  082b f0
    r8  083b ff
    r8  0814 21        # DMZ 2
    r8  0815 22
    r8  082e 0f
    r8  083e 25
    r8  081a 31        # CPU 1
    r8  081b 32
    r8  0831 5a
    r8  0841 35
    r8  081e 41        # CPU 3
    r8  081f 42
    r8  0833 99
    r8  0843 45
  )");
  QueueQos qos{};
  EXPECT_EQ(ReadQueueQos(1, 0, qos), DriverStatus::kOk);
  EXPECT_EQ(qos.lowthrhd, 1);
  EXPECT_EQ(qos.highthrhd, 2);
  EXPECT_EQ(qos.lowdrop, 3);
  EXPECT_EQ(qos.highdrop, 4);
  EXPECT_EQ(qos.credit, 5);
  EXPECT_EQ(ReadQueueQos(2, 3, qos), DriverStatus::kOk);
  EXPECT_EQ(qos.lowdrop, 0);
  EXPECT_EQ(qos.highdrop, 0x0F);
  EXPECT_EQ(qos.credit, 0xFF);
  EXPECT_EQ(ReadQueueQos(4, 2, qos), DriverStatus::kOk);
  EXPECT_EQ(qos.lowdrop, 0x0F);
  EXPECT_EQ(qos.highdrop, 0);
  EXPECT_EQ(ReadQueueQos(8, 1, qos), DriverStatus::kOk);
  EXPECT_EQ(qos.lowthrhd, 0x31);
  EXPECT_EQ(ReadQueueQos(8, 3, qos), DriverStatus::kOk);
  EXPECT_EQ(qos.credit, 0x45);
}

TEST(Qos, AQueueWriteStoresItsFourRegisters) {
  ScriptedBus bus(R"(
    lock
    w8  0802 10        # WAN 1
    w8  0803 20
    w8  0825 2f        # high drop 2, low drop f
    w8  0835 ff
    unlock
    lock
    w8  081c 10        # CPU 2
    w8  081d 20
    w8  0832 f0
    w8  0842 05
    unlock
  )");
  EXPECT_EQ(WriteQueueQos(1, 1, {0x10, 0x20, 0x0F, 0x02, 0xFF}), DriverStatus::kOk);
  EXPECT_EQ(WriteQueueQos(8, 2, {0x10, 0x20, 0x00, 0x0F, 0x05}), DriverStatus::kOk);
}

TEST(Qos, BadArgumentsAreRefusedUntouched) {
  ScriptedBus bus("");
  std::uint8_t mode = 0;
  QueueQos qos{};
  for (const std::uint8_t port : std::array<std::uint8_t, 7>{0, 3, 5, 9, 15, 16, 255}) {
    EXPECT_EQ(ReadPortQos(port, mode), DriverStatus::kRefused);
    EXPECT_EQ(WritePortQos(port, 0), DriverStatus::kRefused);
    EXPECT_EQ(ReadQueueQos(port, 0, qos), DriverStatus::kRefused);
    EXPECT_EQ(WriteQueueQos(port, 0, qos), DriverStatus::kRefused);
  }
  EXPECT_EQ(WritePortQos(1, 2), DriverStatus::kRefused);
  EXPECT_EQ(ReadQueueQos(1, 4, qos), DriverStatus::kRefused);
  EXPECT_EQ(WriteQueueQos(1, 4, qos), DriverStatus::kRefused);
  EXPECT_EQ(WriteQueueQos(1, 0, {0, 0, 16, 0, 0}), DriverStatus::kRefused);
  EXPECT_EQ(WriteQueueQos(1, 0, {0, 0, 0, 16, 0}), DriverStatus::kRefused);
}

TEST(Qos, ASystemSetReadsBeforeAndAfterAndKeepsTheNoBufferThreshold) {
  const std::string transcript = std::string(kReadSystem) + R"(
    lock
    w8  0823 30        # RED off
    w8  0821 10
    w8  0822 08
    w8  0820 20
    w8  0845 40
    w8  0846 48
    w8  0844 44
    unlock
  )" + kReadSystem;
  ScriptedBus bus(transcript.c_str());
  const Outcome outcome = RunLine("qos = 10 08 20 31 40 48");
  EXPECT_EQ(outcome.result, kDone);
  EXPECT_EQ(outcome.output,
            "\n\rMULTICAST HIGH PRIORITY BUFFERS: 11\tLOW PRIORITY BUFFERS: 12"
            "\n\rRED ENABLE: TRUE\tRED SHARE POOL: 10\tDROP BUFFER THRESHOLD: 4e"
            "\n\rXON THRESHOLD: 45\tXOFF THRESHOLD: 46\tNO_BUF THRESHOLD: 44");
}

TEST(Qos, OfTwoNoBufferThresholdsTheLastCounts) {
  const std::string transcript = std::string(kReadSystem) + R"(
    lock
    w8  0823 30
    w8  0821 10
    w8  0822 08
    w8  0820 20
    w8  0845 40
    w8  0846 48
    w8  0844 06
    unlock
  )" + kReadSystem;
  ScriptedBus bus(transcript.c_str());
  EXPECT_EQ(RunLine("qos = 10 08 20 31 40 48 5 6").result, kDone);
}

TEST(Qos, AWordThatIsNeitherRedNorANumberIsRetriedUntilCtrlC) {
  for (const char* const line : {"qos = 10 08 20 31 40 48 reds", "qos = 10 08 20 31 40 48 red 100",
                                 "qos = 10 08 20 31 40 48 g red"}) {
    (void)TakeLooks();
    PressCtrlCInWaits(true);
    ScriptedBus bus(kReadSystem);
    const Outcome outcome = RunLine(line);
    PressCtrlCInWaits(false);
    EXPECT_EQ(outcome.result, kUsage) << line;
    EXPECT_EQ(outcome.output, "") << line;
    EXPECT_EQ(TakeLooks(), 1U) << line;
  }
}

TEST(Qos, RefusedWordsTouchNothing) {
  ScriptedBus bus("");
  ExpectLinesRefused({"qos = 1 1 1 1 1 1 red 1", "qos wan = mode1", "qos wan 0 = 1 1 1 1 1"},
                     {"qos xan",
                      "qos =",
                      "qos 1",
                      "qos xan 0",
                      "qos wan g",
                      "qos wan 000",
                      "qos wan =",
                      "qos = 1",
                      "qos = 1 2 3 4 5",
                      "qos = 1 2 3 4 5 6 red 7 8",
                      "qos = 100 2 3 4 5 6",
                      "qos = 1 g 3 4 5 6",
                      "qos = 1 2 g 4 5 6",
                      "qos = 1 2 3 g 5 6",
                      "qos = 1 2 3 4 g 6",
                      "qos = 1 2 3 4 5 red",
                      "qos xan = mode1",
                      "qos wan = mode3",
                      "qos wan = mode",
                      "qos wan 0 mode1",
                      "qos wan 0 =",
                      "qos wan 0 = 1 2 3 4",
                      "qos wan 0 = 1 2 3 4 5 6",
                      "qos wan 0 : 1 2 3 4 5",
                      "qos xan 0 = 1 2 3 4 5",
                      "qos wan g = 1 2 3 4 5",
                      "qos wan 0 = g 2 3 4 5",
                      "qos wan 0 = 1 g 3 4 5",
                      "qos wan 0 = 1 2 g 4 5",
                      "qos wan 0 = 1 2 3 g 5",
                      "qos wan 0 = 1 2 3 4 g"});
}

}  // namespace
}  // namespace monitor
