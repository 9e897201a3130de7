#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "chip/router_chip.h"
#include "host/output_file.h"
#include "machine/alarm.h"
#include "machine/complaints.h"
#include "machine/ports/network.h"
#include "machine/state/state_file.h"
#include "machine/trace.h"

namespace board {

/// What a machine is made of.
struct MachineSetup {
  std::vector<std::string> faults;          ///< As SetFault takes them.
  NetworkSetup network;                     ///< What the ports are connected to.
  std::optional<std::string> trace_file;    ///< Every bus access goes there.
  std::optional<std::string> uart_file;     ///< What the UART sends goes there.
  std::optional<std::uint8_t> gpio_inputs;  ///< Levels of the general-purpose pins.
  std::optional<std::string> load_file;     ///< The state to start with.
  std::optional<std::string> save_file;     ///< The state goes there at the end.
};

/// The chip with its ports, its state and its observers, for a program that runs on it. There is
/// one, which the register and memory socket reaches. It knows nothing of a console.
class Machine {
 public:
  /// Opens everything; no file loses its content yet. Throws UsageError or, when something cannot
  /// be opened, another std::runtime_error.
  explicit Machine(const MachineSetup& setup);
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  /// Begins: files lose what they held before. To be called when everything else that was asked for
  /// is open. Throws std::system_error.
  void Start();

  /// Brings everything to the present moment: the chip's time, frames that have come, links. To be
  /// called when WatchedFd is readable, before a step that has to see what has come, and at times
  /// while the program waits for the chip.
  void Pump();

  /// Pump, when it is due. To be called between any two steps of the program; costs next to
  /// nothing.
  void PumpWhenDue() {
    if (++steps_ >= kStepsBetweenPumps) Pump();
  }

  /// Descriptor that is readable when Pump has something to do.
  [[nodiscard]] int WatchedFd() const { return network_->WatchedFd(); }

  /// True while captures still have frames that would be taken, or frames wait for the CPU.
  [[nodiscard]] bool FramesPending() const { return network_->Pending(); }

  /// Says in the trace what the next events come from; MarkOnce unless it has just said so.
  void Mark(const std::string& cause);
  void MarkOnce(const std::string& cause);

  /// Reports what the chip has complained about so far. To be called when a command has ended.
  void ReportComplaints() { complaints_.Flush(); }

  /// True once the chip has complained.
  [[nodiscard]] bool Complained() const { return complaints_.Any(); }

  /// To be called before a wait for the outside: passes on everything that can be seen there, and
  /// has the chip's next deadline end the wait by WatchedFd.
  void BeforeWait();

  /// Saves the state and writes files to their end. False when something that was asked for could
  /// not be read or written.
  [[nodiscard]] bool Finish();

  [[nodiscard]] chip::RouterChip& Chip() { return chip_; }

 private:
  /// A port brings no more frames than a program handles meanwhile, so none has to be dropped only
  /// because it was fetched early.
  static constexpr unsigned kStepsBetweenPumps = Network::kFramesPerPoll;

  void StartUart();
  [[nodiscard]] bool Save();

  chip::RouterChip chip_;
  Complaints complaints_{chip_.registers};
  std::string note_;  ///< That of the loaded state, for the saved one.
  std::optional<StateFile> state_file_;
  std::optional<Network> network_;
  std::optional<OutputFile> uart_;
  std::optional<Trace> trace_;
  Alarm alarm_;
  unsigned steps_ = 0;
};

}  // namespace board
