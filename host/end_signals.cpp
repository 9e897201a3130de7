#include "host/end_signals.h"

#include <poll.h>

#include <array>
#include <cerrno>
#include <ctime>
#include <system_error>

namespace board {
namespace {

constexpr std::array kSignals{SIGHUP, SIGINT, SIGTERM};

/// Interrupts system calls. It has no other use here, and a stray one does no harm.
constexpr int kTickSignal = SIGURG;
constexpr long kTickNanoseconds = 50'000'000;
constexpr int kTicksToOverdue = 10;

volatile std::sig_atomic_t g_signal = 0;
volatile std::sig_atomic_t g_ticks = 0;
timer_t g_timer;
std::array<struct sigaction, kSignals.size()> g_before;

void Note(int signal) {
  const int error = errno;
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    if (kSignals[i] == signal) sigaction(signal, &g_before[i], nullptr);
  }
  g_signal = signal;
  const itimerspec ticks{.it_interval = {.tv_sec = 0, .tv_nsec = kTickNanoseconds},
                         .it_value = {.tv_sec = 0, .tv_nsec = kTickNanoseconds}};
  timer_settime(g_timer, 0, &ticks, nullptr);
  errno = error;
}

void Tick(int /*signal*/) { g_ticks = g_ticks + 1; }

}  // namespace

void CatchEndSignals() {
  sigevent event{};
  event.sigev_notify = SIGEV_SIGNAL;
  event.sigev_signo = kTickSignal;
  if (timer_create(CLOCK_MONOTONIC, &event, &g_timer) < 0) {
    throw std::system_error(errno, std::generic_category(), "cannot create a timer");
  }
  // Without SA_RESTART, so that blocking calls return.
  struct sigaction action {};
  sigfillset(&action.sa_mask);
  action.sa_handler = Tick;
  sigaction(kTickSignal, &action, nullptr);
  action.sa_handler = Note;
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    sigaction(kSignals[i], nullptr, &g_before[i]);
    if (g_before[i].sa_handler != SIG_IGN) sigaction(kSignals[i], &action, nullptr);
  }
}

int EndSignal() { return g_signal; }

bool EndIsOverdue() { return g_ticks >= kTicksToOverdue; }

int RetryWrite(int fd) {
  const int error = errno;
  if (error != EINTR && error != EAGAIN) return error;
  if (EndIsOverdue()) return EINTR;
  if (error == EAGAIN) {
    pollfd entry{.fd = fd, .events = POLLOUT, .revents = 0};
    poll(&entry, 1, -1);
  }
  return 0;
}

Uninterrupted::Uninterrupted() {
  sigset_t tick;
  sigemptyset(&tick);
  sigaddset(&tick, kTickSignal);
  sigprocmask(SIG_BLOCK, &tick, &before_);
}

}  // namespace board
