#include <gtest/gtest.h>

#include "core/bus.h"
#include "support/scripted_bus.h"
#include "tables/l3_route.h"

namespace monitor {
namespace {

TEST(PastedTrace, IsATranscriptWithNamesAndCommandsAsCommentary) {
  ScriptedBus bus(R"(
# l3 c 5
w8 060e 05  L3_INDEX
r8 060d 03 x2  L3_COMMAND counter=0 write=0 start=0 write_ready=1 read_ready=1
w8 060d 16  L3_COMMAND counter=1 write=0 start=1 write_ready=1 read_ready=0
r8 060d 16  L3_COMMAND counter=1 write=0 start=1 write_ready=1 read_ready=0
w8 060d 12  L3_COMMAND counter=1 write=0 start=0 write_ready=1 read_ready=0
r8 060d 13  L3_COMMAND counter=1 write=0 start=0 write_ready=1 read_ready=1
r32 0610 000000ff  L3_COUNTER
)");
  std::uint32_t value = 0;
  EXPECT_EQ(L3ReadCounter(5, value), DriverStatus::kOk);
  EXPECT_EQ(value, 0xFFU);
}

TEST(PastedTrace, CountsEventsOfEveryKind) {
  const ScriptedBus bus("map 0100 x2\nlock x2\nunlock x2\nw8 060e 05 x2  L3_INDEX\n");
  IrqState outer;
  IrqState inner;
  EXPECT_TRUE(MemoryMap(0x100));
  EXPECT_TRUE(MemoryMap(0x100));
  IrqLock(&outer);
  IrqLock(&inner);
  IrqUnlock(inner);
  IrqUnlock(outer);
  WindowStore8(0x60E, 5);
  WindowStore8(0x60E, 5);
}

}  // namespace
}  // namespace monitor
