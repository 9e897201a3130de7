#include "fuzz/scripted_kernel.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>

namespace fuzz {

Kernel g_kernel;

std::size_t Kernel::Moves(std::size_t count, bool& refused) {
  const std::uint8_t answer = answers.empty() ? 255 : answers[answered++ % answers.size()];
  refused = !refused && answer < 2;
  if (refused) {
    errno = answer == 0 ? EINTR : EAGAIN;
    return 0;
  }
  return answer < 128 ? std::min<std::size_t>(count, answer + 1U) : count;
}

}  // namespace fuzz

using fuzz::g_kernel;
using fuzz::kInput;
using fuzz::kOutput;

extern "C" {

ssize_t __real_read(int fd, void* text, std::size_t room);
ssize_t __real_write(int fd, const void* text, std::size_t count);
int __real_isatty(int fd);

ssize_t __wrap_read(int fd, void* text, std::size_t room) {
  if (fd != kInput) return __real_read(fd, text, room);
  g_kernel.looked = true;
  const std::size_t waiting = g_kernel.typed.size() - g_kernel.read;
  if (waiting == 0) {
    errno = EAGAIN;
    return g_kernel.ended ? 0 : -1;
  }
  const std::size_t count = g_kernel.Moves(std::min(room, waiting), g_kernel.read_refused);
  if (count == 0) return -1;
  g_kernel.typed.copy(static_cast<char*>(text), count, g_kernel.read);
  g_kernel.read += count;
  return static_cast<ssize_t>(count);
}

ssize_t __wrap_write(int fd, const void* text, std::size_t count) {
  if (fd != kOutput) return __real_write(fd, text, count);
  const std::size_t taken = g_kernel.Moves(count, g_kernel.write_refused);
  if (taken == 0) return -1;
  g_kernel.written.append(static_cast<const char*>(text), taken);
  return static_cast<ssize_t>(taken);
}

int __wrap_ppoll(pollfd* entries, nfds_t count, const timespec* limit, const sigset_t* /*mask*/) {
  g_kernel.looked = true;
  if (g_kernel.Moves(1, g_kernel.wait_refused) == 0) return -1;
  int events = 0;
  for (nfds_t i = 0; i < count; ++i) {
    // A key is pressed when the wait for it has no limit.
    if (entries[i].fd == kInput && limit == nullptr && !g_kernel.Readable()) g_kernel.typed += 'k';
    const bool readable = entries[i].fd == kInput && g_kernel.Readable();
    const bool ready = entries[i].fd == kOutput || readable;
    entries[i].revents = ready ? entries[i].events : short{0};
    events += ready ? 1 : 0;
  }
  return events;
}

int __wrap_isatty(int fd) {
  if (fd != kInput) return __real_isatty(fd);
  errno = ENOTTY;
  return g_kernel.terminal ? 1 : 0;
}

int __wrap_nanosleep(const timespec* /*time*/, timespec* /*left*/) { return 0; }

}  // extern "C"
