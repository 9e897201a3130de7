#include "chip/engine.h"

#include <string>
#include <utility>

namespace chip {
namespace {

constexpr unsigned kUsualLoads = 2;

}  // namespace

Engine::Engine(RegisterFile& registers, const char* name, monitor::Reg8 command, EngineBits bits,
               Work work)
    : registers_(registers),
      name_(name),
      command_(command),
      bits_(bits),
      done_bits_(static_cast<std::uint8_t>(bits.read_done | bits.write_done)),
      status_bits_(static_cast<std::uint8_t>(done_bits_ | bits.result)),
      work_(std::move(work)),
      status_(done_bits_),
      operation_(kUsualLoads) {
  registers.Define(command, {.reset = status_,
                             .before_load = [this] { BeforeLoad(); },
                             .after_store =
                                 [this](std::uint32_t stored) {
                                   AfterStore(static_cast<std::uint8_t>(stored));
                                 }});
  WatchLoads();
}

void Engine::SetFault(const Fault& fault) {
  operation_.SetFault(fault);
  Publish(registers_.Get(command_));
}

void Engine::Reset() {
  status_ = done_bits_;
  started_ = 0;
  operation_.Abandon();
  WatchLoads();
  Publish(0);
}

std::uint8_t Engine::DoneBit() const {
  return (started_ & bits_.write) != 0 ? bits_.write_done : bits_.read_done;
}

void Engine::BeforeLoad() {
  if (!operation_.CountLoad()) return;
  WatchLoads();
  Complete();
  Publish(registers_.Get(command_));
}

void Engine::AfterStore(std::uint8_t stored) {
  if ((stored & bits_.start) != 0) Start(stored);
  Publish(stored);
  if (on_store) on_store(stored);
}

void Engine::Start(std::uint8_t command) {
  if (operation_.Running()) ComplainOfStart();
  started_ = command;
  operation_.Start();
  WatchLoads();
  const int kept = bits_.start_clears_done ? 0 : command;
  status_ &= static_cast<std::uint8_t>(kept | ~done_bits_);
}

void Engine::ComplainOfStart() {
  registers_.Complain(std::string(name_) + " engine started while busy");
}

void Engine::Complete() {
  const bool failed = operation_.Fails() || !work_(started_);
  const int others = status_ & ~bits_.result;
  const int result = failed ? 0 : bits_.result;
  status_ = static_cast<std::uint8_t>(others | result | DoneBit());
  if (on_end) on_end();
}

void Engine::Publish(std::uint8_t command) {
  const int shown = operation_.LooksBusy() ? status_ & ~done_bits_ : status_;
  registers_.Set(command_, static_cast<std::uint8_t>((command & ~status_bits_) | shown));
}

void Engine::State(StateArchive& archive) {
  archive.Group("engine", [&] {
    archive.Hex("status", status_, status_bits_);
    archive.Hex("started", started_);
    operation_.State(archive);
  });
  if (!archive.Loading()) return;
  WatchLoads();
  Publish(registers_.Get(command_));
}

}  // namespace chip
