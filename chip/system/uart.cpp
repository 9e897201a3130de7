#include "chip/system/uart.h"

#include "system/uart_registers.h"

namespace chip {
namespace {

using namespace monitor;  // NOLINT: the register names

constexpr std::uint8_t kFifoEnable = 0x01;
constexpr std::uint8_t kFifoClearReceive = 0x02;
constexpr std::uint8_t kSourceTransmitEmpty = 1;
constexpr std::uint8_t kSourceReceived = 2;
constexpr std::uint8_t kIdleLine = kUartTransmitterEmpty.Mask() | kUartHoldingEmpty.Mask();

}  // namespace

Uart::Uart(RegisterFile& registers) : registers_(registers) {
  const auto byte = [](std::uint32_t stored) { return static_cast<std::uint8_t>(stored); };
  registers.Define(
      kUartData, {.before_load = [this] { LoadData(); },
                  .after_store = [this, byte](std::uint32_t stored) { StoreData(byte(stored)); }});
  registers.Define(
      kUartInterruptEnable,
      {.before_load = [this] { LoadInterruptEnable(); },
       .after_store = [this, byte](std::uint32_t stored) { StoreInterruptEnable(byte(stored)); }});
  registers.Define(
      kUartStatus,
      {.reset = kUartNoInterrupt.Mask(),
       .before_load = [this] { LoadStatus(); },
       .after_store = [this, byte](std::uint32_t stored) { StoreFifoControl(byte(stored)); }});
  registers.Define(kUartLineControl);
  registers.Define(kUartModemControl);
  registers.Define(kUartLineStatus, {.reset = kIdleLine, .read_only = 0xFF, .before_load = [this] {
                                       LoadLineStatus();
                                     }});
}

void Uart::Reset() {
  received_.clear();
  holding_ = 0;
  interrupt_enable_ = 0;
  divisor_low_ = 0;
  divisor_high_ = 0;
  fifos_on_ = false;
  transmit_interrupt_ = false;
}

bool Uart::DivisorOpen() const {
  return kUartDivisorAccess.Get(registers_.Get(kUartLineControl)) != 0;
}

void Uart::LoadData() {
  if (!DivisorOpen() && !received_.empty()) {
    holding_ = received_.front();
    received_.pop_front();
  }
  registers_.Set(kUartData, DivisorOpen() ? divisor_low_ : holding_);
}

void Uart::StoreData(std::uint8_t value) {
  if (DivisorOpen()) {
    divisor_low_ = value;
    return;
  }
  if (on_transmit) on_transmit(value);
  transmit_interrupt_ = true;
}

void Uart::LoadInterruptEnable() {
  registers_.Set(kUartInterruptEnable, DivisorOpen() ? divisor_high_ : interrupt_enable_);
}

void Uart::StoreInterruptEnable(std::uint8_t value) {
  if (DivisorOpen()) {
    divisor_high_ = value;
    return;
  }
  const bool was_on = kUartEnableTransmit.Get(interrupt_enable_) != 0;
  interrupt_enable_ = value;
  if (!was_on && kUartEnableTransmit.Get(value) != 0) transmit_interrupt_ = true;
}

void Uart::LoadStatus() {
  std::uint8_t status = fifos_on_ ? kUartFifosOn.Mask() : 0;
  if (kUartEnableReceive.Get(interrupt_enable_) != 0 && !received_.empty()) {
    status |= kUartInterruptSource.Put(kSourceReceived);
  } else if (kUartEnableTransmit.Get(interrupt_enable_) != 0 && transmit_interrupt_) {
    status |= kUartInterruptSource.Put(kSourceTransmitEmpty);
    transmit_interrupt_ = false;
  } else {
    status |= kUartNoInterrupt.Mask();
  }
  registers_.Set(kUartStatus, status);
}

void Uart::StoreFifoControl(std::uint8_t value) {
  fifos_on_ = (value & kFifoEnable) != 0;
  if ((value & kFifoClearReceive) != 0) received_.clear();
}

void Uart::LoadLineStatus() {
  const std::uint8_t ready = received_.empty() ? 0 : kUartDataReady.Mask();
  registers_.Set(kUartLineStatus, static_cast<std::uint8_t>(kIdleLine | ready));
}

void Uart::State(StateArchive& archive) {
  archive.Queue("received", received_);
  archive.Hex("holding", holding_);
  archive.Hex("interrupt_enable", interrupt_enable_);
  archive.Hex("divisor_low", divisor_low_);
  archive.Hex("divisor_high", divisor_high_);
  archive.Flag("fifos_on", fifos_on_);
  archive.Flag("transmit_interrupt", transmit_interrupt_);
}

}  // namespace chip
