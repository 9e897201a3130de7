#include "chip/mac/destination_class.h"

#include <algorithm>

#include "mac/station_address_registers.h"
#include "net/ethernet.h"

namespace chip {
namespace {

net::MacAddress Destination(std::span<const std::uint8_t> frame) {
  net::MacAddress mac{};
  std::copy_n(frame.begin(), std::min(frame.size(), mac.size()), mac.begin());
  return mac;
}

}  // namespace

ReceiveReason ClassifyDestination(const RegisterFile& registers, monitor::PortId port,
                                  std::span<const std::uint8_t> frame) {
  const net::MacAddress mac = Destination(frame);
  if (mac == net::kBroadcastMac) return ReceiveReason::kBroadcast;
  if (net::IsGroup(mac)) return ReceiveReason::kMulticast;
  const bool to_cpu = mac == registers.Get(monitor::kCpuMac);
  const bool to_wan = port == monitor::PortId::kWan && mac == registers.Get(monitor::kWanMac);
  return to_cpu || to_wan ? ReceiveReason::kStation : ReceiveReason::kOther;
}

}  // namespace chip
