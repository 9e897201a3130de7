// QoS, rate control.
#include "hostile/explore.h"
#include "hostile/steps.h"

namespace hostile {
namespace {

using monitor::QueueQos;
using monitor::RateControl;
using monitor::SystemQos;
using std::uint16_t;
using std::uint8_t;

DriverStatus ReadSystemQos(SystemQos& qos) {
  const uint8_t drop = R8(0x823);
  qos.redEnable = drop & 0x01;
  qos.bufthrhd = drop & 0xFE;
  qos.mcasth = R8(0x821);
  qos.mcastl = R8(0x822);
  qos.sharepool = R8(0x820);
  qos.xonthrhd = R8(0x845);
  qos.xoffthrhd = R8(0x846);
  qos.no_buf = R8(0x844);
  return kOk;
}

DriverStatus WriteSystemQos(const SystemQos& qos) {
  Lock();
  W8(0x823, qos.redEnable | (qos.bufthrhd & 0xFEU));
  W8(0x821, qos.mcasth);
  W8(0x822, qos.mcastl);
  W8(0x820, qos.sharepool);
  W8(0x845, qos.xonthrhd);
  W8(0x846, qos.xoffthrhd);
  W8(0x844, qos.no_buf);
  Unlock();
  return kOk;
}

bool IsPort(uint8_t port) { return port == 1 || port == 2 || port == 4 || port == 8; }
/// WAN, LAN, DMZ and CPU as 0 to 3.
unsigned Number(uint8_t port) { return port == 8 ? 3 : port >> 1; }
unsigned ModeOffset(uint8_t port) { return port == 8 ? 0x108 : Number(port); }

DriverStatus ReadPortQos(uint8_t port, uint8_t& mode) {
  if (!IsPort(port)) return kRefused;
  mode = R8(ModeOffset(port), 0xC0) >> 6;
  return kOk;
}

DriverStatus WritePortQos(uint8_t port, uint8_t mode) {
  if (!IsPort(port) || mode > 1) return kRefused;
  Lock();
  W8(ModeOffset(port), (R8(ModeOffset(port)) & 0x3FU) + mode * 64U);
  Unlock();
  return kOk;
}

DriverStatus ReadQueueQos(uint8_t port, unsigned queue, QueueQos& qos) {
  if (!IsPort(port) || queue > 3) return kRefused;
  qos.lowthrhd = R8(0x800 + 8 * Number(port) + 2 * queue);
  qos.highthrhd = R8(0x801 + 8 * Number(port) + 2 * queue);
  const uint8_t drop = R8(0x824 + 4 * Number(port) + queue);
  qos.lowdrop = drop & 0x0F;
  qos.highdrop = drop >> 4;
  qos.credit = R8(0x834 + 4 * Number(port) + queue);
  return kOk;
}

DriverStatus WriteQueueQos(uint8_t port, unsigned queue, const QueueQos& qos) {
  if (!IsPort(port) || queue > 3 || qos.lowdrop > 15 || qos.highdrop > 15) return kRefused;
  Lock();
  W8(0x800 + 8 * Number(port) + 2 * queue, qos.lowthrhd);
  W8(0x801 + 8 * Number(port) + 2 * queue, qos.highthrhd);
  W8(0x824 + 4 * Number(port) + queue, qos.lowdrop | qos.highdrop * 16U);
  W8(0x834 + 4 * Number(port) + queue, qos.credit);
  Unlock();
  return kOk;
}

DriverStatus WriteRateControl(uint8_t queue, const RateControl& rate) {
  W16(0x020 + 4U * queue, rate.cir);
  W16(0x022 + 4U * queue, (rate.cbs & 0x7FFFU) | (rate.enable != 0 ? 0x8000U : 0U));
  return kOk;
}

DriverStatus ReadRateControl(uint8_t queue, RateControl& rate) {
  rate.cir = R16(0x020 + 4U * queue);
  const uint16_t second = R16(0x022 + 4U * queue);
  rate.cbs = second & 0x7FFF;
  rate.enable = static_cast<uint8_t>(second >> 15);
  return kOk;
}

constexpr uint8_t kPorts[] = {0, 1, 2, 3, 4, 5, 8, 9, 16, 255};
constexpr unsigned kQueues[] = {0, 1, 2, 3, 4, 255, 256, ~0U};

TEST(Hostile, ReadSystemQos) { Explore(ReadSystemQos, monitor::ReadSystemQos, Junk<SystemQos>()); }
TEST(Hostile, WriteSystemQos) {
  for (const uint8_t red : Bytes{0, 1}) {
    auto qos = Junk<SystemQos>();
    qos.redEnable = red;
    Explore(WriteSystemQos, monitor::WriteSystemQos, qos);
    qos.bufthrhd ^= 1;
    Explore(WriteSystemQos, monitor::WriteSystemQos, qos);
  }
}
TEST(Hostile, ReadPortQos) {
  for (const uint8_t port : kPorts) {
    Explore(ReadPortQos, monitor::ReadPortQos, port, Junk<uint8_t>());
  }
}
TEST(Hostile, WritePortQos) {
  for (const uint8_t port : kPorts) {
    for (const uint8_t mode : Bytes{0, 1, 2, 3, 255}) {
      Explore(WritePortQos, monitor::WritePortQos, port, mode);
    }
  }
}
TEST(Hostile, ReadQueueQos) {
  for (const uint8_t port : kPorts) {
    for (const unsigned queue : kQueues) {
      Explore(ReadQueueQos, monitor::ReadQueueQos, port, queue, Junk<QueueQos>());
    }
  }
}
TEST(Hostile, WriteQueueQos) {
  for (const uint8_t port : kPorts) {
    for (const unsigned queue : kQueues) {
      for (const uint8_t low : Bytes{0, 9, 15, 16, 255}) {
        for (const uint8_t high : Bytes{0, 6, 15, 16, 255}) {
          auto qos = Junk<QueueQos>();
          qos.lowdrop = low;
          qos.highdrop = high;
          Explore(WriteQueueQos, monitor::WriteQueueQos, port, queue, qos);
        }
      }
    }
  }
}
TEST(Hostile, WriteRateControl) {
  for (const uint8_t queue : Bytes{0, 1, 2, 3, 4, 255}) {
    for (const uint8_t enable : Bytes{0, 1}) {
      auto rate = Junk<RateControl>();
      rate.enable = enable;
      Explore(WriteRateControl, monitor::WriteRateControl, queue, rate);
      rate.cbs ^= 0x8000;
      Explore(WriteRateControl, monitor::WriteRateControl, queue, rate);
    }
  }
}
TEST(Hostile, ReadRateControl) {
  for (const uint8_t queue : Bytes{0, 1, 2, 3, 4, 255}) {
    for (unsigned round = 0; round < 8; ++round) {
      Explore(ReadRateControl, monitor::ReadRateControl, queue, Junk<RateControl>());
    }
  }
}

}  // namespace
}  // namespace hostile
