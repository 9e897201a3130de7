#include <fcntl.h>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <utility>

#include "console/console_port.h"
#include "console/posix_console.h"
#include "host/end_signals.h"
#include "host/message.h"
#include "machine/machine.h"
#include "shell/shell.h"
#include "virtual_board/console_session.h"
#include "virtual_board/first_lines.h"
#include "virtual_board/options.h"

namespace {

constexpr int kExitUsage = 2;

/// A standard descriptor that the caller has closed must not come to name a file that is opened
/// later. What takes its place is an input that has ended, or an output that fails.
void OccupyStandardDescriptors() {
  for (int fd = 0; fd <= 2; ++fd) {
    if (fcntl(fd, F_GETFD) < 0) open("/dev/null", O_RDONLY);
  }
}

int Answer(const std::string& text) {
  monitor::ConsoleSetup setup;
  setup.program = board::kProgram;
  monitor::ConsoleOpen(setup);
  monitor::ConsoleSend(text.data(), text.size());
  monitor::ConsoleFlush();
  return EXIT_SUCCESS;
}

int Run(const board::Options& options) {
  std::vector<std::string> first_lines = board::FirstLines(options);
  // Static, because a console that cannot be written ends the program by a call of exit.
  static board::Machine machine(options.machine);
  static board::ConsoleSession session(options, std::move(first_lines), machine);
  machine.Start();
  session.Open();
  board::CatchEndSignals();
  monitor::RunShell([](monitor::ShellEvent event) { session.Note(event); });
  return session.Finish();
}

}  // namespace

int main(int argc, char** argv) {
  OccupyStandardDescriptors();
  board::FlushBeforeMessages(monitor::ConsoleFlush);
  // A file that may not grow is a write error like any other.
  std::signal(SIGXFSZ, SIG_IGN);
  try {
    const board::Options options = board::ParseOptions(argc, argv);
    return options.answer ? Answer(*options.answer) : Run(options);
  } catch (const board::UsageError& error) {
    board::Report(error.what());
    return kExitUsage;
  } catch (const std::exception& error) {
    board::Report(error.what());
    return EXIT_FAILURE;
  }
}
