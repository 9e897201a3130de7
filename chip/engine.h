// The model's side of the engine handshake: a command byte whose start bit begins an operation
// and whose done bits show when it is over.
#pragma once

#include <cstdint>
#include <functional>

#include "chip/operation.h"
#include "chip/register_file.h"
#include "core/engine_fields.h"

namespace chip {

/// Where an engine's bits lie in its command byte.
struct EngineBits {
  std::uint8_t read_done;   ///< Set when a read is over.
  std::uint8_t write_done;  ///< Set when a write is over; the same bit if there is only one.
  std::uint8_t start;
  std::uint8_t write;              ///< Direction; 0 when the engine has only one.
  std::uint8_t result = 0;         ///< Set by the engine when an operation succeeded; 0 if none.
  bool start_clears_done = false;  ///< A start clears the done bits even where it stores 1.
};

/// The bits of a command byte's fields.
[[nodiscard]] constexpr EngineBits BitsOf(const monitor::EngineFields& fields) {
  return {.read_done = fields.read_done.Mask(),
          .write_done = fields.write_done.Mask(),
          .start = fields.start.Mask(),
          .write = fields.write ? fields.write->Mask() : std::uint8_t{0},
          .result = fields.result ? fields.result->Mask() : std::uint8_t{0}};
}

/// Most engines' bits.
inline constexpr EngineBits kTableEngineBits = BitsOf({});

/// A store with the start bit begins an operation and clears the done bits that it writes as 0;
/// a store without it leaves done and result bits alone. The operation takes effect, and its done
/// bit rises, at the second load of the command byte after the start.
class Engine : public FaultPoint {
 public:
  /// Carries out an operation: `command` is the byte as the start stored it. False means that
  /// the operation failed (for the result bit).
  using Work = std::function<bool(std::uint8_t command)>;

  Engine(RegisterFile& registers, const char* name, monitor::Reg8 command, EngineBits bits,
         Work work);

  [[nodiscard]] const char* Name() const override { return name_; }
  void SetFault(const Fault& fault) override;
  void Reset();
  void State(StateArchive& archive);

  /// Called for every store to the command byte, for bits in it that are not the engine's.
  std::function<void(std::uint8_t stored)> on_store;

  /// Called at the end of every operation, even of one that a fault kept from doing anything.
  std::function<void()> on_end;

 private:
  [[nodiscard]] std::uint8_t DoneBit() const;
  /// Loads of the command byte are worth a call only while an operation is running.
  void WatchLoads() { registers_.CallBeforeLoad(command_, operation_.Running()); }
  void BeforeLoad();
  void AfterStore(std::uint8_t stored);
  void Start(std::uint8_t command);
  void ComplainOfStart();
  void Complete();
  /// Shows the status in the command byte, whose other bits are those of `command`.
  void Publish(std::uint8_t command);

  RegisterFile& registers_;
  const char* name_;
  monitor::Reg8 command_;
  EngineBits bits_;
  std::uint8_t done_bits_;
  std::uint8_t status_bits_;  ///< Done and result bits.
  Work work_;

  std::uint8_t status_;
  std::uint8_t started_ = 0;  ///< The command byte of the running operation.
  Operation operation_;
};

}  // namespace chip
