#include "core/irq_guard.h"

#include <gtest/gtest.h>

#include "core/registers.h"
#include "support/scripted_bus.h"

namespace monitor {
namespace {

TEST(IrqGuards, TheBracketEndsWithTheScope) {
  ScriptedBus bus("lock\n w8 0123 01\n unlock\n w8 0123 02");
  {
    IrqGuard lock;
    Write(Reg8{0x123}, 0x01);
  }
  Write(Reg8{0x123}, 0x02);
}

TEST(IrqGuards, AnEarlyReleaseIsTheOnlyOne) {
  ScriptedBus bus("lock\n w8 0123 01\n unlock\n w8 0123 02");
  IrqGuard lock;
  Write(Reg8{0x123}, 0x01);
  lock.Release();
  lock.Release();
  Write(Reg8{0x123}, 0x02);
}

}  // namespace
}  // namespace monitor
