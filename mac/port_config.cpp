#include "mac/port_config.h"

#include "core/irq_guard.h"
#include "mac/port_config_registers.h"
#include "system/mii.h"

namespace monitor {
namespace {

/// PHY register in which a PHY advertises its abilities, and the bit for pause in it.
constexpr std::uint8_t kPhyAdvertisement = 4;
constexpr std::uint16_t kPhyPause = 0x0400;

struct PortRow {
  std::uint8_t port;
  Reg8 control;
  Field interface;
  Field loopback;

  [[nodiscard]] constexpr Field Internal() const { return {loopback.low, loopback.low}; }
  [[nodiscard]] constexpr Field External() const { return {loopback.high, loopback.high}; }
};

constexpr PortRow kPortRows[] = {
    {kPortWan, kMacControl[0], kInterfaceWan, kLoopbackWan},
    {kPortLan, kMacControl[1], kInterfaceLan, kLoopbackLan},
    {kPortDmz, kMacControl[2], kInterfaceDmz, kLoopbackDmz},
};

const PortRow* FindPort(std::uint8_t port) {
  for (const PortRow& row : kPortRows) {
    if (row.port == port) return &row;
  }
  return nullptr;
}

void WriteInterface(Field field, std::uint8_t value) {
  const auto others = static_cast<std::uint8_t>(Read(kInterfaceType) & ~field.Mask());
  Write(kInterfaceType, static_cast<std::uint8_t>(others | field.Put(value)));
}

DriverStatus WriteLoopback(const PortRow& row, std::uint8_t value) {
  switch (value) {
    case kLoopbackInternal:
      SetBits(kLoopback, row.Internal());
      return DriverStatus::kOk;
    case kLoopbackExternal:
      SetBits(kLoopback, row.External());
      return DriverStatus::kOk;
    case kLoopbackNone:
      ClearBits(kLoopback, row.loopback);
      return DriverStatus::kOk;
    default:
      return DriverStatus::kRefused;
  }
}

DriverStatus WriteSwitch(Reg8 control, Field field, std::uint8_t value) {
  if (value > 1) return DriverStatus::kRefused;
  AssignBits(control, field, value != 0);
  return DriverStatus::kOk;
}

/// Makes the PHY advertise pause. One that cannot be read is assumed to advertise nothing else.
void AdvertisePause(std::uint8_t phy) {
  std::uint16_t abilities = 0;
  (void)MiiRead(phy, kPhyAdvertisement, abilities);
  MiiWrite(phy, kPhyAdvertisement, static_cast<std::uint16_t>(abilities | kPhyPause));
}

DriverStatus WriteFields(const PortRow& row, const PortConfig& config) {
  WriteInterface(row.interface, config.interface);
  if (Failed(WriteLoopback(row, config.loopback)) ||
      Failed(WriteSwitch(row.control, kMacLinkUp, config.link)) ||
      Failed(WriteSwitch(row.control, kMacFullDuplex, config.duplex)) ||
      Failed(WriteSwitch(row.control, kMacSpeed100, config.speed))) {
    return DriverStatus::kRefused;
  }
  // Nothing else is ever stored: the other values leave both bits unchanged.
  if (config.flow_control == kFlowControlFc) {
    Modify(row.control, kMacFlowControl.Mask(), static_cast<std::uint8_t>(~kMacAfc.Mask()));
  }
  AdvertisePause(row.port);
  AssignBits(row.control, kMacVlanAware, config.vlan_aware != 0);
  return DriverStatus::kOk;
}

std::uint8_t FlowControlOf(std::uint8_t control) {
  if (kMacFlowControl.Get(control) == 0) return kFlowControlOff;
  return kMacAfc.Get(control) != 0 ? kFlowControlAfc : kFlowControlFc;
}

}  // namespace

DriverStatus WritePortConfig(std::uint8_t port, const PortConfig& config) {
  IrqGuard lock;
  const PortRow* const row = FindPort(port);
  const DriverStatus status = row != nullptr ? WriteFields(*row, config) : DriverStatus::kRefused;
  return status;
}

DriverStatus ReadPortConfig(std::uint8_t port, PortConfig& config) {
  const PortRow* const row = FindPort(port);
  if (row == nullptr) return DriverStatus::kRefused;
  config.interface = row->interface.Get(Read(kInterfaceType));
  const std::uint8_t loopback = Read(kLoopback);
  const bool internal = row->Internal().Get(loopback) != 0;
  const bool external = row->External().Get(loopback) != 0;
  if (internal && external) return DriverStatus::kRefused;
  config.loopback = internal ? kLoopbackInternal : external ? kLoopbackExternal : kLoopbackNone;
  const std::uint8_t control = Read(row->control);
  config.link = kMacLinkUp.Get(control);
  config.duplex = kMacFullDuplex.Get(control);
  config.speed = kMacSpeed100.Get(control);
  config.flow_control = FlowControlOf(control);
  config.vlan_aware = kMacVlanAware.Get(control);
  return DriverStatus::kOk;
}

}  // namespace monitor
