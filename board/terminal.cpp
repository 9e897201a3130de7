#include "board/terminal.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace board {
namespace {

[[noreturn]] void Refused() {
  throw std::system_error(errno, std::generic_category(), "cannot set the terminal");
}

/// A program that was stopped and then killed in the background no longer owns the terminal.
bool OwnsTerminal(int fd) {
  const pid_t owner = tcgetpgrp(fd);
  return owner < 0 || owner == getpgrp();
}

termios EditorMode(termios mode) {
  cfmakeraw(&mode);
  mode.c_iflag |= ICRNL;
  return mode;
}

}  // namespace

RawTerminal::RawTerminal(int fd)
    : fd_(fd),
      saved_(ModeOf(fd)),
      guard_([](void* self) { static_cast<const RawTerminal*>(self)->Restore(); }, this) {
  const termios mode = EditorMode(saved_);
  // What was typed ahead is kept.
  if (tcsetattr(fd_, TCSANOW, &mode) < 0) Refused();
}

termios RawTerminal::ModeOf(int fd) {
  termios mode{};
  if (tcgetattr(fd, &mode) < 0) Refused();
  return mode;
}

void RawTerminal::Restore() const {
  if (!OwnsTerminal(fd_)) return;
  // Nobody else will put it back, so a failure is not taken for an answer at once.
  if (tcsetattr(fd_, TCSANOW, &saved_) < 0) tcsetattr(fd_, TCSANOW, &saved_);
}

}  // namespace board
