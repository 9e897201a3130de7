// The UART of the model: sends at once, receives from a queue.
#pragma once

#include <deque>
#include <functional>

#include "chip/block.h"
#include "chip/register_file.h"

namespace chip {

class Uart : public Block {
 public:
  explicit Uart(RegisterFile& registers);
  Uart(const Uart&) = delete;
  Uart& operator=(const Uart&) = delete;

  [[nodiscard]] const char* Name() const override { return "uart"; }
  void Reset() override;
  void State(StateArchive& archive) override;

  /// A byte arrives on the line.
  void Receive(std::uint8_t byte) { received_.push_back(byte); }

  /// Given each byte that leaves on the line; empty without a listener.
  std::function<void(std::uint8_t)> on_transmit;

 private:
  [[nodiscard]] bool DivisorOpen() const;
  void LoadData();
  void StoreData(std::uint8_t value);
  void LoadInterruptEnable();
  void StoreInterruptEnable(std::uint8_t value);
  void LoadStatus();
  void StoreFifoControl(std::uint8_t value);
  void LoadLineStatus();

  RegisterFile& registers_;
  std::deque<std::uint8_t> received_;
  std::uint8_t holding_ = 0;  ///< The byte last taken; what an empty queue reads as.
  std::uint8_t interrupt_enable_ = 0;
  std::uint8_t divisor_low_ = 0;
  std::uint8_t divisor_high_ = 0;
  bool fifos_on_ = false;
  bool transmit_interrupt_ = false;  ///< The transmit-empty event has not been read yet.
};

}  // namespace chip
