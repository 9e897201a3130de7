// Reset, version, timers, chip selects, SDRAM, UART.
#include "hostile/explore.h"
#include "hostile/steps.h"
#include "system/reset.h"
#include "system/timer.h"
#include "system/uart.h"

namespace hostile {
namespace {

using std::uint16_t;
using std::uint8_t;

DriverStatus Reset(unsigned bit) {
  Lock();
  Set(0x100, bit);
  Clear(0x100, bit);
  const bool done = AwaitLimited(0x100, 0x04, 10'001);
  Unlock();
  return done ? kOk : kRefused;
}

DriverStatus ResetHardware() {
  const DriverStatus status = Reset(0x01);
  if (status != kOk) return status;
  Set(0x240, 0xC0);
  W8(0x241, 0x00);
  W8(0x241, 0xC0);
  Set(0x250, 0x10);
  W8(0x251, R8(0x251));
  Delay(0x251, 1'000'000);
  Set(0x251, 0x10);
  return kOk;
}
DriverStatus ResetCpu() { return Reset(0x20); }
DriverStatus ResetCpuAndChipSelect() { return Reset(0x10); }

DriverStatus ResetDoneRead(uint8_t& done) {
  done = (R8(0x100, 0x04) & 0x04) != 0 ? 1 : 0;
  return kOk;
}

DriverStatus ChipIdRead(uint8_t& revision, uint16_t& model) {
  revision = R8(0x101);
  model = R16Halves(0x102);
  return kOk;
}

int ConsoleDrain() {
  Flush();
  return 1;
}

TEST(Hostile, ResetHardware) { Explore(ResetHardware, monitor::ResetHardware); }
TEST(Hostile, ResetCpu) { Explore(ResetCpu, monitor::ResetCpu); }
TEST(Hostile, ResetCpuAndChipSelect) {
  Explore(ResetCpuAndChipSelect, monitor::ResetCpuAndChipSelect);
}
TEST(Hostile, ResetDoneRead) { Explore(ResetDoneRead, monitor::ResetDoneRead, Junk<uint8_t>()); }
TEST(Hostile, ChipIdRead) {
  Explore(ChipIdRead, monitor::ChipIdRead, Junk<uint8_t>(), Junk<uint16_t>());
}
TEST(Hostile, ConsoleDrain) { Explore(ConsoleDrain, monitor::ConsoleDrain); }

DriverStatus TimerCounterRead(unsigned timer, uint16_t& counter) {
  if (timer > 1) return kRefused;
  counter = R16(timer == 0 ? 0x200 : 0x208);
  return kOk;
}

DriverStatus TimerConfigRead(unsigned timer, uint16_t& load, uint16_t& divisor) {
  if (timer > 1) return kRefused;
  load = R16(timer == 0 ? 0x202 : 0x20A);
  divisor = R16(timer == 0 ? 0x204 : 0x20C);
  return kOk;
}

DriverStatus TimerConfigWrite(unsigned timer, uint16_t load, uint16_t divisor) {
  if (timer > 1) return kRefused;
  Lock();
  W16(timer == 0 ? 0x202 : 0x20A, load);
  W16(timer == 0 ? 0x204 : 0x20C, divisor);
  Unlock();
  return kOk;
}

DriverStatus TimerStart(unsigned timer) {
  if (timer > 1) return kRefused;
  Lock();
  W8(0x20E, R8(0x20E) & (timer == 0 ? 0xFA : 0xF5));
  Unlock();
  return kOk;
}

DriverStatus TimerStop(unsigned timer) {
  if (timer > 1) return kRefused;
  Lock();
  Set(0x20E, timer == 0 ? 0x01 : 0x02);
  Unlock();
  return kOk;
}

DriverStatus TimerPause(unsigned timer) {
  if (timer > 1) return kRefused;
  Lock();
  Set(0x20E, timer == 0 ? 0x04 : 0x08);
  Unlock();
  return kOk;
}

DriverStatus TimerTest(unsigned timer) {
  if (timer > 1) return kRefused;
  Lock();
  W8(0x20E, R8(0x20E) & (timer == 0 ? 0xFA : 0xF5));
  W8(0x221, 0xFF);
  Unlock();
  return kOk;
}

constexpr unsigned kTimers[] = {0, 1, 2, 3, 255, 256, 0x10000, ~0U};

TEST(Hostile, TimerCounterRead) {
  for (const unsigned timer : kTimers) {
    Explore(TimerCounterRead, monitor::TimerCounterRead, timer, Junk<uint16_t>());
  }
}
TEST(Hostile, TimerConfigRead) {
  for (const unsigned timer : kTimers) {
    Explore(TimerConfigRead, monitor::TimerConfigRead, timer, Junk<uint16_t>(), Junk<uint16_t>());
  }
}
TEST(Hostile, TimerConfigWrite) {
  for (const unsigned timer : kTimers) {
    Explore(TimerConfigWrite, monitor::TimerConfigWrite, timer, Junk<uint16_t>(), Junk<uint16_t>());
  }
}
TEST(Hostile, TimerStart) {
  for (const unsigned timer : kTimers) Explore(TimerStart, monitor::TimerStart, timer);
}
TEST(Hostile, TimerStop) {
  for (const unsigned timer : kTimers) Explore(TimerStop, monitor::TimerStop, timer);
}
TEST(Hostile, TimerPause) {
  for (const unsigned timer : kTimers) Explore(TimerPause, monitor::TimerPause, timer);
}
TEST(Hostile, TimerTest) {
  for (const unsigned timer : kTimers) Explore(TimerTest, monitor::TimerTest, timer);
}

DriverStatus CsRead(unsigned number, monitor::ChipSelect& cs) {
  if (number == 2 || number > 6) return kRefused;
  if (number == 6) {
    cs.start = R16Halves(0x124);
    return kOk;
  }
  const unsigned at = number < 2 ? 0x110 + 4 * number : 0x118 + 4 * (number - 3);
  cs.start = R16(at);
  cs.maskSize = R8(at + 2) & 0x0F;
  if (number >= 3) cs.wait = R8(at + 3) & 0x0F;
  return kOk;
}

DriverStatus CsWrite(unsigned number, const monitor::ChipSelect& cs) {
  if (cs.maskSize > 15 || cs.wait > 15 || number == 2 || number > 6) return kRefused;
  if (number == 6) {
    W16(0x124, cs.start);
    return kOk;
  }
  const unsigned at = number < 2 ? 0x110 + 4 * number : 0x118 + 4 * (number - 3);
  Lock();
  W16(at, cs.start);
  W8(at + 2, cs.maskSize);
  if (number >= 3) W8(at + 3, cs.wait);
  Unlock();
  return kOk;
}

DriverStatus SdramTypeRead(monitor::SdramType& type) {
  const uint8_t value = R8(0x130, 0xFF);
  type.chipSelect = value & 1;
  type.column = (value >> 2) & 7;
  type.row = value >> 5;
  return kOk;
}

DriverStatus SdramTypeWrite(const monitor::SdramType& type) {
  if (type.chipSelect > 1 || type.column > 1 || type.row > 2) return kRefused;
  Lock();
  W8(0x130, type.chipSelect + type.column * 4U + type.row * 32U);
  Unlock();
  return kOk;
}

TEST(Hostile, CsRead) {
  for (const unsigned number : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 255U, 256U, 259U, ~0U}) {
    Explore(CsRead, monitor::CsRead, number, Junk<monitor::ChipSelect>());
  }
}
TEST(Hostile, CsWrite) {
  for (const unsigned number : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 255U, 256U, 259U, ~0U}) {
    for (const uint8_t mask : Bytes{0, 9, 15, 16, 255}) {
      for (const uint8_t wait : Bytes{0, 6, 15, 16, 255}) {
        Explore(CsWrite, monitor::CsWrite, number,
                monitor::ChipSelect{Junk<uint16_t>(), mask, wait});
      }
    }
  }
}
TEST(Hostile, SdramTypeRead) {
  Explore(SdramTypeRead, monitor::SdramTypeRead, Junk<monitor::SdramType>());
}
TEST(Hostile, SdramTypeWrite) {
  for (const uint8_t cs : Bytes{0, 1, 2, 255}) {
    for (const uint8_t column : Bytes{0, 1, 2, 255}) {
      for (const uint8_t row : Bytes{0, 1, 2, 3, 255}) {
        Explore(SdramTypeWrite, monitor::SdramTypeWrite, monitor::SdramType{cs, column, row});
      }
    }
  }
}

DriverStatus UartRegRead(uint16_t code, uint8_t& value) {
  switch (code) {
    case 1:
      value = R8(0x300);
      return kOk;
    case 4:
      value = R8(0x301);
      return kOk;
    case 6:
      value = R8(0x302);
      return kOk;
    case 8:
      value = R8(0x303);
      return kOk;
    case 9:
      value = R8(0x305);
      return kOk;
    case 10:
      value = R8(0x304);
      return kOk;
    default:
      return kRefused;
  }
}

DriverStatus WriteLatch(unsigned offset, uint8_t value) {
  if ((R8(0x303, 0x80) & 0x80) != 0) {
    W8(offset, value);
    return kOk;
  }
  Lock();
  Set(0x303, 0x80);
  W8(offset, value);
  Clear(0x303, 0x80);
  Unlock();
  return kOk;
}

DriverStatus UartRegWrite(uint16_t code, uint8_t value) {
  switch (code) {
    case 2:
      W8(0x300, value);
      return kOk;
    case 3:
      return WriteLatch(0x300, value);
    case 4:
      W8(0x301, value);
      return kOk;
    case 5:
      return WriteLatch(0x301, value);
    case 7:
      W8(0x302, value);
      return kOk;
    case 8:
      W8(0x303, value);
      return kOk;
    default:
      return kRefused;
  }
}

constexpr uint16_t kUartCodes[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 255, 0x104, 0xFFFF};

TEST(Hostile, UartRegRead) {
  for (const uint16_t code : kUartCodes) {
    Explore(UartRegRead, monitor::UartRegRead, code, Junk<uint8_t>());
  }
}
TEST(Hostile, UartRegWrite) {
  for (const uint16_t code : kUartCodes) {
    Explore(UartRegWrite, monitor::UartRegWrite, code, Junk<uint8_t>());
  }
}

}  // namespace
}  // namespace hostile
