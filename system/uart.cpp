#include "system/uart.h"

#include "core/irq_guard.h"
#include "system/uart_registers.h"

namespace monitor {
namespace {

enum class StoreKind : std::uint8_t { kNone, kDirect, kDivisor };

/// Where a register code leads.
struct UartRow {
  Reg8 reg;
  bool readable;
  StoreKind store;
};

/// In order of code, from 1 on.
constexpr std::array<UartRow, 10> kUartRows{{
    {kUartData, true, StoreKind::kNone},                 // RHR
    {kUartData, false, StoreKind::kDirect},              // THR
    {kUartData, false, StoreKind::kDivisor},             // DLL
    {kUartInterruptEnable, true, StoreKind::kDirect},    // IER
    {kUartInterruptEnable, false, StoreKind::kDivisor},  // DLH
    {kUartStatus, true, StoreKind::kNone},               // ISR
    {kUartStatus, false, StoreKind::kDirect},            // FCR
    {kUartLineControl, true, StoreKind::kDirect},        // LCR
    {kUartLineStatus, true, StoreKind::kNone},           // LSR
    {kUartModemControl, true, StoreKind::kNone},         // MCR
}};

constexpr bool IsCode(std::uint16_t code) { return code >= 1 && code <= kUartRows.size(); }

void WriteDivisor(Reg8 reg, std::uint8_t value) {
  if ((Read(kUartLineControl) & kUartDivisorAccess.Mask()) != 0) {
    Write(reg, value);
    return;
  }
  IrqGuard lock;
  SetBits(kUartLineControl, kUartDivisorAccess);
  Write(reg, value);
  ClearBits(kUartLineControl, kUartDivisorAccess);
}

}  // namespace

DriverStatus UartRegRead(std::uint16_t code, std::uint8_t& value) {
  if (!IsCode(code) || !kUartRows[code - 1U].readable) return DriverStatus::kRefused;
  value = Read(kUartRows[code - 1U].reg);
  return DriverStatus::kOk;
}

DriverStatus UartRegWrite(std::uint16_t code, std::uint8_t value) {
  if (!IsCode(code)) return DriverStatus::kRefused;
  const UartRow& row = kUartRows[code - 1U];
  switch (row.store) {
    case StoreKind::kDirect:
      Write(row.reg, value);
      return DriverStatus::kOk;
    case StoreKind::kDivisor:
      WriteDivisor(row.reg, value);
      return DriverStatus::kOk;
    case StoreKind::kNone:
      break;
  }
  return DriverStatus::kRefused;
}

namespace {

constexpr std::array<Keyword, 7> kRegisterWords{{{"THR", kUartThr},
                                                 {"DLL", kUartDll},
                                                 {"IER", kUartIer},
                                                 {"DLH", kUartDlh},
                                                 {"FCR", kUartFcr},
                                                 {"LCR", kUartLcr},
                                                 {"MCR", kUartMcr}}};

struct ShownRegister {
  std::uint16_t code;
  const char* name;
  const char* end;
};

constexpr std::array<ShownRegister, 6> kShownRegisters{{{kUartRhr, "RHR", "\t"},
                                                        {kUartIer, "IER", "\t"},
                                                        {kUartIsr, "ISR", "\t"},
                                                        {kUartLcr, "LCR", "\t"},
                                                        {kUartMcr, "MCR", "\t"},
                                                        {kUartLsr, "LSR", "\n\r"}}};

int Show() {
  std::array<std::uint8_t, kShownRegisters.size()> values{};
  for (unsigned i = 0; i < values.size(); ++i) UartRegRead(kShownRegisters[i].code, values[i]);
  for (unsigned i = 0; i < values.size(); ++i) {
    Print("%s: %2x%s", kShownRegisters[i].name, values[i], kShownRegisters[i].end);
  }
  return kDone;
}

/// <register> = <value>: MCR is accepted here, then refused by the driver without a message.
int WriteRegister(ArgVector argv) {
  std::uint8_t code;
  std::uint8_t value;
  if (!WordIs(argv[2], "=") || !ParseHex8(argv[3], value) ||
      !ParseKeyword(argv[1], kRegisterWords, code)) {
    return kUsage;
  }
  UartRegWrite(code, value);
  return kDone;
}

}  // namespace

int UartCommand(int argc, ArgVector argv) {
  if (argc == 1) return Show();
  return argc == 4 ? WriteRegister(argv) : kUsage;
}

}  // namespace monitor
