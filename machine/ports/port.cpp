#include "machine/ports/port.h"

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
  const auto [in, out] = CapturesOf(what);
  // Nothing may follow a second comma.
  if (kind == "pcap") return !(in.empty() && out.empty()) && out.find(',') == std::string::npos;
  return what == "none";
}

CaptureNames CapturesOf(const std::string& what) {
  const auto [kind, rest] = Parts(what);
  if (kind != "pcap") return {};
  const std::size_t comma = rest.find(',');
  return {rest.substr(0, comma), comma == std::string::npos ? "" : rest.substr(comma + 1)};
}

std::unique_ptr<Port> OpenPort(const std::string& what, const PortOptions& options) {
  const auto [kind, rest] = Parts(what);
  if (kind == "tap") return OpenTapPort(rest);
  if (kind == "pcap") return OpenCapturePort(CapturesOf(what), options);
  if (kind == "unix") return OpenSocketPort(rest);
  return nullptr;
}

}  // namespace board
