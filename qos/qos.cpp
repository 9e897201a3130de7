#include "qos/qos.h"

#include "core/port_id.h"
#include "mac/port_config_registers.h"
#include "qos/qos_registers.h"

namespace monitor {
namespace {

constexpr std::uint8_t kHighestMode = 1;
constexpr std::uint8_t kHighestDrop = 15;

/// Index of the port in runs of registers. `port` is the code of one port.
unsigned PortPlace(std::uint8_t port) { return static_cast<unsigned>(std::countr_zero(port)); }

/// The four registers of a queue.
struct QueueRegisters {
  Reg8 low;
  Reg8 high;
  Reg8 drop;
  Reg8 credit;
};

QueueRegisters RegistersOf(std::uint8_t port, unsigned queue) {
  const unsigned place = PortPlace(port) * kQosQueues + queue;
  return {kQueueThresholds[2 * place], kQueueThresholds[2 * place + 1], kQueueDrop[place],
          kQueueCredit[place]};
}

/// The register that holds the port's mode, in the same two bits for every port.
Reg8 ModeRegister(std::uint8_t port) {
  return port == kPortCpu ? kInterfaceType : kMacControl[PortPlace(port)];
}
static_assert(kMacQosMode.Mask() == kCpuQosMode.Mask());

}  // namespace

DriverStatus ReadSystemQos(SystemQos& qos) {
  const std::uint8_t control = Read(kDropControl);
  qos.redEnable = kRedEnable.Get(control);
  qos.bufthrhd = control & kDropThreshold.Mask();
  qos.mcasth = Read(kMcastHighBuffers);
  qos.mcastl = Read(kMcastLowBuffers);
  qos.sharepool = Read(kRedSharePool);
  qos.xonthrhd = Read(kXonThreshold);
  qos.xoffthrhd = Read(kXoffThreshold);
  qos.no_buf = Read(kNoBufferThreshold);
  return DriverStatus::kOk;
}

DriverStatus WriteSystemQos(const SystemQos& qos) {
  IrqState saved;
  IrqLock(&saved);
  Write(kDropControl,
        static_cast<std::uint8_t>(qos.redEnable | (qos.bufthrhd & kDropThreshold.Mask())));
  Write(kMcastHighBuffers, qos.mcasth);
  Write(kMcastLowBuffers, qos.mcastl);
  Write(kRedSharePool, qos.sharepool);
  Write(kXonThreshold, qos.xonthrhd);
  Write(kXoffThreshold, qos.xoffthrhd);
  Write(kNoBufferThreshold, qos.no_buf);
  IrqUnlock(saved);
  return DriverStatus::kOk;
}

DriverStatus ReadPortQos(std::uint8_t port, std::uint8_t& mode) {
  if (!IsPort(port)) return DriverStatus::kRefused;
  mode = kMacQosMode.Get(Read(ModeRegister(port)));
  return DriverStatus::kOk;
}

DriverStatus WritePortQos(std::uint8_t port, std::uint8_t mode) {
  if (!IsPort(port) || mode > kHighestMode) return DriverStatus::kRefused;
  const Reg8 reg = ModeRegister(port);
  IrqState saved;
  IrqLock(&saved);
  const unsigned other = Read(reg) & ~unsigned{kMacQosMode.Mask()};
  Write(reg, static_cast<std::uint8_t>(other | kMacQosMode.Put(mode)));
  IrqUnlock(saved);
  return DriverStatus::kOk;
}

DriverStatus ReadQueueQos(std::uint8_t port, unsigned queue, QueueQos& qos) {
  if (!IsPort(port) || queue >= kQosQueues) return DriverStatus::kRefused;
  const QueueRegisters registers = RegistersOf(port, queue);
  qos.lowthrhd = Read(registers.low);
  qos.highthrhd = Read(registers.high);
  const std::uint8_t drop = Read(registers.drop);
  qos.lowdrop = kQueueLowDrop.Get(drop);
  qos.highdrop = kQueueHighDrop.Get(drop);
  qos.credit = Read(registers.credit);
  return DriverStatus::kOk;
}

DriverStatus WriteQueueQos(std::uint8_t port, unsigned queue, const QueueQos& qos) {
  if (!IsPort(port) || queue >= kQosQueues) return DriverStatus::kRefused;
  if (qos.lowdrop > kHighestDrop || qos.highdrop > kHighestDrop) return DriverStatus::kRefused;
  const QueueRegisters registers = RegistersOf(port, queue);
  IrqState saved;
  IrqLock(&saved);
  Write(registers.low, qos.lowthrhd);
  Write(registers.high, qos.highthrhd);
  Write(registers.drop, static_cast<std::uint8_t>(kQueueLowDrop.Put(qos.lowdrop) |
                                                  kQueueHighDrop.Put(qos.highdrop)));
  Write(registers.credit, qos.credit);
  IrqUnlock(saved);
  return DriverStatus::kOk;
}

}  // namespace monitor
