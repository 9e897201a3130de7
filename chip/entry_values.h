// How an entry maps to the registers of its table's window. A table lists this once, register by
// register, each value with its bits and its notation in a state: claiming the registers, steps of
// the engine and states follow from that listing.
#pragma once

#include <array>

#include "chip/register_file.h"

namespace chip {

/// The notation of an entry's value in a state.
enum class Noted : std::uint8_t {
  kAddress,  ///< "192.168.1.1"
  kMac,      ///< "02:00:00:00:00:01"
  kHex,      ///< All hexadecimal digits.
  kNumber,   ///< Decimal.
  kFlag,     ///< true or false.
  kPorts,    ///< "wan lan"
  kRelayed,  ///< "dmz", the internal port of a relay.
  kRest,     ///< Bits that no field names: as kHex, and left out when 0.
  kCounter,  ///< As kNumber. Counters are not part of what an entry is written with.
};

/// Where a value lies in its register and what a state calls it.
struct Place : monitor::Field {
  /// All of the register.
  constexpr Place(const char* member) : Field{31, 0, member} {}  // NOLINT: listings name either
  constexpr Place(const Field& bits) : Field(bits) {}            // NOLINT: likewise
  constexpr Place(const char* member, const Field& bits) : Field{bits.high, bits.low, member} {}
};

/// The internal port of a relay. Two of its codes have no name; the chip takes them for LAN.
inline constexpr std::array kRelayedPorts{"0", "lan", "dmz", "3"};

/// A value of an entry.
template <Noted kNoted, typename T>
struct Value {
  static constexpr bool kIsCounter = kNoted == Noted::kCounter;
  static constexpr Notation kNotation = kNoted == Noted::kAddress ? Notation::kAddress
                                        : kNoted == Noted::kMac   ? Notation::kMac
                                                                  : Notation::kHex;

  /// Its bits of the register, which holds `old`.
  [[nodiscard]] std::uint32_t Bits(std::uint32_t /*old*/) const {
    return place.template Put<std::uint32_t>(value);
  }
  void Take(std::uint32_t content) const { value = static_cast<T>(place.Get(content)); }
  void State(StateArchive& archive) const;

  Place place;
  T& value;
};

template <Noted kNoted, typename T>
constexpr Value<kNoted, T> As(Place place, T& value) {
  return {place, value};
}

/// Bits of the window that are not the entry's: a step leaves them alone.
struct Kept {
  static constexpr bool kIsCounter = false;
  static constexpr Notation kNotation = Notation::kHex;

  [[nodiscard]] std::uint32_t Bits(std::uint32_t old) const {
    return old & bits.Mask<std::uint32_t>();
  }
  void Take(std::uint32_t /*content*/) const {}
  void State(StateArchive& /*archive*/) const {}

  monitor::Field bits;
};

/// In place of a register for values that the window does not show.
struct NoRegister {};

template <Noted kNoted, typename T>
void Value<kNoted, T>::State(StateArchive& archive) const {
  const std::string name = place.name;
  if constexpr (kNoted == Noted::kFlag) {
    archive.Flag(name, value);
  } else if constexpr (kNoted == Noted::kMac) {
    archive.Mac(name, value);
  } else if constexpr (kNoted == Noted::kAddress) {
    archive.Address(name, value);
  } else {
    const auto bits = static_cast<T>(place.template Mask<std::uint32_t>() >> place.low);
    if constexpr (kNoted == Noted::kHex) archive.Hex(name, value, bits);
    if constexpr (kNoted == Noted::kNumber || kIsCounter) archive.Count(name, value, bits);
    if constexpr (kNoted == Noted::kPorts) archive.Ports(name, value);
    if constexpr (kNoted == Noted::kRelayed) archive.Choice(name, value, kRelayedPorts);
    if constexpr (kNoted == Noted::kRest) archive.HexUnless0(name, value, bits);
  }
}

}  // namespace chip
