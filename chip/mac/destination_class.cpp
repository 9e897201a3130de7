#include "chip/mac/destination_class.h"

#include <algorithm>
#include <array>

#include "mac/station_address_registers.h"

namespace chip {
namespace {

using MacAddress = std::array<std::uint8_t, 6>;

constexpr MacAddress kBroadcastAddress{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

MacAddress Destination(std::span<const std::uint8_t> frame) {
  MacAddress mac{};
  std::copy_n(frame.begin(), std::min(frame.size(), mac.size()), mac.begin());
  return mac;
}

bool IsGroup(const MacAddress& mac) { return (mac[0] & 0x01) != 0; }

}  // namespace

ReceiveReason ClassifyDestination(const RegisterFile& registers, monitor::PortId port,
                                  std::span<const std::uint8_t> frame) {
  const MacAddress mac = Destination(frame);
  if (mac == kBroadcastAddress) return ReceiveReason::kBroadcast;
  if (IsGroup(mac)) return ReceiveReason::kMulticast;
  const bool to_cpu = mac == registers.Get(monitor::kCpuMac);
  const bool to_wan = port == monitor::PortId::kWan && mac == registers.Get(monitor::kWanMac);
  return to_cpu || to_wan ? ReceiveReason::kStation : ReceiveReason::kOther;
}

}  // namespace chip
