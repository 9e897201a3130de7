// Quality of service on three levels: buffers and thresholds of the whole chip, a mode for each
// port, thresholds and credit for each of a port's four queues. All values are single bytes.
#pragma once

#include "console/command.h"
#include "core/driver_status.h"

namespace monitor {

inline constexpr unsigned kQosQueues = 4;

/// Settings of the whole chip.
struct SystemQos {
  std::uint8_t redEnable;  ///< 0 or 1.
  std::uint8_t mcasth;     ///< Multicast buffers, high priority.
  std::uint8_t mcastl;     ///< Buffers, low priority.
  std::uint8_t sharepool;  ///< RED share pool.
  std::uint8_t bufthrhd;   ///< Drop threshold; bit 0 is not kept.
  std::uint8_t xonthrhd;
  std::uint8_t xoffthrhd;
  std::uint8_t no_buf;  ///< No-buffer threshold.
};

/// Settings of one queue of a port.
struct QueueQos {
  std::uint8_t lowthrhd;  ///< RED thresholds.
  std::uint8_t highthrhd;
  std::uint8_t lowdrop;  ///< Drop levels, 0 to 15, in units of 1/0x20.
  std::uint8_t highdrop;
  std::uint8_t credit;
};

/// Always kOk.
DriverStatus ReadSystemQos(SystemQos& qos);
DriverStatus WriteSystemQos(const SystemQos& qos);

// kRefused, with nothing touched, for a code that is not exactly one port.

/// `mode` is 0 for MODE1, 1 for MODE2; the two bits may hold 2 and 3 as well.
[[nodiscard]] DriverStatus ReadPortQos(std::uint8_t port, std::uint8_t& mode);

/// kRefused also for a mode above 1.
[[nodiscard]] DriverStatus WritePortQos(std::uint8_t port, std::uint8_t mode);

/// kRefused also for a queue above 3.
[[nodiscard]] DriverStatus ReadQueueQos(std::uint8_t port, unsigned queue, QueueQos& qos);

/// kRefused also for a queue above 3 or a drop level above 15.
[[nodiscard]] DriverStatus WriteQueueQos(std::uint8_t port, unsigned queue, const QueueQos& qos);

/// The `qos` command.
int QosCommand(int argc, ArgVector argv);

}  // namespace monitor
