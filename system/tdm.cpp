#include "system/tdm.h"

#include "core/irq_guard.h"
#include "system/tdm_registers.h"

namespace monitor {

DriverStatus TdmConfigRead(std::uint16_t& on_timer, std::uint16_t& off_timer,
                           std::uint8_t& auto_on) {
  on_timer = ReadHalves(kTdmOnTimer);
  off_timer = ReadHalves(kTdmOffTimer);
  auto_on = kTdmAutoOn.Get(Read(kTdmControl));
  return DriverStatus::kOk;
}

DriverStatus TdmConfigWrite(std::uint16_t on_timer, std::uint16_t off_timer, std::uint8_t auto_on) {
  Write(kTdmOnTimer, on_timer);
  Write(kTdmOffTimer, off_timer);
  IrqGuard lock;
  AssignBits(kTdmControl, kTdmAutoOn, auto_on != 0);
  return DriverStatus::kOk;
}

DriverStatus TdmEnable(std::uint8_t on) {
  if (on != 0) {
    // The whole byte: the bits above the enable are cleared.
    Write(kTdmInterface, kTdmInterfaceOn.Mask());
    SetBits(kTdmControl, kTdmEnabled);
  } else {
    ClearBits(kTdmInterface, kTdmInterfaceOn);
    ClearBits(kTdmControl, kTdmEnabled);
  }
  return DriverStatus::kOk;
}

namespace {

/// = <on_value> <off_value> [auto]
bool SetTimers(int argc, ArgVector argv) {
  std::uint16_t on_timer;
  std::uint16_t off_timer;
  if (!WordIs(argv[1], "=") || !ParseHex16(argv[2], on_timer) || !ParseHex16(argv[3], off_timer)) {
    return false;
  }
  if (argc == 5 && !WordIs(argv[4], "AUTO")) return false;
  TdmConfigWrite(on_timer, off_timer, argc == 5 ? 1 : 0);
  return true;
}

}  // namespace

int TdmConfigCommand(int argc, ArgVector argv) {
  if (argc != 1 && argc != 4 && argc != 5) return kUsage;
  if (argc != 1 && !SetTimers(argc, argv)) return kUsage;
  std::uint16_t on_timer;
  std::uint16_t off_timer;
  std::uint8_t auto_on;
  TdmConfigRead(on_timer, off_timer, auto_on);
  Print("TX ON TIMER : %4x", on_timer);
  Print("\tTX OFF TIMER : %4x", off_timer);
  ConsolePuts("\tAUTO ON: ");
  ConsolePuts(auto_on != 0 ? "ENABLE\n\r" : "DISABLE\n\r");
  return kDone;
}

int TdmCommand(int argc, ArgVector argv) {
  if (argc == 1) {
    TdmEnable(1);
    ConsolePuts("TDM IS ENABLE\n\r");
    return kDone;
  }
  if (argc != 2 || !WordIs(argv[1], "OFF")) return kUsage;
  TdmEnable(0);
  ConsolePuts("TDM IS DISABLE\n\r");
  return kDone;
}

}  // namespace monitor
