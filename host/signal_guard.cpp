#include "host/signal_guard.h"

#include <array>
#include <csignal>

namespace board {
namespace {

constexpr int kEndingSignals[] = {SIGHUP,  SIGINT,    SIGQUIT, SIGTERM, SIGPIPE, SIGUSR1, SIGUSR2,
                                  SIGALRM, SIGVTALRM, SIGPROF, SIGXCPU, SIGIO,   SIGPWR,  SIGSEGV,
                                  SIGBUS,  SIGABRT,   SIGILL,  SIGFPE,  SIGSYS,  SIGTRAP};

SignalGuard* volatile g_newest = nullptr;

/// A stack for the handler, as the program's own may be what ran out.
void UseOwnStack() {
  static std::array<char, 65536> memory;
  stack_t stack{};
  stack.ss_sp = memory.data();
  stack.ss_size = memory.size();
  sigaltstack(&stack, nullptr);
}

void Install(void (*handler)(int)) {
  UseOwnStack();
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = static_cast<int>(SA_RESETHAND | SA_ONSTACK);
  sigfillset(&action.sa_mask);
  for (const int signal : kEndingSignals) {
    struct sigaction old {};
    sigaction(signal, nullptr, &old);
    if (old.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);
  }
}

}  // namespace

SignalGuard::SignalGuard(Action action, void* object)
    : action_(action), object_(object), previous_(g_newest) {
  if (g_newest == nullptr) Install(Handle);
  g_newest = this;
}

SignalGuard::~SignalGuard() { g_newest = previous_; }

void SignalGuard::Handle(int signal) {
  for (const SignalGuard* guard = g_newest; guard != nullptr; guard = guard->previous_) {
    guard->action_(guard->object_);
  }
  // The signal is blocked while its handler runs and has its default action back: it ends the
  // program on return.
  raise(signal);
}

}  // namespace board
