// The console on file descriptors: the monitor's console socket as both programs fill it.
#pragma once

#include <string_view>

namespace monitor {

struct Awaited;

/// The program around the console: what it does besides, and when the console ends.
class ConsoleHost {
 public:
  /// Called between two steps of the monitor, never in the middle of an access to the chip.
  virtual void BetweenSteps() = 0;

  /// Called at each look for a Ctrl-C in a long wait on hardware.
  virtual void DuringLongWait(const Awaited& awaited) = 0;

  /// Called before the monitor waits for input.
  virtual void BeforeWait() = 0;

  /// Called after the descriptor `watched` has ended such a wait.
  virtual void OnWatched() = 0;

  /// True: input and `watched` report every event, so a monitor without work needs no time limit.
  [[nodiscard]] virtual bool OnlyEvents() const = 0;

  /// Called when the monitor waits for input that has ended, maybe in the middle of a line, or
  /// fails with that error number. It may come back.
  virtual void OnEndOfInput(int error, bool in_line) = 0;

  /// True: nothing more is read, and no wait lasts. Then it stays true.
  [[nodiscard]] virtual bool Ended() const = 0;

  /// True: output is lost from now on. Asked when it would not go out or a signal came meanwhile.
  [[nodiscard]] virtual bool AbandonsOutput() const = 0;

  /// True: the character is not to go to the output. Asked if the setup says so.
  [[nodiscard]] virtual bool DropsOutput(char c) = 0;

 protected:
  ~ConsoleHost() = default;
};

/// How the console differs from plain standard input and output.
struct ConsoleSetup {
  const char* program = "debug-monitor";  ///< Its name in messages.
  int input = 0;
  int output = 1;
  std::string_view first = {};       ///< Characters that come before those of the input.
  bool delete_is_backspace = false;  ///< Turn Delete (127) into backspace (8).
  bool return_is_line_feed = false;  ///< Turn carriage return (13) into line feed (10).
  ConsoleHost* host = nullptr;       ///< Null for none. With one there may be
  bool selects_output = false;       ///< its choice of characters that go to the output, and
  int watched = -1;                  ///< a descriptor that ends a wait for input, too.
};

/// Replaces the setup. Until it is called, plain standard input and output are used.
void ConsoleOpen(const ConsoleSetup& setup);

}  // namespace monitor
