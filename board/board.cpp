#include "board/board.h"

#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include "board/faults.h"
#include "board/message.h"
#include "device/console.h"
#include "mac/packet_service.h"

namespace board {
namespace {

Board* g_board = nullptr;

/// The end of a script, once the packet service has worked off the captures. The monitor has no
/// way to return in the middle of a line.
void EndOfInput() {
  if (monitor::PacketServiceOn() && g_board->FramesPending()) return;
  std::exit(g_board->Finish());
}

void PollWorld() { g_board->PollWorld(); }

std::uint64_t MonotonicNanoseconds() {
  const std::chrono::nanoseconds time = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<std::uint64_t>(time.count());
}

}  // namespace

Board::Board(const Options& options) {
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
  WorldSetup world = options.world;
  world.keep_settings = options.load_file.has_value();
  world_.emplace(chip_, world);
  if (options.uart_file) OpenUart(*options.uart_file);
  if (options.pty_link) pseudo_terminal_.emplace(*options.pty_link);
  if (options.trace_file) OpenTrace(*options.trace_file);
  OpenConsole(options.keep_delete);
  if (!state_file_) return;
  end_signals_.emplace();
  world_->Watch(end_signals_->Fd());
}

void Board::OpenTrace(const std::string& path) { trace_.emplace(path).Watch(chip_); }

void Board::OpenUart(const std::string& path) {
  uart_.open(path, std::ios::binary | std::ios::trunc);
  if (!uart_) {
    throw std::system_error(errno, std::generic_category(), "cannot open the file '" + path + "'");
  }
  chip_.uart.on_transmit = [this, path](std::uint8_t byte) {
    if (!uart_ || uart_.put(static_cast<char>(byte)).flush()) return;
    Report("cannot write the file '" + path + "': " + std::strerror(errno) + "; it ends here");
  };
}

void Board::OpenConsole(bool keep_delete) {
  monitor::ConsoleSetup setup;
  setup.watched = world_->WatchedFd();
  setup.on_watched = board::PollWorld;
  setup.only_events = [] { return !g_board->FramesPending(); };
  if (pseudo_terminal_) {
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
  if (state_file_) setup.between_steps = [] { g_board->EndWhenSignalled(); };
  monitor::ConsoleOpen(setup);
}

int Board::Finish() {
  world_->Flush();
  bool failed = !Save() || world_->Failed() || !uart_;
  if (trace_) {
    trace_->Flush();
    failed = failed || trace_->Failed();
  }
  return failed ? EXIT_FAILURE : EXIT_SUCCESS;
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
  const int status = Finish();
  if (status != EXIT_SUCCESS) std::exit(status);
  std::raise(signal);
}

bool Board::FramesPending() const { return world_->Pending(); }

void Board::PollWorld() { world_->Poll(); }

void Board::BeforeWait() {
  if (trace_) trace_->Flush();
  world_->NoteWait();
}

}  // namespace board
