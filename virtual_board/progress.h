#pragma once

#include <cstddef>
#include <string>

#include "shell/shell.h"

namespace board {

/// What the monitor is doing, and the results of its lines.
class Progress {
 public:
  /// Only the first `judged` lines count for the exit status.
  explicit Progress(std::size_t judged) : judged_(judged) {}

  /// To be called with each event of the shell, as it comes.
  void Note(monitor::ShellEvent event);

  /// The line that runs, as it stands after editing, unprintable characters as "\x1b"; "packet
  /// service" while that has its turn. Empty at the prompt.
  [[nodiscard]] const std::string& CurrentCommand() const { return current_command_; }

  /// Lines that have ended, without `exit`.
  [[nodiscard]] std::size_t LinesDone() const { return lines_done_; }

  /// True once `exit` has been run.
  [[nodiscard]] bool Exited() const { return runs_; }

  /// Exit status for the lines so far that count: that of the worst of them, 0 when all were
  /// carried out.
  [[nodiscard]] int Status() const { return status_; }

 private:
  void EndLine(int status);

  std::size_t judged_;
  std::string current_command_;
  bool runs_ = false;
  std::size_t lines_done_ = 0;
  int status_ = 0;
};

/// Exit statuses of lines; higher is worse.
inline constexpr int kExitRefused = 3;
inline constexpr int kExitFailed = 4;

/// What Progress calls the packet service.
inline constexpr char kPacketService[] = "packet service";

}  // namespace board
