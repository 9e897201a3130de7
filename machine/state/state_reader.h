#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

#include "chip/state.h"
#include "machine/state/state_error.h"

namespace board {

/// Replaces a state with what is noted in JSON. Everything throws StateError, with the JSON pointer
/// of the place, unless it finds exactly what is asked for.
class StateReader : public chip::StateArchive {
 public:
  /// Throws StateError for a text that is not JSON or has a duplicate member.
  explicit StateReader(const std::string& text);

  /// The text must be that member's.
  void Text(const std::string& name, const std::string& text);

  /// To be called at the end: nothing may be left.
  void Finish() const { ExpectNothingLeft(); }

  [[nodiscard]] bool Loading() const override { return true; }
  [[nodiscard]] bool Omits(const std::string& name, bool is_default) override;
  void Enter(const std::string& name) override;
  void Leave() override;
  void EnterList(const std::string& name, std::size_t& size, std::size_t most) override;
  void EnterElement() override;
  void Flag(const std::string& name, bool& value) override;
  void Bytes(const std::string& name, std::span<std::uint8_t> bytes) override;
  void Queue(const std::string& name, std::deque<std::uint8_t>& bytes) override;
  void Require(bool holds, const std::string& name, const std::string& reason) override;

 private:
  /// An object from which the members are taken one by one, or a list that gives its elements in
  /// order.
  struct Open {
    std::string pointer;
    nlohmann::json value;
    std::size_t next = 0;
  };

  void HexNumber(const std::string& name, std::uint64_t& value, std::uint64_t bits,
                 unsigned digits) override;
  void DecimalNumber(const std::string& name, std::uint64_t& value, std::uint64_t most) override;
  nlohmann::json Take(const std::string& name);
  std::vector<std::uint8_t> TakeBytes(const std::string& name);
  void ExpectNothingLeft() const;
  [[noreturn]] void Refuse(const std::string& name, const std::string& reason) const;

  std::vector<Open> open_;
};

}  // namespace board
