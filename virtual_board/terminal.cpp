#include "virtual_board/terminal.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>
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

const RawTerminal* RawTerminal::the_one_ = nullptr;

RawTerminal::RawTerminal(int fd)
    : fd_(fd),
      saved_(ModeOf(fd)),
      mode_(EditorMode(saved_)),
      guard_([](void* self) { static_cast<const RawTerminal*>(self)->Restore(); }, this) {
  // What was typed ahead is kept.
  if (tcsetattr(fd_, TCSANOW, &mode_) < 0) Refused();
  the_one_ = this;
  struct sigaction action {};
  action.sa_handler = GoOn;
  action.sa_flags = SA_RESTART;
  sigaction(SIGCONT, &action, nullptr);
}

RawTerminal::~RawTerminal() {
  std::signal(SIGCONT, SIG_DFL);
  Restore();
}

/// The shell that stopped the program has set the terminal for itself.
void RawTerminal::GoOn(int /*signal*/) {
  const int error = errno;
  if (OwnsTerminal(the_one_->fd_)) tcsetattr(the_one_->fd_, TCSANOW, &the_one_->mode_);
  errno = error;
}

termios RawTerminal::ModeOf(int fd) {
  termios mode{};
  if (tcgetattr(fd, &mode) < 0) Refused();
  return mode;
}

void RawTerminal::Restore() const {
  if (!OwnsTerminal(fd_)) return;
  // No other program will restore it, so a failure is retried once.
  if (tcsetattr(fd_, TCSANOW, &saved_) < 0) tcsetattr(fd_, TCSANOW, &saved_);
}

}  // namespace board
