#include "core/long_wait.h"

#include "console/port_words.h"
#include "qos/qos.h"

namespace monitor {
namespace {

constexpr char kReadSystemFailed[] = "Read System QoS failed\n\r";
constexpr char kReadPortFailed[] = "Read Port QoS failed\n\r";
constexpr char kReadQueueFailed[] = "Read Queue QoS failed\n\r";

constexpr std::array<Keyword, 2> kModeWords{{{"MODE1", 0}, {"MODE2", 1}}};

const char* PortName(std::uint8_t port) {
  for (const Keyword& name : kPortWords) {
    if (name.value == port) return name.word;
  }
  return "";
}

/// The block ends without a line end.
void PrintSystem(const SystemQos& qos) {
  Print("MULTICAST HIGH PRIORITY BUFFERS: %2x", qos.mcasth);
  Print("\tLOW PRIORITY BUFFERS: %2x", qos.mcastl);
  ConsolePuts("\n\rRED ENABLE: ");
  ConsolePuts(qos.redEnable != 0 ? "TRUE" : "FALSE");
  Print("\tRED SHARE POOL: %2x", qos.sharepool);
  Print("\tDROP BUFFER THRESHOLD: %2x", qos.bufthrhd);
  Print("\n\rXON THRESHOLD: %2x", qos.xonthrhd);
  Print("\tXOFF THRESHOLD: %2x", qos.xoffthrhd);
  Print("\tNO_BUF THRESHOLD: %2x", qos.no_buf);
}

/// The block begins with a line end and ends without one.
void PrintQueue(const QueueQos& qos) {
  Print("\n\rRED LOW THRESHOLD: %2x", qos.lowthrhd);
  Print("\tHIGH THRESHOLD: %2x", qos.highthrhd);
  Print("\n\rLOW DROP: %2x(0x%2x/0x20)", qos.lowdrop, qos.lowdrop);
  Print("\tHIGH DROP: %2x(0x%2x/0x20)", qos.highdrop, qos.highdrop);
  Print("\n\rCREDIT: %2x", qos.credit);
}

int ShowSystem() {
  SystemQos qos{};
  if (Failed(ReadSystemQos(qos))) return Fail(kReadSystemFailed);
  PrintSystem(qos);
  return kDone;
}

/// <port>
int ShowPort(ArgVector argv) {
  std::uint8_t port;
  std::uint8_t mode;
  if (!ParseKeyword(argv[1], kPortWords, port)) return kUsage;
  if (Failed(ReadPortQos(port, mode))) return Fail(kReadPortFailed);
  Print("PORT: %s QOS MODE: MODE%d", PortName(port), mode + 1);
  return kDone;
}

/// <port> <queue>: the queue is the driver's to refuse, and the CPU port is not named.
int ShowQueue(ArgVector argv) {
  std::uint8_t port;
  std::uint8_t queue;
  if (!ParseKeyword(argv[1], kPortWords, port) || !ParseHex8(argv[2], queue)) return kUsage;
  QueueQos qos{};
  if (Failed(ReadQueueQos(port, queue, qos))) return Fail(kReadQueueFailed);
  ConsolePuts("PORT: ");
  if (port != kPortCpu) ConsolePuts(PortName(port));
  Print("QUEUE: %2x", queue);
  PrintQueue(qos);
  return kDone;
}

/// [red] [<no_buf>]: a word that is neither is retried forever; false when the operator has ended
/// that.
bool TakeSystemWord(const char* word, SystemQos& qos) {
  if (WordIs(word, "RED")) {
    qos.redEnable = 1;
    return true;
  }
  LongWait wait;
  while (!ParseHex8(word, qos.no_buf)) {
    if (wait.GivenUp()) return false;
  }
  return true;
}

/// = <mcasth> <mcastl> <sharepool> <bufthrhd> <xonthrhd> <xoffthrhd> [red] [<no_buf>]: RED is off
/// unless given, the no-buffer threshold stays.
int SetSystem(int argc, ArgVector argv) {
  if (argc < 8 || argc > 10) return kUsage;
  SystemQos qos{};
  if (!ParseHex8(argv[2], qos.mcasth) || !ParseHex8(argv[3], qos.mcastl) ||
      !ParseHex8(argv[4], qos.sharepool) || !ParseHex8(argv[5], qos.bufthrhd) ||
      !ParseHex8(argv[6], qos.xonthrhd) || !ParseHex8(argv[7], qos.xoffthrhd)) {
    return kUsage;
  }
  SystemQos held{};
  if (Failed(ReadSystemQos(held))) return Fail(kReadSystemFailed);
  qos.no_buf = held.no_buf;
  for (int i = 8; i < argc; ++i) {
    if (!TakeSystemWord(argv[i], qos)) return kUsage;
  }
  if (Failed(WriteSystemQos(qos))) return Fail("Write System QoS failed\n\r");
  if (Failed(ReadSystemQos(qos))) return Fail(kReadSystemFailed);
  ConsolePuts("\n\r");
  PrintSystem(qos);
  return kDone;
}

/// <port> = <qosmode>
int SetPort(ArgVector argv) {
  std::uint8_t port;
  std::uint8_t mode;
  if (!ParseKeyword(argv[1], kPortWords, port) || !ParseKeyword(argv[3], kModeWords, mode)) {
    return kUsage;
  }
  if (Failed(WritePortQos(port, mode))) return Fail("Write Port QoS failed\n\r");
  if (Failed(ReadPortQos(port, mode))) return Fail(kReadPortFailed);
  Print("port: %s QOS MODE: MODE%d", PortName(port), mode + 1);
  return kDone;
}

/// <port> <queue> = <lowthrhd> <highthrhd> <lowdrop> <highdrop> <credit>: queue and drop levels
/// are the driver's to refuse.
int SetQueue(int argc, ArgVector argv) {
  std::uint8_t port;
  std::uint8_t queue;
  QueueQos qos{};
  if (argc != 9 || !ParseKeyword(argv[1], kPortWords, port) || !ParseHex8(argv[2], queue) ||
      !WordIs(argv[3], "=") || !ParseHex8(argv[4], qos.lowthrhd) ||
      !ParseHex8(argv[5], qos.highthrhd) || !ParseHex8(argv[6], qos.lowdrop) ||
      !ParseHex8(argv[7], qos.highdrop) || !ParseHex8(argv[8], qos.credit)) {
    return kUsage;
  }
  if (Failed(WriteQueueQos(port, queue, qos))) return Fail("Write Queue QoS failed\n\r");
  if (Failed(ReadQueueQos(port, queue, qos))) return Fail(kReadQueueFailed);
  Print("PORT: %s\tQUEUE: %2x", PortName(port), queue);
  PrintQueue(qos);
  return kDone;
}

}  // namespace

int QosCommand(int argc, ArgVector argv) {
  if (argc == 1) return ShowSystem();
  if (argc == 2) return ShowPort(argv);
  if (argc == 3) return ShowQueue(argv);
  if (WordIs(argv[1], "=")) return SetSystem(argc, argv);
  if (argc == 4 && WordIs(argv[2], "=")) return SetPort(argv);
  return SetQueue(argc, argv);
}

}  // namespace monitor
