#pragma once

namespace board {

/// Puts something right when a signal ends the program, a crash included; the program then dies
/// of that signal, so that its exit status tells. A signal that was ignored stays ignored. Guards
/// are destroyed in the reverse order of their making.
class SignalGuard {
 public:
  /// Called in a signal handler: only calls that are safe there.
  using Action = void (*)(void* object);

  SignalGuard(Action action, void* object);
  ~SignalGuard();
  SignalGuard(const SignalGuard&) = delete;
  SignalGuard& operator=(const SignalGuard&) = delete;

 private:
  static void Handle(int signal);

  Action action_;
  void* object_;
  SignalGuard* previous_;
};

}  // namespace board
