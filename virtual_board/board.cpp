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
#include "host/broken_pipe.h"
#include "host/message.h"
#include "mac/packet_service.h"
#include "machine/faults.h"
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

/// A file in memory that holds the lines.
Descriptor MakeScript(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text.append(line).append("\n");
  Descriptor file(memfd_create("commands", MFD_CLOEXEC));
  if (!file.Open() || pwrite(file.Get(), text.data(), text.size(), 0) != std::ssize(text)) {
    throw std::system_error(errno, std::generic_category(), "cannot hold the commands");
  }
  return file;
}

void PollNetwork() { g_board->PollNetwork(); }

std::uint64_t MonotonicNanoseconds() {
  const std::chrono::nanoseconds time = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<std::uint64_t>(time.count());
}

}  // namespace

Board::Board(const Options& options) : options_(options) {
  g_board = this;
  for (const std::string& fault : options.faults) SetFault(chip_, fault);
  chip_.registers.on_complaint = [](const std::string& text) {
    Report("the chip complains: " + text);
  };
  chip_.clock = MonotonicNanoseconds;
  chip::Attach(chip_);
  if (options.save_file) state_file_.emplace(*options.save_file);
  if (options.load_file) LoadStateFile(*options.load_file, chip_);
  if (options.gpio_inputs) chip_.gpio.SetInputs(*options.gpio_inputs);
  NetworkSetup network = options.network;
  network.keep_settings = options.load_file.has_value();
  network_.emplace(chip_, network);
  if (options.uart_file) OpenUart(*options.uart_file);
  if (options.pty_link) pseudo_terminal_.emplace(*options.pty_link);
  if (options.trace_file) OpenTrace(*options.trace_file);
  if (!options.commands.empty()) script_ = MakeScript(options.commands);
  OpenConsole(options.keep_delete);
  if (!state_file_) return;
  end_signals_.emplace();
  network_->Watch(end_signals_->Fd());
}

void Board::OpenTrace(const std::string& path) { trace_.emplace(path).Watch(chip_); }

void Board::OpenUart(const std::string& path) {
  uart_.open(path, std::ios::binary | std::ios::trunc);
  if (!uart_) {
    throw std::system_error(errno, std::generic_category(), "cannot open the file '" + path + "'");
  }
  chip_.uart.on_transmit = [this, path](std::uint8_t byte) {
    const BrokenPipeIsError guard;
    if (!uart_ || uart_.put(static_cast<char>(byte)).flush()) return;
    Report("cannot write the file '" + path + "': " + std::strerror(errno) + "; it ends here");
    // Otherwise its destructor would try once more.
    uart_.close();
  };
}

void Board::OpenConsole(bool keep_delete) {
  monitor::ConsoleSetup setup;
  setup.watched = network_->WatchedFd();
  setup.on_watched = board::PollNetwork;
  setup.only_events = [] { return !g_board->FramesPending(); };
  if (script_.Open()) {
    setup.input = script_.Get();
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
  setup.on_long_wait = [] { g_board->TellOfLongWait(); };
  if (state_file_) setup.between_steps = [] { g_board->EndWhenSignalled(); };
  monitor::ConsoleOpen(setup);
}

int Board::Finish() {
  const bool written = WriteAll();
  const int status = StatusOfLines();
  return written ? status : EXIT_FAILURE;
}

bool Board::WriteAll() {
  network_->Flush();
  bool failed = !Save() || network_->Failed() || !uart_;
  if (trace_) {
    trace_->Flush();
    failed = failed || trace_->Failed();
  }
  return !failed;
}

int Board::StatusOfLines() const {
  if (options_.commands.empty()) return options_.plain ? progress_.Status() : EXIT_SUCCESS;
  const std::size_t done = progress_.LinesDone() + (progress_.Exited() ? 1 : 0);
  if (done == options_.commands.size()) return progress_.Status();
  Report("'" + options_.commands[done] + "' comes after an 'exit' and was not run");
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

void Board::TellOfLongWait() const {
  const monitor::Awaited& awaited = monitor::LastAwaited();
  if (!awaited.first_look) return;
  const bool terminal = pseudo_terminal_ || terminal_;
  Report("'" + progress_.CurrentCommand() + "' " + DescribeWait(awaited) +
         (terminal ? "; Ctrl-C ends the wait"
                   : "; without a terminal only the end of the program ends it"));
}

bool Board::Save() {
  if (!state_file_) return true;
  try {
    state_file_->Save(chip_);
    return true;
  } catch (const std::exception& error) {
    Report(error.what());
    return false;
  }
}

void Board::EndWhenSignalled() {
  const int signal = end_signals_->Pending();
  if (signal == 0) return;
  if (!WriteAll()) std::exit(EXIT_FAILURE);
  std::raise(signal);
}

bool Board::FramesPending() const { return network_->Pending(); }

void Board::PollNetwork() { network_->Poll(); }

void Board::BeforeWait() {
  if (trace_) trace_->Flush();
  network_->NoteWait();
}

}  // namespace board
