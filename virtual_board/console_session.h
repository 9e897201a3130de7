#pragma once

#include <optional>
#include <string>
#include <vector>

#include "console/posix_console.h"
#include "host/descriptor.h"
#include "machine/machine.h"
#include "shell/shell.h"
#include "virtual_board/options.h"
#include "virtual_board/progress.h"
#include "virtual_board/pseudo_terminal.h"
#include "virtual_board/terminal.h"

namespace board {

/// The monitor's console on a machine: a terminal, a pseudo-terminal or a script, with the lines of
/// the command line before it. There is one, and it outlives the monitor; it restores what it has
/// changed outside.
class ConsoleSession final : public monitor::ConsoleHost {
 public:
  /// Offers a pseudo-terminal if the options ask for one. `first_lines` come before those that are
  /// read. Options and machine must outlive the session. Throws std::system_error.
  ConsoleSession(const Options& options, std::vector<std::string> first_lines, Machine& machine);
  ~ConsoleSession();
  ConsoleSession(const ConsoleSession&) = delete;
  ConsoleSession& operator=(const ConsoleSession&) = delete;

  /// Opens the console for the monitor. Throws std::system_error when the terminal refuses.
  void Open();

  /// Follows what the monitor's shell does.
  void Note(monitor::ShellEvent event);

  /// To be called when the monitor has returned. The program's exit status: 1 when something that
  /// was asked for could not be read or written, or the options forbid a complaint that there was,
  /// else that of the lines where the options want it. Does not return when a signal has ended the
  /// monitor and everything could be written.
  [[nodiscard]] int Finish();

  void BetweenSteps() override { machine_.PumpWhenDue(); }
  void DuringLongWait(const monitor::Awaited& awaited) override;
  void BeforeWait() override { machine_.BeforeWait(); }
  void OnWatched() override { machine_.Pump(); }
  [[nodiscard]] bool OnlyEvents() const override { return !machine_.FramesPending(); }
  void OnEndOfInput(int error, bool in_line) override;
  [[nodiscard]] bool Ended() const override;
  [[nodiscard]] bool AbandonsOutput() const override;
  [[nodiscard]] bool DropsOutput(char c) override;

 private:
  /// Ends a plain answer's last line where the command leaves that to the prompt.
  void EndAnswer() const;
  [[nodiscard]] int StatusOfLines() const;

  const Options& options_;
  Machine& machine_;
  std::vector<std::string> first_lines_;
  std::string first_text_;  ///< The same as they are typed.
  Progress progress_;
  bool in_answer_line_ = false;  ///< Of a plain answer, a line has begun and not ended.
  bool input_ended_ = false;     ///< Everything that came of it is done, too.
  int input_error_ = 0;
  Descriptor no_input_;
  std::optional<PseudoTerminal> pseudo_terminal_;
  std::optional<RawTerminal> terminal_;
};

}  // namespace board
