#pragma once

#include <cstdint>
#include <string>

#include "chip/router_chip.h"
#include "host/output_file.h"
#include "host/signal_guard.h"
#include "machine/registers/register_names.h"

namespace board {

/// A file with a line for each event on the bus, "w8 060e 05  L3_INDEX", and comment lines that
/// say where they come from, "# l3 5". Equal events in a row share a line, "r8 060d 02 x50 L3_...".
class Trace {
 public:
  /// Throws std::system_error when the file cannot be opened.
  explicit Trace(const std::string& path);
  ~Trace();
  Trace(const Trace&) = delete;
  Trace& operator=(const Trace&) = delete;

  /// Replaces the file's content by everything that happens on the chip's bus from now on. Throws
  /// std::system_error.
  void Start(chip::RouterChip& chip);

  /// Says what the next events come from, as a comment line before the first of them.
  void Mark(const std::string& cause);

  /// Mark, unless the last comment line says the same.
  void MarkOnce(const std::string& cause);

  /// Passes everything to the file, or what it takes at once when a signal ends the program.
  void Flush();

  /// True when events are missing in the file.
  [[nodiscard]] bool Failed() const { return file_.Failed(); }

 private:
  /// An event; `access` when a register explains it.
  void Add(const std::string& event, const chip::Access* access = nullptr);
  void EndRun();
  void FlushAtOnce();

  OutputFile file_;
  std::string event_;        ///< The latest, which is not in the file yet,
  std::string explanation_;  ///< what follows it,
  std::uint64_t times_ = 0;  ///< and how often it has happened in a row.
  std::string cause_;
  std::string marked_;     ///< The cause in the last comment line.
  bool mark_due_ = false;  ///< The next event begins with a comment line.
  RegisterNames names_;
  SignalGuard guard_;
};

}  // namespace board
