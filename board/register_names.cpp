#include "board/register_names.h"

#include <charconv>
#include <span>

#include "classifier/classifier_registers.h"
#include "core/filter_registers.h"
#include "mac/forward_control_registers.h"
#include "mac/frame_registers.h"
#include "mac/port_config_registers.h"
#include "mac/stat_counters_registers.h"
#include "mac/station_address_registers.h"
#include "qos/pdr_registers.h"
#include "qos/pppoe_session_registers.h"
#include "qos/pxt_registers.h"
#include "qos/qos_registers.h"
#include "qos/rate_control_registers.h"
#include "system/chip_select_registers.h"
#include "system/gpio_registers.h"
#include "system/interrupt_registers.h"
#include "system/mii_registers.h"
#include "system/reset_registers.h"
#include "system/tdm_registers.h"
#include "system/timer_registers.h"
#include "system/uart_registers.h"
#include "tables/arp_registers.h"
#include "tables/l3_route_registers.h"
#include "tables/mcast_registers.h"
#include "tables/nat_config_registers.h"
#include "tables/nat_registers.h"

namespace board {
namespace {

using monitor::RegisterRow;

/// Every block's registers; a new block adds its table.
constexpr std::span<const RegisterRow> kTables[] = {
    monitor::kFilterRegisters,      monitor::kResetRegisters,
    monitor::kTimerRegisters,       monitor::kChipSelectRegisters,
    monitor::kUartRegisters,        monitor::kGpioRegisters,
    monitor::kMiiRegisters,         monitor::kInterruptRegisters,
    monitor::kTdmRegisters,         monitor::kInterruptRegisters,
    monitor::kPortConfigRegisters,  monitor::kStationAddressRegisters,
    monitor::kFrameRegisters,       monitor::kForwardControlRegisters,
    monitor::kStatCounterRegisters, monitor::kNatConfigRegisters,
    monitor::kNatRegisters,         monitor::kRouteRegisters,
    monitor::kMcastRegisters,       monitor::kArpRegisters,
    monitor::kClsRegisters,         monitor::kQosRegisters,
    monitor::kRateControlRegisters, monitor::kPstRegisters,
    monitor::kPdrRegisters,         monitor::kPxtRegisters,
};

std::string Hex(std::uint32_t value) {
  std::array<char, 8> text;
  const auto result = std::to_chars(text.data(), text.data() + text.size(), value, 16);
  return {text.data(), result.ptr};
}

}  // namespace

RegisterNames::RegisterNames() {
  for (const std::span<const RegisterRow> table : kTables) {
    for (const RegisterRow& row : table) {
      for (unsigned i = 0; i < unsigned{row.width} * row.count; ++i) {
        rows_at_[row.offset + i].push_back(&row);
      }
    }
  }
}

const RegisterRow* RegisterNames::Find(std::uint32_t offset, unsigned width) const {
  const RegisterRow* around = nullptr;
  for (const RegisterRow* row : rows_at_[offset]) {
    const unsigned inside = (offset - row->offset) % row->width;
    if (width == row->width && inside == 0) return row;
    if (inside + width <= row->width) around = row;
  }
  return around;
}

std::string RegisterNames::Explain(const chip::Access& access) const {
  const RegisterRow* const row = Find(access.offset, access.width);
  if (row == nullptr) return "";
  const std::uint32_t distance = access.offset - row->offset;

  std::string text = row->name;
  if (row->count > 1) text.append("[").append(std::to_string(distance / row->width)).append("]");
  if (access.width != row->width) {
    const unsigned low = 8 * (row->width - distance % row->width - access.width);
    const unsigned high = low + 8 * access.width - 1;
    text.append("[").append(std::to_string(high)).append(":");
    return text.append(std::to_string(low)).append("]");
  }
  for (unsigned i = 0; i < row->field_count; ++i) {
    const monitor::Field& field = row->fields[i];
    text.append(" ").append(field.name).append("=").append(Hex(field.Get(access.value)));
  }
  return text;
}

}  // namespace board
