#include "board/ports/port.h"

namespace board {
namespace {

/// "tap:lan0" as "tap" and "lan0".
struct Parts {
  explicit Parts(const std::string& what) {
    const std::size_t colon = what.find(':');
    kind = what.substr(0, colon);
    if (colon != std::string::npos) rest = what.substr(colon + 1);
  }

  std::string kind;
  std::string rest;
};

}  // namespace

bool IsPort(const std::string& what) {
  const auto [kind, rest] = Parts(what);
  if (kind == "tap" || kind == "unix") return !rest.empty();
  // A comma alone names no file at all.
  if (kind == "pcap") return !rest.empty() && rest != ",";
  return what == "none";
}

std::unique_ptr<Port> OpenPort(const std::string& what, const PortOptions& options) {
  const auto [kind, rest] = Parts(what);
  if (kind == "tap") return OpenTapPort(rest);
  if (kind == "pcap") return OpenCapturePort(rest, options);
  if (kind == "unix") return OpenSocketPort(rest);
  return nullptr;
}

}  // namespace board
