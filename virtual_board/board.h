#pragma once

#include <optional>

#include "chip/router_chip.h"
#include "core/long_wait.h"
#include "host/descriptor.h"
#include "host/output_file.h"
#include "machine/complaints.h"
#include "machine/ports/network.h"
#include "machine/state/state_file.h"
#include "machine/trace.h"
#include "virtual_board/options.h"
#include "virtual_board/progress.h"
#include "virtual_board/pseudo_terminal.h"
#include "virtual_board/terminal.h"

namespace board {

/// The chip, its console and its observers, as the options ask. There is one; it lives until the
/// program exits, and it restores what it has changed outside.
class Board {
 public:
  /// Throws UsageError or, when something cannot be opened, another std::runtime_error; the console
  /// is then not touched. The options must outlive the board.
  explicit Board(const Options& options);
  Board(const Board&) = delete;
  Board& operator=(const Board&) = delete;

  /// Saves what was asked for. The program's exit status: 1 when something that was asked for could
  /// not be read or written, or the options forbid a complaint that there was, else that of the
  /// lines where the options want it.
  [[nodiscard]] int Finish();

  /// Follows what the monitor's shell does.
  void Note(monitor::ShellEvent event);

  /// To be called when a script ends in the middle of a line. Without an echo it would go
  /// unnoticed that the line is not run.
  void NoteLostLine();

  /// Tells the operator, once in each wait, what the monitor waits for.
  void ReportLongWait(const monitor::Awaited& awaited);

  /// True while captures still have frames that the packet service would take.
  [[nodiscard]] bool FramesPending() const;

  /// Takes in frames that have come from outside.
  void PollNetwork();

  /// Ends the program when a signal asks for that, in order.
  void EndWhenSignalled();

  /// To be called before the monitor waits for input.
  void BeforeWait();

 private:
  /// Discards what files held before.
  void StartFiles();
  void OpenConsole(bool keep_delete);
  /// True for output that is not an answer, and for characters that a plain line end lacks.
  [[nodiscard]] bool FilterOutput(char c);
  /// Ends a plain answer's last line where the command leaves that to the prompt.
  void EndAnswer();
  [[nodiscard]] int StatusOfLines() const;
  /// False when something could not be read or written.
  [[nodiscard]] bool WriteAll();
  [[nodiscard]] bool Save();

  const Options& options_;
  std::vector<std::string> first_lines_;
  std::string first_text_;
  Progress progress_;
  bool in_answer_line_ = false;  ///< Of a plain answer, a line has begun and not ended.
  Descriptor no_input_;
  chip::RouterChip chip_;
  Complaints complaints_{chip_.registers};
  std::optional<PseudoTerminal> pseudo_terminal_;
  std::optional<Trace> trace_;
  std::optional<OutputFile> uart_;
  std::optional<Network> network_;
  std::optional<RawTerminal> terminal_;
  std::optional<StateFile> state_file_;
  std::string note_;  ///< That of the loaded state, for the saved one.
};

}  // namespace board
