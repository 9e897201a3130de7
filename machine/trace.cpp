#include "machine/trace.h"

#include <array>
#include <charconv>
#include <string_view>

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
      guard_([](void* self) { static_cast<Trace*>(self)->FlushAtOnce(); }, this) {}

Trace::~Trace() { EndRun(); }

void Trace::Start(chip::RouterChip& chip) {
  file_.Start();
  chip.registers.Watch(
      [this](const chip::Access& access) { Add(RegisterNotation(access), &access); });
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

void Trace::Add(const std::string& event, const chip::Access* access) {
  if (times_ != 0 && !mark_due_ && event == event_) {
    ++times_;
    return;
  }
  EndRun();
  if (mark_due_) {
    file_.Add("# " + cause_ + "\n");
    marked_ = cause_;
    mark_due_ = false;
  }
  event_ = event;
  explanation_ = access != nullptr ? names_.Explain(*access) : "";
  times_ = 1;
}

/// Also called in a signal handler.
void Trace::EndRun() {
  if (times_ == 0) return;
  file_.Add(event_);
  if (times_ != 1) {
    std::array<char, 20> digits;
    const char* const end = std::to_chars(digits.begin(), digits.end(), times_).ptr;
    file_.Add(" x");
    file_.Add(std::string_view(digits.begin(), end));
  }
  if (!explanation_.empty()) {
    file_.Add("  ");
    file_.Add(explanation_);
  }
  file_.Add("\n");
  times_ = 0;
}

void Trace::Flush() {
  EndRun();
  file_.Flush();
}

void Trace::FlushAtOnce() {
  file_.FlushAtOnce();
  EndRun();
  file_.FlushAtOnce();
}

}  // namespace board
