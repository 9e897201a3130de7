#include "virtual_board/console_session.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <utility>

#include "console/console_port.h"
#include "core/long_wait.h"
#include "host/end_signals.h"
#include "host/message.h"
#include "mac/packet_service.h"
#include "virtual_board/long_wait.h"

namespace board {
namespace {

/// The lines as they are typed.
std::string Typed(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text.append(line).append("\n");
  return text;
}

/// Input that has ended.
Descriptor OpenNoInput() {
  Descriptor file(memfd_create("no input", MFD_CLOEXEC));
  if (!file.Open()) throw std::system_error(errno, std::generic_category(), "no console input");
  return file;
}

}  // namespace

ConsoleSession::ConsoleSession(const Options& options, std::vector<std::string> first_lines,
                               Machine& machine)
    : options_(options),
      machine_(machine),
      first_lines_(std::move(first_lines)),
      first_text_(Typed(first_lines_)),
      progress_(options.plain ? SIZE_MAX : first_lines_.size()) {
  if (!ReadsConsole(options)) no_input_ = OpenNoInput();
  if (options.pty_link) pseudo_terminal_.emplace(*options.pty_link);
}

ConsoleSession::~ConsoleSession() { monitor::ConsoleOpen({.program = kProgram}); }

void ConsoleSession::Open() {
  monitor::ConsoleSetup setup{.program = kProgram,
                              .first = first_text_,
                              .host = this,
                              .selects_output = options_.plain,
                              .watched = machine_.WatchedFd()};
  if (no_input_.Open()) {
    setup.input = no_input_.Get();
  } else if (pseudo_terminal_) {
    setup.input = setup.output = pseudo_terminal_->Fd();
    setup.return_is_line_feed = true;
    setup.delete_is_backspace = !options_.keep_delete;
    Report("the console is " + pseudo_terminal_->Path() + " (" + pseudo_terminal_->Link() + ")");
  } else if (isatty(setup.input) != 0) {
    setup.delete_is_backspace = !options_.keep_delete;
    Report("the Debug Monitor on a software chip; help lists the commands, exit leaves");
    terminal_.emplace(setup.input);
  }
  monitor::ConsoleOpen(setup);
}

void ConsoleSession::Note(monitor::ShellEvent event) {
  EndAnswer();
  machine_.ReportComplaints();
  progress_.Note(event);
  if (event == monitor::ShellEvent::kServe) machine_.MarkOnce(progress_.CurrentCommand());
  if (event != monitor::ShellEvent::kRun) return;
  machine_.Mark(progress_.CurrentCommand());
  // A command sees what had come before it began.
  machine_.Pump();
}

void ConsoleSession::DuringLongWait(const monitor::Awaited& awaited) {
  machine_.ReportComplaints();
  machine_.Pump();
  if (!awaited.first_look) return;
  const bool terminal = pseudo_terminal_ || terminal_;
  Report("'" + progress_.CurrentCommand() + "' " + DescribeWait(awaited) +
         (terminal ? "; Ctrl-C ends the wait"
                   : "; without a terminal only the end of the program ends it"));
}

void ConsoleSession::OnEndOfInput(int error, bool in_line) {
  machine_.Pump();
  // Clients of a pseudo-terminal come and go.
  if (pseudo_terminal_) return;
  if (monitor::PacketServiceOn() && machine_.FramesPending()) return;
  input_ended_ = true;
  input_error_ = error;
  // Without an echo it would go unnoticed that the line is not run.
  if (!in_line || !options_.plain) return;
  Report("the script's last line has no line end and was not run");
  progress_.Note(monitor::ShellEvent::kRefused);
}

bool ConsoleSession::Ended() const { return input_ended_ || EndSignal() != 0; }

bool ConsoleSession::AbandonsOutput() const { return EndIsOverdue(); }

bool ConsoleSession::DropsOutput(char c) {
  if (c == '\r' || progress_.CurrentCommand().empty()) return true;
  in_answer_line_ = c != '\n';
  return false;
}

void ConsoleSession::EndAnswer() const {
  if (in_answer_line_) monitor::ConsoleSend("\n", 1);
}

int ConsoleSession::Finish() {
  machine_.ReportComplaints();
  const bool written = machine_.Finish();
  if (EndSignal() != 0) {
    // What a signal may have cut short is not a success.
    if (written) std::raise(EndSignal());
    return EXIT_FAILURE;
  }
  const int status = StatusOfLines();
  if (input_error_ != 0) {
    Report(std::string("cannot read the console's input: ") + std::strerror(input_error_));
  }
  const bool forbidden = options_.strict && machine_.Complained();
  return written && input_error_ == 0 && !forbidden ? status : EXIT_FAILURE;
}

int ConsoleSession::StatusOfLines() const {
  const std::size_t done = progress_.LinesDone() + (progress_.Exited() ? 1 : 0);
  if (done >= first_lines_.size()) return progress_.Status();
  Report("'" + first_lines_[done] + "' follows an 'exit' and was not run");
  return std::max(progress_.Status(), kExitRefused);
}

}  // namespace board
