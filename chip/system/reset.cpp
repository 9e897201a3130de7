#include "chip/system/reset.h"

#include <utility>

#include "system/reset_registers.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

namespace {

constexpr std::uint8_t kResetBits =
    kResetHardware.Mask() | kResetCpuAndChipSelect.Mask() | kResetCpu.Mask();
constexpr unsigned kUsualLoads = 1;

}  // namespace

ResetControl::ResetControl(RegisterFile& registers, Targets targets)
    : registers_(registers), targets_(std::move(targets)), recovery_(kUsualLoads) {
  registers.Define(kResetControl, {.reset = kResetDone.Mask(),
                                   .read_only = kResetDone.Mask(),
                                   .before_load = [this] { BeforeLoad(); },
                                   .after_store =
                                       [this](std::uint32_t stored) {
                                         AfterStore(static_cast<std::uint8_t>(stored));
                                       }});
  registers.Define(kChipRevision, {.reset = kModelRevision, .read_only = 0xFF});
  registers.Define(kChipModel, {.reset = kModelNumber, .read_only = 0xFFFF});
  registers.Define(kAfterReset240);
  registers.Define(kAfterReset241);
  registers.Define(kAfterReset250);
  registers.Define(kAfterReset251);
}

void ResetControl::Reset() {
  held_ = 0;
  done_ = true;
  recovery_.Abandon();
}

void ResetControl::BeforeLoad() {
  if (recovery_.CountLoad()) done_ = true;
  Publish();
}

void ResetControl::AfterStore(std::uint8_t stored) {
  const std::uint8_t now = stored & kResetBits;
  const auto released = static_cast<std::uint8_t>(held_ & ~now);
  held_ = now;
  if (released != 0 && !recovery_.Fails()) Restore(released);
  if (held_ != 0) {
    done_ = false;
    recovery_.Abandon();
  } else if (released != 0) {
    done_ = false;
    recovery_.Start();
  }
  Publish();
}

void ResetControl::Restore(std::uint8_t released) {
  if (kResetHardware.Get(released) != 0) {
    targets_.whole_chip();
  } else if (kResetCpuAndChipSelect.Get(released) != 0) {
    targets_.chip_selects();
  }
}

void ResetControl::Publish() {
  const std::uint8_t others = registers_.Get(kResetControl) & ~kResetDone.Mask();
  const bool shown = done_ && !recovery_.LooksBusy();
  registers_.Set(kResetControl, shown ? others | kResetDone.Mask() : others);
}

void ResetControl::State(StateArchive& archive) {
  archive.Hex("held", held_, kResetBits);
  archive.Flag("done", done_);
  recovery_.State(archive);
}

}  // namespace chip
