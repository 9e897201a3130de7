// The whole model: the registers and every block that they control.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "chip/block.h"
#include "chip/classifier/classifier.h"
#include "chip/clock.h"
#include "chip/mac/frame_engine.h"
#include "chip/mac/stat_counters.h"
#include "chip/pppoe/pdr.h"
#include "chip/pppoe/pppoe_session.h"
#include "chip/pppoe/pxt.h"
#include "chip/register_file.h"
#include "chip/system/chip_select.h"
#include "chip/system/gpio.h"
#include "chip/system/interrupt.h"
#include "chip/system/mii.h"
#include "chip/system/reset.h"
#include "chip/system/timer.h"
#include "chip/system/uart.h"
#include "chip/tables/arp.h"
#include "chip/tables/l3_route.h"
#include "chip/tables/mcast.h"
#include "chip/tables/nat.h"

namespace chip {

class RouterChip {
 public:
  RouterChip();
  RouterChip(const RouterChip&) = delete;
  RouterChip& operator=(const RouterChip&) = delete;

  /// Power-on state of every register and block.
  void Reset();

  /// Everything except what is outside: faults, the clock, observers, complaints. When replacing
  /// throws, part of the state has been replaced.
  void State(StateArchive& archive);

  /// What can be made to fail, all of it.
  [[nodiscard]] std::vector<FaultPoint*> FaultPoints();
  [[nodiscard]] std::vector<std::string> FaultNames();

  /// Makes the fault point of that name fail; false when there is none.
  [[nodiscard]] bool SetFault(const std::string& name, const Fault& fault);

  // The chip's time, in nanoseconds since any fixed moment. It moves in Advance; resets and states
  // leave it alone.

  /// Brings the chip to `now`: blocks do what is due until then, that moment included, in the order
  /// of their deadlines and each at its own; those of one moment in the order of `blocks`. A time
  /// that is over is taken for the present.
  void Advance(std::uint64_t now);

  /// When a block will next do something by itself; nothing when none will.
  [[nodiscard]] std::optional<std::uint64_t> NextDeadline() const;

  /// The present time: `clock`'s where there is one, but never before what Advance has reached.
  [[nodiscard]] std::uint64_t Now() const;

  /// A clock that runs between two calls of Advance, for loads that show the time, as of a timer's
  /// counter. They see it, but nothing falls due by it. Empty: time stands still in between.
  Clock clock;

  // What the monitor does on its bus besides loads and stores; empty without an observer.
  std::function<void(std::uint16_t base)> on_map;  ///< Makes the buffer memory reachable there.
  std::function<void(bool locked)> on_lock;        ///< Locks or unlocks interrupts.

  RegisterFile registers;
  ResetControl reset{
      registers,
      {.whole_chip = [this] { Reset(); }, .chip_selects = [this] { chip_selects.Reset(); }}};
  Timers timers{registers, [this] { return Now(); }};
  ChipSelects chip_selects{registers};
  Gpio gpio{registers};
  Uart uart{registers};
  MiiInterface mii{registers};
  StatCounters stat_counters{registers};
  InterruptController interrupts{registers};
  FrameEngine frames{registers, interrupts, stat_counters};
  NatTables nat{registers};
  L3RouteTable l3{registers};
  McastTable mcast{registers};
  ArpTable arp{registers};
  Classifier classifier{registers};
  PppoeSessionTable pst{registers};
  PdrTable pdr{registers};
  PxtTable pxt{registers};

  /// Every block that is more than plain storage, in the order of saved states. All that the chip
  /// does with blocks follows from this list.
  std::vector<Block*> blocks{&reset,         &timers,     &gpio, &uart, &mii,
                             &stat_counters, &frames,     &nat,  &l3,   &mcast,
                             &arp,           &classifier, &pst,  &pdr,  &pxt};

 private:
  /// The block whose deadline is next; null when none has one.
  [[nodiscard]] Block* NextToAct() const;

  std::uint64_t reached_ = 0;  ///< By Advance.
};

/// The chip that the monitor's register and memory socket reaches. There must be one before the
/// first access.
void Attach(RouterChip& chip);

}  // namespace chip
