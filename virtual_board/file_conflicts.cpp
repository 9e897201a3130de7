#include "virtual_board/file_conflicts.h"

#include <filesystem>
#include <system_error>
#include <vector>

#include "machine/ports/port.h"

namespace board {
namespace {

/// What a file is used for.
struct Role {
  std::string option;
  std::string path;
  bool written;
};

using Roles = std::vector<Role>;

void Add(Roles& roles, const std::string& option, const std::string& path, bool written) {
  if (!path.empty()) roles.push_back({option, path, written});
}

Roles RolesOf(const Options& options) {
  Roles roles;
  for (const monitor::PortId port : monitor::kMacPorts) {
    const CaptureNames names = CapturesOf(options.machine.network.ports[port]);
    Add(roles, PortOption(port), names.in, false);
    Add(roles, PortOption(port), names.out, true);
  }
  Add(roles, "--capture", options.machine.network.capture, true);
  Add(roles, "--trace", options.machine.trace_file.value_or(""), true);
  Add(roles, "--uart", options.machine.uart_file.value_or(""), true);
  for (const std::string& path : options.init_files) Add(roles, "--init", path, false);
  Add(roles, "--load", options.machine.load_file.value_or(""), false);
  Add(roles, "--save", options.machine.save_file.value_or(""), true);
  return roles;
}

/// The file that a name stands for, even while it does not exist; empty when that is unknown.
std::filesystem::path Place(const std::string& name) {
  std::error_code failed;
  const std::filesystem::path place = std::filesystem::weakly_canonical(name, failed);
  return failed ? std::filesystem::path() : place;
}

bool AreOneFile(const std::string& one, const std::string& other) {
  std::error_code failed;
  const bool same = std::filesystem::equivalent(one, other, failed);
  if (!failed) return same && std::filesystem::is_regular_file(one, failed);
  if (std::filesystem::exists(one, failed) || failed) return false;
  // Files that do not exist yet have only their names.
  const std::filesystem::path place = Place(one);
  return !place.empty() && place == Place(other);
}

bool MayShare(const Role& one, const Role& other) {
  const bool replaced = one.option == "--load" && other.option == "--save";
  return replaced || (!one.written && !other.written);
}

}  // namespace

void CheckFileConflicts(const Options& options) {
  const Roles roles = RolesOf(options);
  for (std::size_t i = 0; i < roles.size(); ++i) {
    for (std::size_t j = i + 1; j < roles.size(); ++j) {
      const Role& one = roles[i];
      const Role& other = roles[j];
      if (MayShare(one, other) || !AreOneFile(one.path, other.path)) continue;
      throw UsageError(one.option + " '" + one.path + "' and " + other.option + " '" + other.path +
                       "' are one file, which only one of them can use; give each its own");
    }
  }
}

}  // namespace board
