#include "console/port_words.h"
#include "mac/forward_control.h"
#include "mac/frame.h"
#include "mac/packet_service.h"
#include "system/interrupt.h"

namespace monitor {
namespace {

constexpr std::array<Keyword, 2> kPriorityWords{{{"HIGH", 1}, {"LOW", 0}}};
constexpr std::array<Keyword, 3> kModeWords{
    {{"AUTO", kReceiveAuto}, {"MANUAL", kReceiveManual}, {"FORWARD", kReceiveForward}}};

/// A forwarding flag that the command shows and sets.
struct Flag {
  std::uint8_t ForwardControl::*field;
  const char* label;
};

constexpr Flag kWanToWan{&ForwardControl::filterWanToWan, "Filter WAN to WAN packets: "};
constexpr Flag kChecksum{&ForwardControl::dropChecksumErrors, "Drop Check sum error packets: "};

std::uint32_t DataAddressNow(std::uint8_t handle) {
  std::uint16_t base;
  ReadBufferBase(base);
  return FrameDataAddress(base, handle);
}

int ShowSettings() {
  std::uint16_t base;
  ReadBufferBase(base);
  Print("BASE ADDRESS: %4x0000", base);
  ConsolePuts("\n\rRECEIVING MODE: ");
  if (ReceiveMode == kReceiveForward) {
    ConsolePuts("FORWARD\n\r");
  } else if (ReceiveMode == kReceiveAuto) {
    ConsolePuts("AUTO\n\r");
  } else {
    ConsolePuts("MANUAL\n\r");
  }
  return kDone;
}

/// f|d [enable|disable]: the record is read twice even when it is only shown.
int SwitchFlag(int argc, ArgVector argv, const Flag& flag) {
  if (argc > 3) return kUsage;
  ForwardControl control;
  if (Failed(ReadForwardControl(control))) return kUsage;
  if (argc == 3) {
    if (!ParseKeyword(argv[2], kEnableWords, control.*flag.field)) return kUsage;
    if (Failed(WriteForwardControl(control))) return kUsage;
  }
  if (Failed(ReadForwardControl(control))) return kUsage;
  ConsolePuts(flag.label);
  ConsolePuts(control.*flag.field != 0 ? "ENABLE\n\r" : "DISABLE\n\r");
  return kDone;
}

/// b = <base addr>
int SetBase(int argc, ArgVector argv) {
  std::uint16_t base;
  if (argc != 4 || !WordIs(argv[2], "=") || !ParseHex16(argv[3], base)) return kUsage;
  WriteBufferBase(base);
  ReadBufferBase(base);
  Print("BASE ADDRESS: %4x0000\n\r", base);
  return kDone;
}

/// t <length> <handle> <port> <class> high|low
int Transmit(int argc, ArgVector argv) {
  std::uint16_t length;
  std::uint8_t handle;
  std::uint8_t port;
  std::uint8_t service_class;
  std::uint8_t high;
  if (argc != 7 || !ParseHex16(argv[2], length) || !ParseHex8(argv[3], handle) ||
      !ParseKeyword(argv[4], kPortWords, port) || !ParseHex8(argv[5], service_class) ||
      !ParseKeyword(argv[6], kPriorityWords, high)) {
    return kUsage;
  }
  if (Failed(TransmitFrame(port, service_class, high != 0, DataAddressNow(handle), length))) {
    return Fail("MAC Tx failed\n\r");
  }
  return kDone;
}

int ReceiveOne() {
  ReceivedFrame frame;
  if (Failed(ReceiveFrame(frame))) return Fail("MAC Rx failed\n\r");
  Print("Packet length=0x%03x    reason=0x%02x\n\r", frame.length, frame.reason);
  HexDump(frame.data, frame.length, FetchMemory);
  FreeFrameBuffer(frame.data);
  IntStatusWrite(kFrameReceivedEvent);
  return kDone;
}

/// r [= auto|manual|forward]
int Receive(int argc, ArgVector argv) {
  if (argc == 2) return ReceiveOne();
  std::uint8_t mode;
  if (argc != 4 || !WordIs(argv[2], "=") || !ParseKeyword(argv[3], kModeWords, mode)) return kUsage;
  ReceiveMode = mode;
  return kDone;
}

int ShowStatus(std::uint8_t handle) {
  std::uint8_t count;
  if (Failed(TxBufferStatus(DataAddressNow(handle), count))) {
    return Fail("MAC TxBufferStatus failed\n\r");
  }
  Print("STATUS OF BUFFER HANDLE%2x IS: ", handle);
  ConsolePuts(count != 0 ? "FRAME IS IN QUEUE\n\r" : "FRAME BEEN TRANSMITTED\n\r");
  return kDone;
}

/// s [<handle>]: further words do not matter.
int Status(int argc, ArgVector argv) {
  std::uint8_t handle;
  if (argc > 2) return ParseHex8(argv[2], handle) ? ShowStatus(handle) : kUsage;
  for (handle = 1; handle <= kLastTransmitHandle; ++handle) {
    if (const int result = ShowStatus(handle); result != kDone) return result;
  }
  return kDone;
}

}  // namespace

int FrameCommand(int argc, ArgVector argv) {
  if (argc == 1) return ShowSettings();
  const char* const form = argv[1];
  if (WordIs(form, "F")) return SwitchFlag(argc, argv, kWanToWan);
  if (WordIs(form, "D")) return SwitchFlag(argc, argv, kChecksum);
  if (WordIs(form, "B")) return SetBase(argc, argv);
  if (WordIs(form, "T")) return Transmit(argc, argv);
  if (WordIs(form, "R")) return Receive(argc, argv);
  if (WordIs(form, "S")) return Status(argc, argv);
  return kUsage;
}

}  // namespace monitor
