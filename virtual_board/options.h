#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/usage_error.h"
#include "machine/ports/network.h"

namespace board {

/// What the command line asks for.
struct Options {
  std::vector<std::string> init_files;      ///< Files of lines to run before all others.
  std::vector<std::string> commands;        ///< Lines to run instead of typed ones,
  bool stay = false;                        ///< or before them.
  bool plain = false;                       ///< Only answers are printed, with plain line ends.
  bool strict = false;                      ///< A complaint of the chip is a failure.
  std::optional<std::string> pty_link;      ///< Console on a pseudo-terminal under this link.
  std::optional<std::string> trace_file;    ///< Every bus access goes there.
  std::vector<std::string> faults;          ///< As SetFault takes them.
  NetworkSetup network;                     ///< What the ports are connected to.
  std::optional<std::string> uart_file;     ///< What the UART sends goes there.
  std::optional<std::uint8_t> gpio_inputs;  ///< Levels of the general-purpose pins.
  std::optional<std::string> load_file;     ///< The state to start with.
  std::optional<std::string> save_file;     ///< The state goes there at the end.
  bool keep_delete = false;                 ///< The Delete key is not a backspace.
  std::optional<std::string> registers;     ///< Print the register map in this format.
  std::optional<std::string> answer;        ///< Text to print instead of a run.
};

/// True when lines are read from a console or script, not only those on the command line.
[[nodiscard]] inline bool ReadsConsole(const Options& options) {
  return options.commands.empty() || options.stay;
}

/// The option that connects a port, such as "--wan".
[[nodiscard]] std::string PortOption(monitor::PortId port);

/// Reads the command line. Throws UsageError.
[[nodiscard]] Options ParseOptions(int argc, const char* const* argv);

}  // namespace board
