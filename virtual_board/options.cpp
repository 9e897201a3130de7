#include "virtual_board/options.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <unistd.h>

#include <algorithm>
#include <charconv>

#include "machine/faults.h"
#include "machine/registers/export.h"
#include "shell/line_editor.h"
#include "virtual_board/file_conflicts.h"
#include "virtual_board/nearest.h"

namespace board {
namespace {

constexpr char kDescription[] = "The Debug Monitor on a software model of the router chip.";
constexpr char kVersion[] = "virtual-board " BOARD_VERSION "\n";
constexpr char kFooter[] =
    "Ports: tap:NAME is a TAP device, made if absent; pcap:IN,OUT replays the capture IN and "
    "writes\n"
    "what the port sends to OUT, with pcap:,OUT nothing comes in; unix:PATH is a socket on which "
    "a\n"
    "program exchanges frames (SOCK_SEQPACKET, one frame a packet).\n\n"
    "With -c, or with a script on standard input, the board ends where the lines do. Exit status: "
    "0;\n"
    "1 when something could not be opened, read or written; 2 for a bad command line; with -c or\n"
    "--plain also 3 when a line was refused and 4 when a driver failed (4 when both happened).\n";

/// Characters of a line that the monitor reads; it cuts off the rest.
constexpr std::size_t kLongestCommand = monitor::kLineBufferSize - 2;

/// An option's argument is not the next option.
std::string CheckArgument(const std::string& argument) {
  if (!argument.starts_with('-')) return "";
  return "its argument is missing before '" + argument + "'";
}

std::string CheckFile(const std::string& argument) {
  return argument.empty() ? "a file needs a name" : CheckArgument(argument);
}

/// A command stands for keys that are typed, so none of them may be one that edits.
std::string CheckCommand(const std::string& command) {
  std::string missing = CheckArgument(command);
  if (!missing.empty()) return missing;
  const auto is_control = [](unsigned char c) { return c < ' ' || c == '\x7f'; };
  if (std::any_of(command.begin(), command.end(), is_control)) {
    return "a command is one line without control characters; give each its own -c";
  }
  if (command.size() <= kLongestCommand) return "";
  return "a command has " + std::to_string(command.size()) + " characters; the console takes " +
         std::to_string(kLongestCommand);
}

std::string CheckPort(const std::string& argument) {
  std::string missing = CheckArgument(argument);
  if (!missing.empty() || IsPort(argument)) return missing;
  return "'" + argument + "' is no port: use tap:NAME, pcap:[IN][,OUT], unix:PATH or none";
}

std::uint8_t ParseHexByte(const std::string& text) {
  std::uint8_t byte = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), byte, 16);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size()) {
    throw UsageError("--gpio-in: '" + text + "' is no hexadecimal number from 0 to ff");
  }
  return byte;
}

void Describe(CLI::App& app, Options& options) {
  app.description(kDescription);
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.set_version_flag("--version", kVersion, "Print the version and exit");
  app.add_option("-c,--command", options.commands, "Run LINE and end; may be repeated")
      ->type_name("LINE")
      ->check(CheckCommand, "")
      ->allow_extra_args(false);
  app.add_flag("--plain", options.plain,
               "Print only the answers, with plain line ends: no banner, prompt and echo");
  app.add_option("--pty", options.pty_link, "Offer the console as a pseudo-terminal under LINK")
      ->type_name("LINK")
      ->check(CheckArgument, "");
  app.add_option("--trace", options.trace_file, "Write every bus access to FILE")
      ->type_name("FILE")
      ->check(CheckArgument, "");
  app.add_option("--fault", options.faults, "Let an engine fail; may be repeated")
      ->type_name("SPEC")
      ->check(CheckArgument, "")
      ->allow_extra_args(false);
  for (unsigned port = 0; port < options.network.ports.size(); ++port) {
    app.add_option(PortOption(port), options.network.ports[port],
                   "Connect the port: tap:NAME, pcap:[IN][,OUT], unix:PATH or none")
        ->type_name("X")
        ->check(CheckPort, "");
  }
  app.add_flag("--realtime", options.network.options.realtime,
               "Replay captures with their own timing, not as fast as frames are taken");
  app.add_option("--capture", options.network.capture, "Record all ports in FILE (pcapng)")
      ->type_name("FILE")
      ->check(CheckFile, "");
  app.add_option("--uart", options.uart_file, "Write what the UART sends to FILE")
      ->type_name("FILE")
      ->check(CheckArgument, "");
  app.add_option_function<std::string>(
         "--gpio-in",
         [&options](const std::string& text) { options.gpio_inputs = ParseHexByte(text); },
         "Levels of the general-purpose pins, 0 to ff")
      ->type_name("HEX")
      ->check(CheckArgument, "");
  app.add_flag("--registers{text}", options.registers,
               "Print the register map and exit: --registers, --registers=svd (CMSIS-SVD) or "
               "--registers=json");
  app.add_option("--load", options.load_file, "Start with the state in FILE")
      ->type_name("FILE")
      ->check(CheckArgument, "");
  app.add_option("--save", options.save_file, "Leave the state in FILE at the end")
      ->type_name("FILE")
      ->check(CheckArgument, "");
  app.add_flag("--keep-delete", options.keep_delete, "Do not turn Delete into backspace");
}

std::vector<std::string> OptionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options()) names.push_back(option->get_name());
  return names;
}

/// Complains about words that are not options. Those that look like one are named first, as the
/// rest may have been meant for them.
void RefuseUnknownArguments(const std::vector<std::string>& words, const CLI::App& app) {
  std::string unknown;
  for (const std::string& word : words) {
    if (!word.starts_with('-') || word == "-" || word == "--") continue;
    const std::string name = word.substr(0, word.find('='));
    if (!unknown.empty()) unknown += "; ";
    unknown +=
        "unknown option '" + name + "', the nearest is '" + Nearest(name, OptionNames(app)) + "'";
  }
  if (!unknown.empty()) throw UsageError(unknown);
  if (words.empty()) return;
  throw UsageError("unexpected argument '" + words.front() +
                   "'; the value of an option stands behind it, that of --registers behind '='");
}

std::string RegisterMapIn(const std::string& format) {
  std::string known;
  for (const std::string& name : RegisterMapFormats()) {
    if (name == format) return RegisterMap(format);
    known.append(known.empty() ? "" : ", ").append(name);
  }
  throw UsageError("--registers: there is no format '" + format + "'; known are " + known);
}

/// Refuses options that contradict each other.
void CheckTogether(const Options& options) {
  if (options.pty_link && !options.commands.empty()) {
    throw UsageError("--command and --pty: the lines come from one or the other");
  }
  if (!options.plain || !options.commands.empty()) return;
  if (options.pty_link || isatty(STDIN_FILENO) != 0) {
    throw UsageError("--plain is for lines given with -c or as a script on standard input");
  }
}

}  // namespace

std::string PortOption(unsigned port) { return std::string("--") + chip::kMacPortNames[port]; }

Options ParseOptions(int argc, const char* const* argv) {
  Options options;
  CLI::App app;
  app.name("virtual-board");
  app.allow_extras();
  Describe(app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    options.answer = app.help() + DescribeFaults() + "\n" + kFooter;
    return options;
  } catch (const CLI::CallForVersion&) {
    options.answer = kVersion;
    return options;
  } catch (const CLI::ParseError& error) {
    throw UsageError(error.what());
  }
  RefuseUnknownArguments(app.remaining(), app);
  CheckTogether(options);
  CheckFileConflicts(options);
  if (options.registers) options.answer = RegisterMapIn(*options.registers);
  return options;
}

}  // namespace board
