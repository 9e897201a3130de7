#include "chip/engine.h"

#include <algorithm>
#include <utility>

namespace chip {
namespace {

constexpr unsigned kUsualLoads = 2;

}  // namespace

Engine::Engine(RegisterFile& registers, std::string name, monitor::Reg8 command, EngineBits bits,
               Operation operation)
    : registers_(registers),
      name_(std::move(name)),
      command_(command),
      bits_(bits),
      done_bits_(static_cast<std::uint8_t>(bits.read_done | bits.write_done)),
      status_bits_(static_cast<std::uint8_t>(done_bits_ | bits.result)),
      operation_(std::move(operation)),
      status_(done_bits_) {
  registers.Define(command, {.reset = status_,
                             .before_load = [this] { BeforeLoad(); },
                             .after_store =
                                 [this](std::uint32_t stored) {
                                   AfterStore(static_cast<std::uint8_t>(stored));
                                 }});
  SetLoadsLeft(0);
}

void Engine::SetFault(Fault fault) {
  fault_ = fault;
  Publish(registers_.Get(command_));
}

void Engine::Reset() {
  status_ = done_bits_;
  started_ = 0;
  SetLoadsLeft(0);
  Publish(0);
}

std::uint8_t Engine::DoneBit() const {
  return (started_ & bits_.write) != 0 ? bits_.write_done : bits_.read_done;
}

void Engine::SetLoadsLeft(unsigned loads) {
  loads_left_ = loads;
  registers_.CallBeforeLoad(command_, loads != 0);
}

void Engine::BeforeLoad() {
  if (loads_left_ == 0 || fault_.kind == Fault::Kind::kHang) return;
  const unsigned left = loads_left_ - 1;
  SetLoadsLeft(left);
  if (left != 0) return;
  Complete();
  Publish(registers_.Get(command_));
}

void Engine::AfterStore(std::uint8_t stored) {
  if ((stored & bits_.start) != 0) Start(stored);
  Publish(stored);
  if (on_store) on_store(stored);
}

void Engine::Start(std::uint8_t command) {
  if (loads_left_ != 0) ComplainOfStart();
  started_ = command;
  // Nothing but a load ends an operation, so it takes at least one.
  SetLoadsLeft(fault_.kind == Fault::Kind::kSlow ? std::max(fault_.loads, 1U) : kUsualLoads);
  const int kept = bits_.start_clears_done ? 0 : command;
  status_ &= static_cast<std::uint8_t>(kept | ~done_bits_);
}

void Engine::ComplainOfStart() { registers_.Complain(name_ + " engine started while busy"); }

void Engine::Complete() {
  const bool failed = fault_.kind == Fault::Kind::kFail || !operation_(started_);
  const int others = status_ & ~bits_.result;
  const int result = failed ? 0 : bits_.result;
  status_ = static_cast<std::uint8_t>(others | result | DoneBit());
  if (on_end) on_end();
}

void Engine::Publish(std::uint8_t command) {
  const bool busy = fault_.kind == Fault::Kind::kBusy;
  const int shown = busy ? status_ & ~done_bits_ : status_;
  registers_.Set(command_, static_cast<std::uint8_t>((command & ~status_bits_) | shown));
}

void Engine::State(StateArchive& archive) {
  archive.Group("engine", [&] {
    archive.Hex("status", status_, status_bits_);
    archive.Hex("started", started_);
    archive.Count("loads_left", loads_left_);
  });
  if (!archive.Loading()) return;
  SetLoadsLeft(loads_left_);
  Publish(registers_.Get(command_));
}

}  // namespace chip
