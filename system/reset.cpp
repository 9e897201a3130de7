#include "system/reset.h"

#include "classifier/classifier.h"
#include "console/console_port.h"
#include "core/irq_guard.h"
#include "core/long_wait.h"
#include "system/reset_registers.h"

namespace monitor {
namespace {

constexpr unsigned kPulseRounds = 100;
constexpr unsigned kDonePolls = 1 + 10'000;
constexpr unsigned kDelayLoads = 1'000'000;

bool AwaitResetDone() {
  for (unsigned polls = kDonePolls; polls != 0; --polls) {
    if (kResetDone.Get(Read(kResetControl)) != 0) return true;
  }
  return false;
}

DriverStatus PulseReset(Field reset) {
  IrqGuard lock;
  SetBits(kResetControl, reset);
  Pause(kPulseRounds);
  ClearBits(kResetControl, reset);
  const bool done = AwaitResetDone();
  return done ? DriverStatus::kOk : DriverStatus::kRefused;
}

void FollowHardwareReset() {
  SetBits(kAfterReset240, kAfterReset240Bits);
  Write(kAfterReset241, 0x00);
  Write(kAfterReset241, 0xC0);
  SetBits(kAfterReset250, kAfterReset250Bit);
  Write(kAfterReset251, Read(kAfterReset251));
  // The loads are the delay that the chip needs before the last bit.
  for (unsigned loads = kDelayLoads; loads != 0; --loads) (void)Read(kAfterReset251);
  SetBits(kAfterReset251, kAfterReset251Bit);
}

}  // namespace

DriverStatus ResetHardware() {
  const DriverStatus status = PulseReset(kResetHardware);
  if (Failed(status)) return status;
  FollowHardwareReset();
  return DriverStatus::kOk;
}

DriverStatus ResetCpu() { return PulseReset(kResetCpu); }

DriverStatus ResetCpuAndChipSelect() { return PulseReset(kResetCpuAndChipSelect); }

DriverStatus ResetDoneRead(std::uint8_t& done) {
  done = kResetDone.Get(Read(kResetControl));
  return DriverStatus::kOk;
}

DriverStatus ChipIdRead(std::uint8_t& revision, std::uint16_t& model) {
  revision = Read(kChipRevision);
  model = ReadHalves(kChipModel);
  return DriverStatus::kOk;
}

int ConsoleDrain() {
  // The serial port itself is outside the window; all the monitor can do is hold nothing back.
  ConsoleFlush();
  return 1;
}

namespace {

int ShowDone() {
  std::uint8_t done;
  ResetDoneRead(done);
  ConsolePuts(done != 0 ? "RESET DONE!\n\r" : "RESET IS NOT DONE!\n\r");
  return kDone;
}

/// hw
int Hardware() {
  ConsolePuts("RESET HARDWARE\n\r");
  ConsoleDrain();
  ClsClearShadow();
  ResetHardware();
  return kDone;
}

/// cpu
int Cpu() {
  ConsolePuts("RESET CPU\n\r");
  ConsoleDrain();
  ResetCpu();
  return kDone;
}

/// cpucs
int CpuAndChipSelect() {
  ConsolePuts("RESET CPU AND CHIP SELECT\n\r");
  ConsoleDrain();
  ResetCpuAndChipSelect();
  return kDone;
}

/// A digit's character; 10 to 15 give the six characters after "9".
char DigitCharacter(unsigned digit) { return static_cast<char>('0' + digit); }

}  // namespace

int ResetCommand(int argc, ArgVector argv) {
  if (argc == 1) return ShowDone();
  if (argc != 2) return kUsage;
  const char* const what = argv[1];
  if (WordIs(what, "HW")) return Hardware();
  if (WordIs(what, "CPU")) return Cpu();
  if (WordIs(what, "CPUCS")) return CpuAndChipSelect();
  return kUsage;
}

int VersionCommand(int argc, ArgVector /*argv*/) {
  if (argc != 1) return kUsage;
  std::uint8_t revision;
  std::uint16_t model;
  ChipIdRead(revision, model);
  Print("VBQ%c%c%c%c Version %2d\n\r", DigitCharacter(model >> 12),
        DigitCharacter(model >> 8 & 0x0F), DigitCharacter(model >> 4 & 0x0F),
        DigitCharacter(model & 0x0F), revision);
  return kDone;
}

}  // namespace monitor
