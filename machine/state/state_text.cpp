#include "machine/state/state_text.h"

#include <memory>

#include "mac/frame.h"
#include "mac/packet_service.h"
#include "machine/state/state_json.h"
#include "machine/state/state_reader.h"
#include "machine/state/state_writer.h"
#include "machine/state/version1.h"

namespace board {
namespace {

constexpr char kFormat[] = "virtual-board state";

/// Goes up with every change of the format. Lower versions have to be read too.
constexpr unsigned kVersion = 2;

/// What the monitor keeps from one command to the next and a command shows or follows.
struct MonitorSettings {
  std::uint16_t receive_mode = monitor::ReceiveMode;
  bool arp_auto_reply = monitor::ArpAutoReply != 0;
  std::uint8_t transmit_cursor = monitor::TransmitCursor;

  void Apply() const {
    monitor::ReceiveMode = receive_mode;
    monitor::ArpAutoReply = arp_auto_reply ? 1 : 0;
    monitor::TransmitCursor = transmit_cursor;
  }

  void State(chip::StateArchive& archive) {
    archive.Count("receive_mode", receive_mode);
    const bool known = receive_mode == monitor::kReceiveManual ||
                       receive_mode == monitor::kReceiveAuto ||
                       receive_mode == monitor::kReceiveForward;
    archive.Require(known, "receive_mode", "is not a receive mode");
    archive.Flag("arp_auto_reply", arp_auto_reply);
    constexpr std::uint8_t kPastLast = monitor::kLastTransmitHandle + 1;
    archive.Count("transmit_cursor", transmit_cursor, kPastLast);
    archive.Require(transmit_cursor != 0, "transmit_cursor", "is below 1");
  }
};

/// Either direction.
void VisitState(chip::StateArchive& archive, chip::RouterChip& chip, MonitorSettings& settings,
                std::string& note) {
  std::string format = kFormat;
  archive.Text("format", format);
  archive.Require(format == kFormat, "format", std::string("is not '") + kFormat + "'");
  unsigned version = kVersion;
  archive.Count("version", version);
  archive.Require(version != 0, "version", "is below 1");
  archive.Require(version <= kVersion, "version",
                  "is " + std::to_string(version) +
                      ", which needs a newer virtual-board; this one " +
                      "reads states up to version " + std::to_string(kVersion));
  if (archive.Omits("note", note.empty())) {
    note.clear();
  } else {
    archive.Text("note", note);
  }
  archive.Group("monitor", [&] { settings.State(archive); });
  chip.State(archive);
}

/// Returns the note.
std::string Read(const nlohmann::json& state, chip::RouterChip& chip, MonitorSettings& settings) {
  StateReader reader(state);
  std::string note;
  VisitState(reader, chip, settings, note);
  reader.Finish();
  return note;
}

}  // namespace

std::string StateText(chip::RouterChip& chip, std::string note) {
  MonitorSettings settings;
  StateWriter writer;
  VisitState(writer, chip, settings, note);
  return writer.Text();
}

std::string ReplaceState(const std::string& text, chip::RouterChip& chip) {
  nlohmann::json state = ParseStateJson(text);
  if (state.value("version", nlohmann::json()).dump() == "1") ConvertVersion1(state);
  MonitorSettings settings;
  // What a chip of no account takes, the real one takes too.
  Read(state, *std::make_unique<chip::RouterChip>(), settings);
  std::string note = Read(state, chip, settings);
  settings.Apply();
  return note;
}

}  // namespace board
