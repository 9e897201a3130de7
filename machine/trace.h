#pragma once

#include <array>
#include <string>

#include "chip/router_chip.h"
#include "host/signal_guard.h"
#include "machine/registers/register_names.h"

namespace board {

/// A file with a line for each event on the bus, "w8 060e 05  L3_INDEX", and comment lines that
/// say where they come from, "# l3 5". When the file can no longer be written, that is reported
/// once and the trace ends; the board continues.
class Trace {
 public:
  /// Throws std::system_error, naming the file, when it cannot be opened.
  explicit Trace(const std::string& path);
  ~Trace();
  Trace(const Trace&) = delete;
  Trace& operator=(const Trace&) = delete;

  /// Notes everything that happens on the chip's bus from now on.
  void Watch(chip::RouterChip& chip);

  /// Says what the next events come from, as a comment line before the first of them.
  void Mark(const std::string& cause);

  /// Mark, unless the last comment line says the same.
  void MarkOnce(const std::string& cause);

  /// Hands everything to the file. Also done when a signal ends the program.
  void Flush();

  /// True when events are missing in the file.
  [[nodiscard]] bool Failed() const { return error_ != 0; }

 private:
  void Add(const std::string& event);
  void AddLine(const std::string& text);
  void WriteOut();

  std::string path_;
  int file_;
  int error_ = 0;
  bool reported_ = false;
  std::array<char, 65536> text_;
  std::size_t count_ = 0;
  std::string cause_;
  std::string marked_;     ///< The cause in the last comment line.
  bool mark_due_ = false;  ///< The next event begins with a comment line.
  RegisterNames names_;
  SignalGuard guard_;
};

}  // namespace board
