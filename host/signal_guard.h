#pragma once

namespace board {

/// Cleans something up when a signal, including that of a crash, ends the program; the program then
/// dies of that signal, so that its exit status shows it. A signal that was ignored stays ignored.
/// Guards are destroyed in the reverse order of their construction.
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
