#include "qos/rate_control.h"

namespace monitor {
namespace {

constexpr char kReadFailed[] = "RateControl Read failed\n\r";

/// <queue> [<number>]: a range that runs past the last queue ends quietly.
int Show(int argc, ArgVector argv, std::uint8_t first) {
  std::uint8_t number = 1;
  if (argc == 3 && !ParseHex8(argv[2], number)) return kUsage;
  for (unsigned queue = first; queue < unsigned{first} + number; ++queue) {
    if (queue >= kRateQueues) return kDone;
    RateControl rate{};
    if (Failed(ReadRateControl(static_cast<std::uint8_t>(queue), rate))) return Fail(kReadFailed);
    RateControlPrint(rate, queue);
  }
  return kDone;
}

/// <queue> = <cir> <cbs> [enable|disable]: without the word the controller is switched on.
int Set(int argc, ArgVector argv, std::uint8_t queue) {
  RateControl rate{.cir = 0, .cbs = 0, .enable = 1};
  if (!WordIs(argv[2], "=") || !ParseHex16(argv[3], rate.cir) || !ParseHex16(argv[4], rate.cbs)) {
    return kUsage;
  }
  if (argc == 6 && !ParseKeyword(argv[5], kEnableWords, rate.enable)) return kUsage;
  if (Failed(WriteRateControl(queue, rate))) return Fail("RateControl Write failed\n\r");
  if (Failed(ReadRateControl(queue, rate))) return Fail(kReadFailed);
  RateControlPrint(rate, queue);
  return kDone;
}

}  // namespace

void RateControlPrint(const RateControl& rate, unsigned queue) {
  Print("QUEUE %2x Rate Control: ", queue);
  ConsolePuts(rate.enable != 0 ? "ENABLE\n\r" : "DISABLE\n\r");
  Print("  Committed Information Rate: %4x\n\r", rate.cir);
  Print("  Committed Bucket Size: %4x\n\r", rate.cbs);
}

int RateControlCommand(int argc, ArgVector argv) {
  std::uint8_t queue;
  if (argc < 2 || !ParseHexDigit(argv[1], queue) || queue >= kRateQueues) return kUsage;
  if (argc <= 3) return Show(argc, argv, queue);
  if (argc == 5 || argc == 6) return Set(argc, argv, queue);
  return kUsage;
}

}  // namespace monitor
