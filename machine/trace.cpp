#include "machine/trace.h"

#include "chip/hex.h"

namespace board {
namespace {

/// An access in the notation of bus transcripts. `memory` marks frame buffer memory.
std::string Notation(const char* memory, const chip::Access& access, unsigned address_digits) {
  std::string text = memory;
  text.append(access.store ? "w" : "r").append(std::to_string(8 * access.width)).append(" ");
  text.append(chip::Hex(access.offset, address_digits)).append(" ");
  return text.append(chip::Hex(access.value, 2 * access.width));
}

std::string RegisterNotation(const chip::Access& access) { return Notation("", access, 4); }
std::string MemoryNotation(const chip::Access& access) { return Notation("m", access, 8); }

}  // namespace

Trace::Trace(const std::string& path)
    : file_(path, "the trace"),
      guard_([](void* self) { static_cast<Trace*>(self)->file_.FlushAtOnce(); }, this) {}

void Trace::Start(chip::RouterChip& chip) {
  file_.Start();
  chip.registers.Watch([this](const chip::Access& access) {
    const std::string explanation = names_.Explain(access);
    Add(RegisterNotation(access) + (explanation.empty() ? "" : "  " + explanation));
  });
  chip.frames.memory.observer = [this](const chip::Access& access) { Add(MemoryNotation(access)); };
  chip.on_map = [this](std::uint16_t base) { Add("map " + chip::Hex(base, 4)); };
  chip.on_lock = [this](bool locked) { Add(locked ? "lock" : "unlock"); };
}

void Trace::Mark(const std::string& cause) {
  cause_ = cause;
  mark_due_ = true;
}

void Trace::MarkOnce(const std::string& cause) {
  cause_ = cause;
  mark_due_ = cause_ != marked_;
}

void Trace::Add(const std::string& event) {
  if (mark_due_) {
    file_.Add("# " + cause_ + "\n");
    marked_ = cause_;
    mark_due_ = false;
  }
  file_.Add(event + "\n");
}

}  // namespace board
