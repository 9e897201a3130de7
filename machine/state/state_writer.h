#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

#include "chip/state.h"

namespace board {

/// Notes a state as JSON.
class StateWriter : public chip::StateArchive {
 public:
  StateWriter() { open_.push_back({"", nlohmann::ordered_json::object()}); }

  /// What has been noted, as text. Everything entered must have been left.
  [[nodiscard]] std::string Text() const { return open_.front().value.dump(1) + "\n"; }

  [[nodiscard]] bool Loading() const override { return false; }
  [[nodiscard]] bool Omits(const std::string& name, bool is_default) override;
  void Enter(const std::string& name) override;
  void Leave() override;
  void EnterList(const std::string& name, std::size_t& size, std::size_t most) override;
  void EnterElement() override { Enter(""); }
  void Flag(const std::string& name, bool& value) override { Add(name, value); }
  void Text(const std::string& name, std::string& value) override { Add(name, value); }
  void Bytes(const std::string& name, std::span<std::uint8_t> bytes) override;
  void Queue(const std::string& name, std::deque<std::uint8_t>& bytes) override;
  void Require(bool holds, const std::string& name, const std::string& reason) override;

 private:
  /// An object or list that is not complete yet.
  struct Open {
    std::string name;
    nlohmann::ordered_json value;
  };

  void HexNumber(const std::string& name, std::uint64_t& value, std::uint64_t bits,
                 unsigned digits) override;
  void DecimalNumber(const std::string& name, std::uint64_t& value, std::uint64_t most) override;
  void Add(const std::string& name, nlohmann::ordered_json value);

  std::vector<Open> open_;
};

}  // namespace board
