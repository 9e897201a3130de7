#include "chip/system/phy.h"

#include "chip/hex.h"

namespace chip {
namespace {

enum PhyRegister : unsigned {
  kControl = 0,
  kStatus = 1,
  kIdentifier1 = 2,
  kIdentifier2 = 3,
  kAdvertisement = 4,
  kPartnerAbility = 5,
};

constexpr std::uint16_t kControlReset = 0x8000;
constexpr std::uint16_t kControlKept = 0x7D80;       // restart of negotiation clears itself
constexpr std::uint16_t kControlAtPowerOn = 0x3100;  // 100 Mbit/s, negotiation, full duplex
constexpr std::uint16_t kStatusAbilities = 0x7809;   // all of 10 and 100 Mbit/s, negotiation
constexpr std::uint16_t kStatusNegotiated = 0x0020;
constexpr std::uint16_t kStatusLink = 0x0004;
constexpr std::uint16_t kAdvertisementKept = 0xAFFF;
constexpr std::uint16_t kAdvertisementAtPowerOn = 0x01E1;  // all of 10 and 100 Mbit/s, no pause
constexpr std::uint16_t kPartnerOffers = 0x45E1;           // all of it, and pause

}  // namespace

void Phy::Reset() {
  registers_.fill(0);
  registers_[kControl] = kControlAtPowerOn;
  registers_[kStatus] = kStatusAbilities;
  registers_[kIdentifier1] = 0x5642;
  registers_[kIdentifier2] = 0x0010;
  registers_[kAdvertisement] = kAdvertisementAtPowerOn;
  registers_[kPartnerAbility] = kPartnerOffers;
  link_was_lost_ = true;
}

void Phy::SetLink(bool up) {
  link_up_ = up;
  if (!up) link_was_lost_ = true;
}

std::uint16_t Phy::Load(unsigned reg) {
  if (reg == kStatus) return LoadStatus();
  if (reg == kPartnerAbility && !link_up_) return 0;
  return registers_[reg];
}

std::uint16_t Phy::LoadStatus() {
  std::uint16_t status = registers_[kStatus];
  if (link_up_) status |= kStatusNegotiated;
  if (link_up_ && !link_was_lost_) status |= kStatusLink;
  link_was_lost_ = false;
  return status;
}

void Phy::Store(unsigned reg, std::uint16_t value) {
  switch (reg) {
    case kControl:
      StoreControl(value);
      break;
    case kStatus:
    case kIdentifier1:
    case kIdentifier2:
    case kPartnerAbility:
      break;
    case kAdvertisement:
      registers_[reg] = value & kAdvertisementKept;
      break;
    default:
      registers_[reg] = value;
      break;
  }
}

void Phy::StoreControl(std::uint16_t value) {
  if ((value & kControlReset) != 0) {
    Reset();
  } else {
    registers_[kControl] = value & kControlKept;
  }
}

void Phy::State(StateArchive& archive) {
  archive.Group("registers", [&] {
    for (unsigned reg = 0; reg < kRegisters; ++reg) {
      const std::string key = Hex(reg, 2);
      if (archive.Omits(key, registers_[reg] == 0)) {
        registers_[reg] = 0;
      } else {
        archive.Hex(key, registers_[reg]);
      }
    }
  });
  archive.Flag("link_up", link_up_);
  archive.Flag("link_was_lost", link_was_lost_);
}

}  // namespace chip
