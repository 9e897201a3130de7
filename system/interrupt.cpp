#include "system/interrupt.h"

#include "core/irq_guard.h"
#include "system/interrupt_registers.h"

namespace monitor {

static_assert(kFrameReceivedEvent == kFrameReceived.Mask<std::uint16_t>());

DriverStatus IntStatusRead(std::uint16_t& value) {
  value = ReadHalves(kInterruptStatus);
  return DriverStatus::kOk;
}

DriverStatus IntGroupRead(std::uint16_t& value) {
  value = ReadHalves(kInterruptGroup);
  return DriverStatus::kOk;
}

DriverStatus IntMaskRead(std::uint16_t& value) {
  value = ReadHalves(kInterruptMask);
  return DriverStatus::kOk;
}

DriverStatus IntStatusWrite(std::uint16_t value) {
  IrqGuard lock;
  Write(kInterruptStatus, value);
  return DriverStatus::kOk;
}

DriverStatus IntGroupWrite(std::uint16_t value) {
  Write(kInterruptGroup, value);
  return DriverStatus::kOk;
}

DriverStatus IntMaskWrite(std::uint16_t value) {
  Write(kInterruptMask, value);
  return DriverStatus::kOk;
}

namespace {

/// A register as the command sees it.
struct Selection {
  const char* word;
  const char* label;
  DriverStatus (*read)(std::uint16_t& value);
  DriverStatus (*write)(std::uint16_t value);
};

constexpr Selection kSelections[] = {
    {"S", "STATUS REG: ", IntStatusRead, IntStatusWrite},
    {"G", "GROUP REG: ", IntGroupRead, IntGroupWrite},
    {"M", "MASK REG: ", IntMaskRead, IntMaskWrite},
};

void Show(const Selection& selection) {
  std::uint16_t value;
  selection.read(value);
  Print("%s %04x\n\r", selection.label, value);
}

int ShowAll() {
  for (const Selection& selection : kSelections) Show(selection);
  return kDone;
}

/// s|g|m = <value>
int Set(ArgVector argv) {
  std::uint16_t value;
  if (!WordIs(argv[2], "=") || !ParseHex16(argv[3], value)) return kUsage;
  for (const Selection& selection : kSelections) {
    if (!WordIs(argv[1], selection.word)) continue;
    selection.write(value);
    Show(selection);
    return kDone;
  }
  return kUsage;
}

}  // namespace

int InterruptCommand(int argc, ArgVector argv) {
  if (argc == 1) return ShowAll();
  return argc == 4 ? Set(argv) : kUsage;
}

}  // namespace monitor
