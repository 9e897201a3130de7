// GPIO, TDM, interrupt controller, MII.
#include "hostile/explore.h"
#include "hostile/models.h"
#include "system/interrupt.h"
#include "system/mii.h"
#include "system/tdm.h"

namespace hostile {
namespace {

using std::uint16_t;
using std::uint8_t;

DriverStatus GpioDataRead(uint8_t& data) {
  data = R8(0x221);
  return kOk;
}
DriverStatus GpioStatusRead(uint8_t& status) {
  status = R8(0x222);
  return kOk;
}
DriverStatus GpioDataWrite(uint8_t data) {
  Lock();
  W8(0x221, data);
  Unlock();
  return kOk;
}
DriverStatus GpioStatusWrite(uint8_t status) {
  Lock();
  W8(0x222, status);
  Unlock();
  return kOk;
}
DriverStatus GpioConfigRead(monitor::GpioConfig& config) {
  config.direction = R8(0x220);
  config.enable = R8(0x224);
  config.setting = R8(0x223);
  config.trigger = R8(0x225);
  return kOk;
}
DriverStatus GpioConfigWrite(const monitor::GpioConfig& config) {
  Lock();
  W8(0x220, config.direction);
  W8(0x224, config.enable);
  W8(0x223, config.setting);
  W8(0x225, config.trigger);
  Unlock();
  return kOk;
}

TEST(Hostile, GpioDataRead) { Explore(GpioDataRead, monitor::GpioDataRead, Junk<uint8_t>()); }
TEST(Hostile, GpioStatusRead) { Explore(GpioStatusRead, monitor::GpioStatusRead, Junk<uint8_t>()); }
TEST(Hostile, GpioDataWrite) { Explore(GpioDataWrite, monitor::GpioDataWrite, Junk<uint8_t>()); }
TEST(Hostile, GpioStatusWrite) {
  Explore(GpioStatusWrite, monitor::GpioStatusWrite, Junk<uint8_t>());
}
TEST(Hostile, GpioConfigRead) {
  Explore(GpioConfigRead, monitor::GpioConfigRead, Junk<monitor::GpioConfig>());
}
TEST(Hostile, GpioConfigWrite) {
  Explore(GpioConfigWrite, monitor::GpioConfigWrite, Junk<monitor::GpioConfig>());
}

DriverStatus TdmConfigRead(uint16_t& on, uint16_t& off, uint8_t& automatic) {
  on = R16Halves(0x004);
  off = R16Halves(0x008);
  automatic = (R8(0x00A, 0x02) & 0x02) != 0 ? 1 : 0;
  return kOk;
}
DriverStatus TdmConfigWrite(uint16_t on, uint16_t off, uint8_t automatic) {
  W16(0x004, on);
  W16(0x008, off);
  Lock();
  SetOrClear(0x00A, 0x02, automatic != 0);
  Unlock();
  return kOk;
}
DriverStatus TdmEnable(uint8_t on) {
  if (on != 0) {
    W8(0x006, 3);
    Set(0x00A, 0x01);
  } else {
    Clear(0x006, 0x03);
    Clear(0x00A, 0x01);
  }
  return kOk;
}

TEST(Hostile, TdmConfigRead) {
  Explore(TdmConfigRead, monitor::TdmConfigRead, Junk<uint16_t>(), Junk<uint16_t>(),
          Junk<uint8_t>());
}
TEST(Hostile, TdmConfigWrite) {
  for (const uint8_t automatic : Bytes{0, 1, 2, 255}) {
    Explore(TdmConfigWrite, monitor::TdmConfigWrite, Junk<uint16_t>(), Junk<uint16_t>(), automatic);
  }
}
TEST(Hostile, TdmEnable) {
  for (const uint8_t on : Bytes{0, 1, 2, 255}) Explore(TdmEnable, monitor::TdmEnable, on);
}

DriverStatus IntGroupRead(uint16_t& value) {
  value = R16Halves(0x212);
  return kOk;
}
DriverStatus IntMaskRead(uint16_t& value) {
  value = R16Halves(0x214);
  return kOk;
}
DriverStatus IntGroupWrite(uint16_t value) {
  W16(0x212, value);
  return kOk;
}
DriverStatus IntMaskWrite(uint16_t value) {
  W16(0x214, value);
  return kOk;
}

}  // namespace

// Models of the MAC ports and of frames use these.

DriverStatus IntStatusRead(uint16_t& value) {
  value = R16Halves(0x210);
  return kOk;
}
DriverStatus IntStatusWrite(uint16_t value) {
  Lock();
  W16(0x210, value);
  Unlock();
  return kOk;
}

TEST(Hostile, IntStatusRead) { Explore(IntStatusRead, monitor::IntStatusRead, Junk<uint16_t>()); }
TEST(Hostile, IntGroupRead) { Explore(IntGroupRead, monitor::IntGroupRead, Junk<uint16_t>()); }
TEST(Hostile, IntMaskRead) { Explore(IntMaskRead, monitor::IntMaskRead, Junk<uint16_t>()); }
TEST(Hostile, IntStatusWrite) {
  Explore(IntStatusWrite, monitor::IntStatusWrite, Junk<uint16_t>());
}
TEST(Hostile, IntGroupWrite) { Explore(IntGroupWrite, monitor::IntGroupWrite, Junk<uint16_t>()); }
TEST(Hostile, IntMaskWrite) { Explore(IntMaskWrite, monitor::IntMaskWrite, Junk<uint16_t>()); }

DriverStatus MiiRead(uint8_t phy, uint8_t reg, uint16_t& value) {
  if (phy > 31 || reg > 31) return kRefused;
  const bool ready = (R16(0x408, 0x4000) & 0x4000) != 0;
  R16(0x408);
  if (!ready) return kNotReady;
  W16(0x408, phy * 256U | 0xC0U | reg);
  W16(0x408, phy * 256U | 0x40U | reg);
  if (!Await16Twice(0x408, 0x6000, 10'001)) return kNotReady;
  value = R16Halves(0x40C);
  return kOk;
}

DriverStatus MiiWrite(uint8_t phy, uint8_t reg, uint16_t value) {
  if (phy > 31 || reg > 31) return kRefused;
  const bool ready = (R16(0x408, 0x4000) & 0x4000) != 0;
  R16(0x408);
  if (!ready) return kNotReady;
  Lock();
  W16(0x40A, value);
  W16(0x408, phy * 256U | 0xA0U | reg);
  W16(0x408, phy * 256U | 0x20U | reg);
  Unlock();
  return Await16Twice(0x408, 0x4000, 10'001) ? kOk : kNotReady;
}

constexpr uint8_t kPhyNumbers[] = {0, 1, 21, 31, 32, 33, 255};

TEST(Hostile, MiiRead) {
  for (const uint8_t phy : kPhyNumbers) {
    for (const uint8_t reg : kPhyNumbers) {
      Explore(MiiRead, monitor::MiiRead, phy, reg, Junk<uint16_t>());
    }
  }
}
TEST(Hostile, MiiWrite) {
  for (const uint8_t phy : kPhyNumbers) {
    for (const uint8_t reg : kPhyNumbers) {
      Explore(MiiWrite, monitor::MiiWrite, phy, reg, Junk<uint16_t>());
    }
  }
}

}  // namespace hostile
