#include "virtual_board/board.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include "console/console_port.h"
#include "console/posix_console.h"
#include "host/end_signals.h"
#include "host/message.h"
#include "mac/packet_service.h"
#include "machine/faults.h"
#include "virtual_board/first_lines.h"
#include "virtual_board/long_wait.h"

namespace board {
namespace {

Board* g_board = nullptr;

/// The end of a script, once the packet service has handled all captured frames. The monitor has no
/// way to return in the middle of a line. A script that cannot be read to its end has failed.
void EndOfInput(int error, bool in_line) {
  if (monitor::PacketServiceOn() && g_board->FramesPending()) return;
  if (in_line) g_board->NoteLostLine();
  const int status = g_board->Finish();
  if (error == 0) std::exit(status);
  Report(std::string("cannot read the console's input: ") + std::strerror(error));
  std::exit(EXIT_FAILURE);
}

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

void PollNetwork() { g_board->PollNetwork(); }

std::uint64_t MonotonicNanoseconds() {
  const std::chrono::nanoseconds time = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<std::uint64_t>(time.count());
}

}  // namespace

Board::Board(const Options& options)
    : options_(options),
      first_lines_(FirstLines(options)),
      first_text_(Typed(first_lines_)),
      progress_(options.plain ? SIZE_MAX : first_lines_.size()) {
  g_board = this;
  for (const std::string& fault : options.faults) SetFault(chip_, fault);
  chip_.clock = MonotonicNanoseconds;
  chip::Attach(chip_);
  if (options.save_file) state_file_.emplace(*options.save_file);
  if (options.load_file) note_ = LoadStateFile(*options.load_file, chip_);
  if (options.gpio_inputs) chip_.gpio.SetInputs(*options.gpio_inputs);
  NetworkSetup network = options.network;
  network.keep_settings = options.load_file.has_value();
  network_.emplace(chip_, network);
  if (options.uart_file) uart_.emplace(*options.uart_file, "the file");
  if (options.pty_link) pseudo_terminal_.emplace(*options.pty_link);
  if (options.trace_file) trace_.emplace(*options.trace_file);
  if (!ReadsConsole(options)) no_input_ = OpenNoInput();
  StartFiles();
  OpenConsole(options.keep_delete);
  CatchEndSignals();
}

void Board::StartFiles() {
  network_->Start();
  if (trace_) trace_->Start(chip_);
  if (!uart_) return;
  uart_->Start();
  chip_.uart.on_transmit = [this](std::uint8_t byte) {
    const char character = static_cast<char>(byte);
    uart_->Add({&character, 1});
    uart_->Flush();
  };
}

void Board::OpenConsole(bool keep_delete) {
  monitor::ConsoleSetup setup;
  setup.program = kProgram;
  setup.watched = network_->WatchedFd();
  setup.on_watched = board::PollNetwork;
  setup.only_events = [] { return !g_board->FramesPending(); };
  setup.first = first_text_;
  if (no_input_.Open()) {
    setup.input = no_input_.Get();
  } else if (pseudo_terminal_) {
    setup.input = setup.output = pseudo_terminal_->Fd();
    setup.return_is_line_feed = true;
    setup.delete_is_backspace = !keep_delete;
    Report("the console is " + pseudo_terminal_->Path() + " (" + pseudo_terminal_->Link() + ")");
  } else if (isatty(setup.input) != 0) {
    setup.delete_is_backspace = !keep_delete;
    Report("the Debug Monitor on a software chip; help lists the commands, exit leaves");
    terminal_.emplace(setup.input);
  }
  if (!pseudo_terminal_) setup.at_end_of_input = EndOfInput;
  setup.before_wait = [] { g_board->BeforeWait(); };
  if (options_.plain) setup.filter = [](char c) { return g_board->FilterOutput(c); };
  setup.on_long_wait = [](const monitor::Awaited& awaited) { g_board->ReportLongWait(awaited); };
  setup.between_steps = [] { g_board->EndWhenSignalled(); };
  setup.abandon_output = EndIsOverdue;
  monitor::ConsoleOpen(setup);
}

int Board::Finish() {
  complaints_.Flush();
  const bool written = WriteAll();
  const int status = StatusOfLines();
  // A run that a signal may have cut short is not a success.
  if (written && EndSignal() != 0) std::raise(EndSignal());
  const bool forbidden = options_.strict && complaints_.Any();
  return written && !forbidden ? status : EXIT_FAILURE;
}

bool Board::WriteAll() {
  // What needs no reader comes first.
  const bool saved = Save();
  network_->Flush();
  if (trace_) trace_->Flush();
  return saved && !network_->Failed() && !(uart_ && uart_->Failed()) &&
         !(trace_ && trace_->Failed());
}

int Board::StatusOfLines() const {
  const std::size_t done = progress_.LinesDone() + (progress_.Exited() ? 1 : 0);
  if (done >= first_lines_.size()) return progress_.Status();
  Report("'" + first_lines_[done] + "' follows an 'exit' and was not run");
  return std::max(progress_.Status(), kExitRefused);
}

bool Board::FilterOutput(char c) {
  if (c == '\r' || progress_.CurrentCommand().empty()) return true;
  in_answer_line_ = c != '\n';
  return false;
}

void Board::EndAnswer() {
  if (in_answer_line_) monitor::ConsoleSend("\n", 1);
}

void Board::Note(monitor::ShellEvent event) {
  EndAnswer();
  complaints_.Flush();
  progress_.Note(event);
  if (!trace_) return;
  if (event == monitor::ShellEvent::kRun) trace_->Mark(progress_.CurrentCommand());
  if (event == monitor::ShellEvent::kServe) trace_->MarkOnce(progress_.CurrentCommand());
}

void Board::NoteLostLine() {
  if (!options_.plain) return;
  Report("the script's last line has no line end and was not run");
  progress_.Note(monitor::ShellEvent::kRefused);
}

void Board::ReportLongWait(const monitor::Awaited& awaited) {
  complaints_.Flush();
  if (!awaited.first_look) return;
  const bool terminal = pseudo_terminal_ || terminal_;
  Report("'" + progress_.CurrentCommand() + "' " + DescribeWait(awaited) +
         (terminal ? "; Ctrl-C ends the wait"
                   : "; without a terminal only the end of the program ends it"));
}

bool Board::Save() {
  if (!state_file_) return true;
  try {
    const Uninterrupted guard;
    state_file_->Save(chip_, note_);
    return true;
  } catch (const std::exception& error) {
    Report(error.what());
    return false;
  }
}

void Board::EndWhenSignalled() {
  if (EndSignal() == 0) return;
  if (!WriteAll()) std::exit(EXIT_FAILURE);
  std::raise(EndSignal());
}

bool Board::FramesPending() const { return network_->Pending(); }

void Board::PollNetwork() { network_->Poll(); }

void Board::BeforeWait() {
  complaints_.Flush();
  if (trace_) trace_->Flush();
  network_->NoteWait();
}

}  // namespace board
