#include "machine/machine.h"

#include <chrono>
#include <exception>

#include "host/end_signals.h"
#include "host/message.h"
#include "machine/faults.h"

namespace board {
namespace {

std::uint64_t MonotonicNanoseconds() {
  const std::chrono::nanoseconds time = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<std::uint64_t>(time.count());
}

}  // namespace

Machine::Machine(const MachineSetup& setup) {
  for (const std::string& fault : setup.faults) SetFault(chip_, fault);
  chip_.clock = MonotonicNanoseconds;
  chip::Attach(chip_);
  if (setup.save_file) state_file_.emplace(*setup.save_file);
  if (setup.load_file) note_ = LoadStateFile(*setup.load_file, chip_);
  if (setup.gpio_inputs) chip_.gpio.SetInputs(*setup.gpio_inputs);
  NetworkSetup network = setup.network;
  network.keep_settings = setup.load_file.has_value();
  network_.emplace(chip_, network);
  network_->Watch(alarm_.WatchedFd());
  if (setup.uart_file) uart_.emplace(*setup.uart_file, "the file");
  if (setup.trace_file) trace_.emplace(*setup.trace_file);
}

void Machine::Start() {
  network_->Start();
  if (trace_) trace_->Start(chip_);
  if (uart_) StartUart();
}

void Machine::StartUart() {
  uart_->Start();
  chip_.uart.on_transmit = [this](std::uint8_t byte) {
    const char character = static_cast<char>(byte);
    uart_->Add({&character, 1});
    uart_->Flush();
  };
}

void Machine::Pump() {
  steps_ = 0;
  chip_.Advance(chip_.Now());
  network_->Poll();
}

void Machine::Mark(const std::string& cause) {
  if (trace_) trace_->Mark(cause);
}

void Machine::MarkOnce(const std::string& cause) {
  if (trace_) trace_->MarkOnce(cause);
}

void Machine::BeforeWait() {
  alarm_.Set(chip_.NextDeadline());
  complaints_.Flush();
  if (trace_) trace_->Flush();
  network_->Flush();
}

bool Machine::Finish() {
  // First what needs no reader.
  const bool saved = Save();
  network_->Flush();
  if (trace_) trace_->Flush();
  return saved && !network_->Failed() && !(uart_ && uart_->Failed()) &&
         !(trace_ && trace_->Failed());
}

bool Machine::Save() {
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

}  // namespace board
