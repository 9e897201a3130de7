#include "machine/trace.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>
#include <utility>

#include "chip/hex.h"
#include "host/broken_pipe.h"
#include "host/message.h"

namespace board {
namespace {

constexpr mode_t kReadableByAll = 0666;

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
    : path_(path),
      file_(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kReadableByAll)),
      guard_([](void* self) { static_cast<Trace*>(self)->WriteOut(); }, this) {
  if (file_ < 0) {
    throw std::system_error(errno, std::generic_category(), "cannot open the trace '" + path + "'");
  }
}

Trace::~Trace() {
  Flush();
  if (file_ >= 0) close(file_);
}

void Trace::Watch(chip::RouterChip& chip) {
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
    AddLine("# " + cause_);
    marked_ = cause_;
    mark_due_ = false;
  }
  AddLine(event);
}

void Trace::AddLine(const std::string& text) {
  const std::string line = text + '\n';
  if (line.size() > text_.size() - count_) Flush();
  std::memcpy(text_.data() + count_, line.data(), line.size());
  count_ += line.size();
}

void Trace::Flush() {
  WriteOut();
  if (error_ == 0 || reported_) return;
  reported_ = true;
  Report("cannot write the trace '" + path_ + "': " + std::strerror(error_) + "; it ends here");
}

void Trace::WriteOut() {
  const char* text = text_.data();
  std::size_t count = count_;
  count_ = 0;
  const BrokenPipeIsError broken_pipe_is_error;
  while (count != 0 && error_ == 0) {
    const ssize_t done = write(file_, text, count);
    if (done >= 0) {
      text += done;
      count -= static_cast<std::size_t>(done);
    } else if (errno != EINTR) {
      error_ = errno;
    }
  }
}

}  // namespace board
