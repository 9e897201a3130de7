#include "virtual_board/pseudo_terminal.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <system_error>

namespace board {
namespace {

constexpr std::size_t kLongestPath = 64;

void Check(int result, const std::string& what) {
  if (result != 0) throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

PseudoTerminal::PseudoTerminal()
    : board_side_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)),
      guard_([](void* self) { static_cast<const PseudoTerminal*>(self)->RemoveLink(); }, this) {}

PseudoTerminal::PseudoTerminal(const std::string& link) : PseudoTerminal() {
  const std::string what = "cannot make a pseudo-terminal for '" + link + "'";
  std::array<char, kLongestPath> path{};
  Check(board_side_ < 0 ? -1 : 0, what);
  Check(grantpt(board_side_), what);
  Check(unlockpt(board_side_), what);
  Check(ptsname_r(board_side_, path.data(), path.size()), what);
  path_ = path.data();
  terminal_side_ = open(path.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  Check(terminal_side_ < 0 ? -1 : 0, what);

  termios mode{};
  Check(tcgetattr(terminal_side_, &mode), what);
  cfmakeraw(&mode);
  Check(tcsetattr(terminal_side_, TCSANOW, &mode), what);

  Check(symlink(path.data(), link.c_str()), "cannot make the link '" + link + "'");
  link_ = link;
}

PseudoTerminal::~PseudoTerminal() {
  RemoveLink();
  if (terminal_side_ >= 0) close(terminal_side_);
  if (board_side_ >= 0) close(board_side_);
}

void PseudoTerminal::RemoveLink() const {
  std::array<char, kLongestPath> target;
  const ssize_t length = readlink(link_.c_str(), target.data(), target.size());
  // Another program may have put its own link in its place.
  if (length < 0 || std::string_view(target.data(), static_cast<std::size_t>(length)) != path_) {
    return;
  }
  unlink(link_.c_str());
}

}  // namespace board
