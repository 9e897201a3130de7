// The ports of the chip, and how registers and people name them.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

namespace monitor {

enum class PortId : std::uint8_t { kWan, kLan, kDmz, kCpu };

/// The ports with a MAC, in order of index.
inline constexpr std::array kMacPorts{PortId::kWan, PortId::kLan, PortId::kDmz};

[[nodiscard]] constexpr bool IsMacPort(PortId port) { return port != PortId::kCpu; }

/// The port's place in runs of registers and in lists of ports: 0 to 3.
[[nodiscard]] constexpr unsigned IndexOf(PortId port) { return static_cast<unsigned>(port); }

/// The port's one-bit code; sets of ports are ORs of codes.
[[nodiscard]] constexpr std::uint8_t CodeOf(PortId port) {
  return static_cast<std::uint8_t>(1U << IndexOf(port));
}

inline constexpr std::uint8_t kPortWan = CodeOf(PortId::kWan);
inline constexpr std::uint8_t kPortLan = CodeOf(PortId::kLan);
inline constexpr std::uint8_t kPortDmz = CodeOf(PortId::kDmz);
inline constexpr std::uint8_t kPortCpu = CodeOf(PortId::kCpu);

/// True for the code of exactly one port.
[[nodiscard]] constexpr bool IsPort(unsigned code) {
  return code == kPortWan || code == kPortLan || code == kPortDmz || code == kPortCpu;
}

/// The port of a code that IsPort.
[[nodiscard]] constexpr PortId PortOfCode(unsigned code) {
  return static_cast<PortId>(std::countr_zero(code));
}

/// How the selector of the statistic counters names a port: 0 to 2 for those that have counters,
/// 3 for the CPU port, which has none.
[[nodiscard]] constexpr unsigned StatSelectorOf(PortId port) { return IndexOf(port); }
[[nodiscard]] constexpr PortId PortOfStatSelector(unsigned selector) {
  return static_cast<PortId>(selector);
}

/// Address of the PHY of a port with a MAC on the MII management interface: 1, 2 or 4.
[[nodiscard]] constexpr std::uint8_t PhyAddressOf(PortId port) { return CodeOf(port); }

/// What people call a port: on the console, and in options, captures and saved states.
struct PortNames {
  const char* word;
  const char* name;
};

/// By index.
inline constexpr std::array<PortNames, 4> kPortNames{
    {{"WAN", "wan"}, {"LAN", "lan"}, {"DMZ", "dmz"}, {"CPU", "cpu"}}};

[[nodiscard]] constexpr const char* WordOf(PortId port) { return kPortNames[IndexOf(port)].word; }
[[nodiscard]] constexpr const char* NameOf(PortId port) { return kPortNames[IndexOf(port)].name; }

}  // namespace monitor
