#include "mac/packet_service.h"

#include "console/console.h"
#include "core/bus.h"
#include "core/port_id.h"
#include "mac/frame.h"
#include "mac/station_address.h"
#include "net/arp.h"
#include "net/ethernet.h"
#include "system/interrupt.h"

namespace monitor {

std::uint16_t ReceiveMode = kReceiveManual;
std::uint16_t ArpAutoReply = 0;

namespace {

template <std::size_t N>
using Bytes = std::array<std::uint8_t, N>;

/// N byte loads of frame buffer memory in increasing order. The target address of an ARP body lies
/// two bytes past a four-byte boundary, so fields are reached byte by byte.
template <std::size_t N>
Bytes<N> Load(std::uint32_t address) {
  Bytes<N> bytes;
  for (std::uint32_t i = 0; i < N; ++i) bytes[i] = MemoryLoad8(address + i);
  return bytes;
}

/// N byte stores in increasing order.
template <std::size_t N>
void Store(std::uint32_t address, const Bytes<N>& bytes) {
  for (std::uint32_t i = 0; i < N; ++i) MemoryStore8(address + i, bytes[i]);
}

constexpr Bytes<4> NetworkOrder(std::uint32_t address) {
  return {static_cast<std::uint8_t>(address >> 24), static_cast<std::uint8_t>(address >> 16),
          static_cast<std::uint8_t>(address >> 8), static_cast<std::uint8_t>(address)};
}

/// The reply is sent from the receive buffer; whether that succeeds makes no difference.
void AnswerArp(const ReceivedFrame& frame) {
  if (Failed(BuildArpReply(frame.port, frame.data))) return;
  Print("\n\reply ARP packet\n\r");
  HexDump(frame.data, frame.length, FetchMemory);
  (void)TransmitFrame(frame.port, 0, false, frame.data, frame.length);
}

void Forward(const ReceivedFrame& frame) {
  std::uint32_t copy;
  if (Failed(AllocTxBuffer(copy))) {
    ConsolePuts("\n\r!!!!!Fail to allocate Tx buffer!!!!!\n\r");
    return;
  }
  MemoryCopy(copy, frame.data, frame.length);
  if (Failed(TransmitFrame(kPortWan, 0, false, copy, frame.length))) {
    ConsolePuts("\n\r!!!!Tx fail!!!!\n\r");
  }
  FreeFrameBuffer(copy);
}

void Show(const ReceivedFrame& frame) {
  Print("\n\rPacket length=0x%03x    reason=0x%02x\n\r", frame.length, frame.reason);
  HexDump(frame.data, frame.length, FetchMemory);
}

}  // namespace

bool PacketServiceOn() { return ReceiveMode != kReceiveManual || ArpAutoReply != 0; }

bool PacketService() {
  if (!PacketServiceOn()) return false;
  ReceivedFrame frame;
  if (Failed(ReceiveFrame(frame))) return false;
  if (ArpAutoReply != 0) AnswerArp(frame);
  if (ReceiveMode == kReceiveForward) Forward(frame);
  if (ReceiveMode == kReceiveAuto) Show(frame);
  FreeFrameBuffer(frame.data);
  IntStatusWrite(kFrameReceivedEvent);
  return true;
}

DriverStatus BuildArpReply(std::uint8_t port, std::uint32_t frame) {
  if (Load<2>(frame + net::kEtherType) != net::kEtherTypeArp) return DriverStatus::kRefused;
  if (Load<2>(frame + net::kArpOperation) != net::kArpRequest) return DriverStatus::kRefused;
  std::uint32_t own_address;
  if (Failed(ReadIpAddr(port, own_address))) return DriverStatus::kRefused;

  const Bytes<4> target_ip = Load<4>(frame + net::kArpTargetIp);
  if (target_ip == NetworkOrder(own_address)) {
    const Bytes<4> sender_ip = Load<4>(frame + net::kArpSenderIp);
    Store(frame + net::kArpSenderIp, target_ip);
    Store(frame + net::kArpTargetIp, sender_ip);
  }
  Store(frame + net::kArpOperation, net::kArpReply);
  MacAddress own_mac;
  (void)ReadMacAddr(kPortCpu, own_mac);
  Store(frame + net::kArpTargetMac, Load<6>(frame + net::kArpSenderMac));
  Store(frame + net::kArpSenderMac, own_mac);
  Store(frame + net::kDestinationMac, Load<6>(frame + net::kSourceMac));
  Store(frame + net::kSourceMac, own_mac);
  return DriverStatus::kOk;
}

}  // namespace monitor
