#include "machine/state/state_text.h"

#include <memory>

#include "mac/frame.h"
#include "mac/packet_service.h"
#include "machine/state/state_reader.h"
#include "machine/state/state_writer.h"

namespace board {
namespace {

constexpr char kFormat[] = "virtual-board state";

/// Goes up with every change of the format. Lower versions have to be read too; this is the first.
constexpr unsigned kVersion = 1;

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
    archive.Require(known, "receive_mode", "is no receive mode");
    archive.Flag("arp_auto_reply", arp_auto_reply);
    constexpr std::uint8_t kPastLast = monitor::kLastTransmitHandle + 1;
    archive.Count("transmit_cursor", transmit_cursor, kPastLast);
    archive.Require(transmit_cursor != 0, "transmit_cursor", "is below 1");
  }
};

/// Either direction.
template <typename Archive>
void VisitState(Archive& archive, chip::RouterChip& chip, MonitorSettings& settings) {
  archive.Text("format", kFormat);
  unsigned version = kVersion;
  archive.Count("version", version);
  archive.Require(version != 0, "version", "is below 1");
  archive.Require(version <= kVersion, "version",
                  "is " + std::to_string(version) +
                      ", which needs a newer virtual-board; this one " +
                      "reads states up to version " + std::to_string(kVersion));
  archive.Group("monitor", [&] { settings.State(archive); });
  chip.State(archive);
}

void Read(const std::string& text, chip::RouterChip& chip, MonitorSettings& settings) {
  StateReader reader(text);
  VisitState(reader, chip, settings);
  reader.Finish();
}

}  // namespace

std::string StateText(chip::RouterChip& chip) {
  MonitorSettings settings;
  StateWriter writer;
  VisitState(writer, chip, settings);
  return writer.Text();
}

void ReplaceState(const std::string& text, chip::RouterChip& chip) {
  MonitorSettings settings;
  // What a scratch chip accepts, the real one accepts too.
  Read(text, *std::make_unique<chip::RouterChip>(), settings);
  Read(text, chip, settings);
  settings.Apply();
}

}  // namespace board
