#include "host/end_signals.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <system_error>

namespace board {
namespace {

constexpr std::array kSignals{SIGHUP, SIGINT, SIGTERM};

volatile std::sig_atomic_t g_pending = 0;
int g_event = -1;
std::array<struct sigaction, kSignals.size()> g_before;

void Note(int signal) {
  const int error = errno;
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    if (kSignals[i] == signal) sigaction(signal, &g_before[i], nullptr);
  }
  g_pending = signal;
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t told = write(g_event, &one, sizeof(one));
  errno = error;
}

}  // namespace

EndSignals::EndSignals() {
  g_event = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  if (g_event < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
  struct sigaction note {};
  note.sa_handler = Note;
  sigfillset(&note.sa_mask);
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    sigaction(kSignals[i], nullptr, &g_before[i]);
    if (g_before[i].sa_handler != SIG_IGN) sigaction(kSignals[i], &note, nullptr);
  }
}

int EndSignals::Fd() const { return g_event; }

int EndSignals::Pending() const { return g_pending; }

}  // namespace board
