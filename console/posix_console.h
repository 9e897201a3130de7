// The console on file descriptors: the monitor's console socket as both programs fill it.
#pragma once

#include <string_view>

namespace monitor {

struct Awaited;

/// How the console differs from plain standard input and output.
struct ConsoleSetup {
  const char* program = "debug-monitor";  ///< Its name in messages.
  int input = 0;
  int output = 1;
  std::string_view first = {};        ///< Characters that come before those of the input.
  bool delete_is_backspace = false;   ///< Turn Delete (127) into backspace (8).
  bool return_is_line_feed = false;   ///< Turn carriage return (13) into line feed (10).
  void (*before_wait)() = nullptr;    ///< Called before the monitor waits for input.
  int watched = -1;                   ///< A descriptor that ends such a wait too,
  void (*on_watched)() = nullptr;     ///< after which this is called.
  bool (*only_events)() = nullptr;    ///< True: input and `watched` report every event,
                                      ///< so a monitor without work needs no time limit.
  void (*between_steps)() = nullptr;  ///< Called often, also in long waits on hardware, and
                                      ///< never in the middle of an access to the chip.
  /// Called when the monitor waits for input that has ended, maybe in the middle of a line, or
  /// fails with that error number.
  void (*at_end_of_input)(int error, bool in_line) = nullptr;
  /// True: output is lost from now on. Asked when it would not go out or a signal came meanwhile.
  bool (*abandon_output)() = nullptr;
  bool (*filter)(char c) = nullptr;  ///< True: a character is not to go to the output.
  /// Called at each look for a Ctrl-C in a long wait.
  void (*on_long_wait)(const Awaited& awaited) = nullptr;
};

/// Replaces the setup. Until it is called, plain standard input and output are used.
void ConsoleOpen(const ConsoleSetup& setup);

}  // namespace monitor
