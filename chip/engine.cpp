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
      operation_(std::move(operation)),
      status_(static_cast<std::uint8_t>(bits.read_done | bits.write_done)) {
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
  Publish();
}

void Engine::Reset() {
  status_ = static_cast<std::uint8_t>(bits_.read_done | bits_.write_done);
  SetLoadsLeft(0);
  registers_.Set(command_, status_);
}

std::uint8_t Engine::StatusBits() const {
  return static_cast<std::uint8_t>(bits_.read_done | bits_.write_done | bits_.result);
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
  SetLoadsLeft(loads_left_ - 1);
  if (loads_left_ != 0) return;
  Complete();
  Publish();
}

void Engine::AfterStore(std::uint8_t stored) {
  if ((stored & bits_.start) != 0) {
    if (loads_left_ != 0) registers_.Complain(name_ + " engine started while busy");
    const int kept = bits_.start_clears_done ? 0 : stored;
    status_ &= static_cast<std::uint8_t>(kept | ~(bits_.read_done | bits_.write_done));
    started_ = stored;
    // Nothing but a load ends an operation, so it takes at least one.
    SetLoadsLeft(fault_.kind == Fault::Kind::kSlow ? std::max(fault_.loads, 1U) : kUsualLoads);
  }
  Publish();
  if (on_store) on_store(stored);
}

void Engine::Complete() {
  const bool failed = fault_.kind == Fault::Kind::kFail || !operation_(started_);
  status_ &= static_cast<std::uint8_t>(~bits_.result);
  if (!failed) status_ |= bits_.result;
  status_ |= DoneBit();
}

void Engine::Publish() {
  const bool busy = fault_.kind == Fault::Kind::kBusy;
  const auto shown =
      static_cast<std::uint8_t>(busy ? status_ & ~(bits_.read_done | bits_.write_done) : status_);
  const auto own = static_cast<std::uint8_t>(registers_.Get(command_) & ~StatusBits());
  registers_.Set(command_, static_cast<std::uint8_t>(own | shown));
}

void Engine::State(StateArchive& archive) {
  archive.Group("engine", [&] {
    archive.Hex("status", status_, StatusBits());
    archive.Hex("started", started_);
    archive.Count("loads_left", loads_left_);
  });
  if (!archive.Loading()) return;
  SetLoadsLeft(loads_left_);
  Publish();
}

}  // namespace chip
