#include "system/mii.h"

#include "core/irq_guard.h"
#include "core/long_wait.h"
#include "system/mii_registers.h"

namespace monitor {
namespace {

constexpr unsigned kFurtherLooks = 10'000;
constexpr unsigned kStrobeRounds = 5;

constexpr auto kReady = kMiiReady.Mask<std::uint16_t>();
constexpr auto kReadDone = static_cast<std::uint16_t>(kReady | kMiiReadValid.Mask<std::uint16_t>());

constexpr bool InRange(std::uint8_t phy, std::uint8_t reg) {
  return phy < kMiiAddresses && reg < kMiiAddresses;
}

/// Polls the status once: of the two loads the first counts.
bool StatusHas(std::uint16_t bits) {
  const std::uint16_t status = Read(kMiiCommand);
  (void)Read(kMiiCommand);
  return (status & bits) == bits;
}

/// Polls the status until it has the bits, 10,001 times at most.
bool AwaitStatus(std::uint16_t bits) {
  if (StatusHas(bits)) return true;
  for (unsigned look = 0; look < kFurtherLooks; ++look) {
    if (StatusHas(bits)) return true;
  }
  return false;
}

/// Stores the command with the start strobe, pauses, and stores it without.
void Strobe(std::uint8_t phy, std::uint8_t reg, Field direction) {
  const auto command = static_cast<std::uint16_t>(kMiiPhy.Put<std::uint16_t>(phy) |
                                                  direction.Mask<std::uint16_t>() | reg);
  Write(kMiiCommand, static_cast<std::uint16_t>(command | kMiiStart.Mask<std::uint16_t>()));
  Pause(kStrobeRounds);
  Write(kMiiCommand, command);
}

}  // namespace

DriverStatus MiiRead(std::uint8_t phy, std::uint8_t reg, std::uint16_t& value) {
  if (!InRange(phy, reg)) return DriverStatus::kRefused;
  if (!StatusHas(kReady)) return DriverStatus::kNotReady;
  Strobe(phy, reg, kMiiReadAccess);
  if (!AwaitStatus(kReadDone)) return DriverStatus::kNotReady;
  value = ReadHalves(kMiiReadData);
  return DriverStatus::kOk;
}

DriverStatus MiiWrite(std::uint8_t phy, std::uint8_t reg, std::uint16_t value) {
  if (!InRange(phy, reg)) return DriverStatus::kRefused;
  if (!StatusHas(kReady)) return DriverStatus::kNotReady;
  IrqGuard lock;
  Write(kMiiWriteData, value);
  Strobe(phy, reg, kMiiWriteAccess);
  lock.Release();
  return AwaitStatus(kReady) ? DriverStatus::kOk : DriverStatus::kNotReady;
}

namespace {

/// Parses a PHY address or a register number.
bool ParseAddress(const char* word, std::uint8_t& address) {
  return ParseHex8(word, address) && address < kMiiAddresses;
}

}  // namespace

int MiiCommand(int argc, ArgVector argv) {
  std::uint8_t phy;
  std::uint8_t reg;
  std::uint16_t value;
  if (argc != 3 && argc != 5) return kUsage;
  if (!ParseAddress(argv[1], phy) || !ParseAddress(argv[2], reg)) return kUsage;
  if (argc == 5) {
    if (!WordIs(argv[3], "=") || !ParseHex16(argv[4], value)) return kUsage;
    if (Failed(MiiWrite(phy, reg, value))) return Fail("MII Write failed\n\r");
  }
  if (Failed(MiiRead(phy, reg, value))) return Fail("MII Read failed\n\r");
  Print("PHY: %04x\tREG: %04x\t VALUE: %04x\n\r", phy, reg, value);
  return kDone;
}

}  // namespace monitor
