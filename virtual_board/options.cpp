#include "virtual_board/options.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <unistd.h>

#include <algorithm>
#include <memory>

#include "host/message.h"
#include "machine/faults.h"
#include "machine/registers/export.h"
#include "virtual_board/arguments.h"
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
    "program exchanges frames (SOCK_SEQPACKET, one frame per packet).\n\n"
    "With -c, or with a script on standard input, the board ends where the lines do. Exit status: "
    "0;\n"
    "1 when something could not be opened, read or written; 2 for a bad command line; with -c or\n"
    "--plain also 3 when a line was refused and 4 when a driver failed (4 when both happened).\n";

constexpr char kRegisters[] = "--registers";
constexpr char kGpioIn[] = "--gpio-in";

/// An optional value as a manual page writes it.
class Formatter : public CLI::Formatter {
 public:
  std::string make_option_name(const CLI::Option* option, bool positional) const override {
    const std::string name = CLI::Formatter::make_option_name(option, positional);
    return name.substr(0, name.find('{')) + (option->check_name(kRegisters) ? "[=FORMAT]" : "");
  }
};

void Describe(CLI::App& app, Options& options) {
  app.description(kDescription);
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.set_version_flag("--version", kVersion, "Print the version and exit");
  app.add_option("--init", options.init_files,
                 "Run the lines of FILE before all others; may be repeated")
      ->type_name("FILE")
      ->check(CheckFile, "")
      ->allow_extra_args(false);
  app.add_option("-c,--command", options.commands, "Run LINE and end; may be repeated")
      ->type_name("LINE")
      ->check(CheckCommand, "")
      ->allow_extra_args(false);
  app.add_flag("--plain", options.plain,
               "Print only the answers, with plain line ends: no banner, prompt and echo");
  app.add_flag("--strict", options.strict,
               "Exit with status 1 when the chip has complained about an access");
  app.add_option("--pty", options.pty_link, "Offer the console as a pseudo-terminal under LINK")
      ->type_name("LINK")
      ->check(CheckName, "");
  app.add_flag("--stay", options.stay, "Continue with the console after the lines of -c");
  app.add_option("--trace", options.trace_file, "Write every bus access to FILE")
      ->type_name("FILE")
      ->check(CheckFile, "");
  app.add_option("--fault", options.faults, "Make an engine fail; may be repeated")
      ->type_name("SPEC")
      ->check(CheckArgument, "")
      ->allow_extra_args(false);
  for (const monitor::PortId port : monitor::kMacPorts) {
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
      ->check(CheckFile, "");
  app.add_option_function<std::string>(
         kGpioIn,
         [&options](const std::string& text) { options.gpio_inputs = ParseHexByte(kGpioIn, text); },
         "Levels of the general-purpose pins, 0 to ff")
      ->type_name("HEX")
      ->check(CheckArgument, "");
  app.add_flag(std::string(kRegisters) + "{text}", options.registers,
               "Print the register map and exit: --registers, --registers=svd (CMSIS-SVD) or "
               "--registers=json");
  app.add_option("--load", options.load_file, "Start with the state in FILE")
      ->type_name("FILE")
      ->check(CheckName, "");
  app.add_option("--save", options.save_file, "Leave the state in FILE at the end")
      ->type_name("FILE")
      ->check(CheckName, "");
  app.add_flag("--keep-delete", options.keep_delete, "Do not turn Delete into backspace");
  for (CLI::Option* const option : app.get_options()) {
    // RefuseRepeated has a better message.
    if (option->get_expected_max() == 1) option->take_last();
  }
}

/// Flags take no value, although the parser would accept one for each.
void RefuseFlagValues(const CLI::App& app, const std::vector<std::string>& words) {
  for (const std::string& word : words) {
    const std::size_t equals = word.find('=');
    const CLI::Option* const option = app.get_option_no_throw(word.substr(0, equals));
    if (equals == std::string::npos || option == nullptr) continue;
    if (option->get_expected_max() != 0 || option->check_name(kRegisters)) continue;
    throw UsageError(option->get_name() + " takes no value; leave out '" + word.substr(equals) +
                     "'");
  }
}

void RefuseRepeated(const CLI::App& app) {
  for (const CLI::Option* const option : app.get_options()) {
    if (option->get_expected_max() != 1 || option->count() < 2) continue;
    throw UsageError(option->get_name() + " is given more than once, with '" +
                     option->results()[0] + "' and '" + option->results()[1] + "'; give it once");
  }
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
                   "'; the value of an option follows it, that of --registers follows '='");
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
  if (options.pty_link && !ReadsConsole(options)) {
    throw UsageError("--command and --pty: the board ends after the lines; add --stay to continue");
  }
  if (!options.plain || !ReadsConsole(options)) return;
  if (options.pty_link || isatty(STDIN_FILENO) != 0) {
    throw UsageError("--plain is for lines given with -c or as a script on standard input");
  }
}

}  // namespace

std::string PortOption(monitor::PortId port) { return std::string("--") + monitor::NameOf(port); }

Options ParseOptions(int argc, const char* const* argv) {
  Options options;
  CLI::App app;
  app.name(kProgram);
  app.formatter(std::make_shared<Formatter>());
  app.allow_extras();
  Describe(app, options);
  RefuseFlagValues(app, {argv + std::min(argc, 1), argv + argc});
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
  RefuseRepeated(app);
  CheckTogether(options);
  CheckFileConflicts(options);
  if (options.registers) options.answer = RegisterMapIn(*options.registers);
  return options;
}

}  // namespace board
