// How the model's state is saved and restored. Each block lists its state once, in a function
// State(StateArchive&) that serves both directions.
#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <deque>
#include <limits>
#include <span>
#include <string>

#include "chip/hex.h"

namespace chip {

/// A visitor of the state: it notes each value, or replaces each by what was noted. Replacing
/// throws for anything unexpected.
class StateArchive {
 public:
  virtual ~StateArchive() = default;

  /// True when values are replaced. What follows from the listed values is then recomputed.
  [[nodiscard]] virtual bool Loading() const = 0;

  /// True when the member is left out: because it `is_default`, or, when values are replaced,
  /// because none was noted. It then has to be given its default.
  [[nodiscard]] virtual bool Omits(const std::string& name, bool is_default) = 0;

  // The values between Enter and Leave are members of `name`.
  virtual void Enter(const std::string& name) = 0;
  virtual void Leave() = 0;

  /// The same for a list, and each of its elements. `size` becomes the number of elements, and is
  /// at most `most`.
  virtual void EnterList(const std::string& name, std::size_t& size, std::size_t most) = 0;
  virtual void EnterElement() = 0;

  virtual void Flag(const std::string& name, bool& value) = 0;

  virtual void Text(const std::string& name, std::string& value) = 0;

  /// Bytes of a fixed number.
  virtual void Bytes(const std::string& name, std::span<std::uint8_t> bytes) = 0;

  /// Bytes of any number.
  virtual void Queue(const std::string& name, std::deque<std::uint8_t>& bytes) = 0;

  /// Replacing throws for a `name` whose condition is false, giving the reason.
  virtual void Require(bool holds, const std::string& name, const std::string& reason) = 0;

  /// An address, a mask, whatever reads best in hexadecimal. Only the bits of `bits` exist.
  template <std::unsigned_integral T>
  void Hex(const std::string& name, T& value, T bits = std::numeric_limits<T>::max()) {
    Convert(value, [&](std::uint64_t& wide) { HexNumber(name, wide, bits, 2 * sizeof(T)); });
  }

  /// The same for bits that are mostly 0; left out when they are.
  template <std::unsigned_integral T>
  void HexUnless0(const std::string& name, T& value, T bits) {
    if (Omits(name, value == 0)) {
      value = 0;
    } else {
      Hex(name, value, bits);
    }
  }

  /// A number of things.
  template <std::unsigned_integral T>
  void Count(const std::string& name, T& value, T most = std::numeric_limits<T>::max()) {
    Convert(value, [&](std::uint64_t& wide) { DecimalNumber(name, wide, most); });
  }

  /// An IP address, as in "192.168.1.1".
  void Address(const std::string& name, std::uint32_t& value);

  /// A MAC address, as in "02:00:00:00:00:01".
  void Mac(const std::string& name, std::span<std::uint8_t, 6> value);

  /// A set of ports, bit by bit the four of kPortNames: "", "wan lan".
  void Ports(const std::string& name, std::uint8_t& value);

  /// One of some values, by the words for 0, 1 and so on.
  void Choice(const std::string& name, std::uint8_t& value, std::span<const char* const> words);

  template <typename List>
  void Group(const std::string& name, List list) {
    Enter(name);
    list();
    Leave();
  }

  /// Entries by their number. Those that are as at power-on are left out.
  template <typename Entry, std::size_t N, typename List>
  void Table(const std::string& name, std::array<Entry, N>& entries, List list) {
    Enter(name);
    for (std::size_t i = 0; i < N; ++i) {
      const std::string key = chip::Hex(i, 2);
      if (Omits(key, entries[i] == Entry{})) {
        entries[i] = {};
      } else {
        Group(key, [&] { list(entries[i]); });
      }
    }
    Leave();
  }

 private:
  virtual void HexNumber(const std::string& name, std::uint64_t& value, std::uint64_t bits,
                         unsigned digits) = 0;
  virtual void DecimalNumber(const std::string& name, std::uint64_t& value, std::uint64_t most) = 0;

  template <typename T, typename Number>
  static void Convert(T& value, Number number) {
    std::uint64_t wide = value;
    number(wide);
    value = static_cast<T>(wide);
  }
};

}  // namespace chip
