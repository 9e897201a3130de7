// Frame buffers, transmit, receive, the packet service.
#include "mac/frame.h"

#include "hostile/explore.h"
#include "hostile/models.h"
#include "mac/packet_service.h"

namespace hostile {
namespace {

using monitor::ReceivedFrame;
using std::uint16_t;
using std::uint32_t;
using std::uint8_t;

constexpr uint16_t kBase = 0x1234;

DriverStatus ReadBufferBase(uint16_t& base) {
  base = R16(0x10C);
  return kOk;
}
DriverStatus WriteBufferBase(uint16_t base) {
  W16(0x10C, base);
  return kOk;
}

uint32_t FrameDataAddress(uint16_t base, uint8_t handle) {
  return base * 65536U + handle * 2048U + 32;
}

bool g_base_changes = true;  ///< Some paths have another base at every load.

/// Each place that needs the base loads it.
uint16_t Base() {
  const bool changed = g_base_changes && Choose(2) == 1;
  return changed ? R16(0x10C) : R16Is(0x10C, kBase);
}

uint8_t Handle(uint32_t data, uint16_t base) {
  return static_cast<uint8_t>((data - base * 65536U - 32) / 2048);
}

DriverStatus TransmitFrame(uint8_t port, uint8_t service_class, bool high, uint32_t data,
                           uint16_t length) {
  if (service_class > 3 || (port != 1 && port != 2 && port != 4 && port != 8)) return kRefused;
  const uint16_t base = Base();
  if (!Map(base)) return kNotReady;
  Lock();
  MW16(data - 32, length);
  W8(0x42A, port | service_class * 16U | (high ? 0x40U : 0U));
  W8(0x429, Handle(data, base));
  Set(0x42B, 0x01);
  Delay(0x42B, 99);
  Clear(0x42B, 0x01);
  Unlock();
  return Await(0x42B, 0x02, 0x03) ? kOk : kNotReady;
}

/// Lengths of received frames. The last makes paths long.
constexpr uint16_t kLengths[] = {42, 0, 1, 17, 0x7FF};
unsigned g_lengths = 5;  ///< How many of them occur.

DriverStatus ReceiveFrame(ReceivedFrame& frame) {
  const uint16_t base = Base();
  if ((R16Halves(0x210, 0x0010) & 0x0010) == 0) return kNothing;
  if (!Map(base)) return kNotReady;
  const uint32_t start = base * 65536U + R8(0x426) * 2048U;
  const uint16_t length = kLengths[Choose(g_lengths)];
  M16Is(start, static_cast<uint16_t>((Random() & 0xF800) | length));
  frame.length = length;
  const uint8_t port = static_cast<uint8_t>(1U << Choose(4));
  M8Is(start + 9, static_cast<uint8_t>((Random() & 0xF0) | port));
  frame.port = port;
  frame.reason = M8(start + 10) & 0x1F;
  frame.data = start + 32;
  Lock();
  Set(0x427, 0x02);
  Clear(0x427, 0x02);
  Unlock();
  return kOk;
}

/// Numbers of uses that the chip counts for a buffer, the first on the first path. A transmit
/// buffer with one use is free.
std::vector<uint8_t> g_uses;

DriverStatus TxBufferStatus(uint32_t data, uint8_t& count) {
  const uint8_t handle = Handle(data, Base());
  if (handle == 0) return kRefused;
  Lock();
  W8(0x431, handle);
  W8(0x430, (R8(0x430) | 0x01) & 0xFD);
  Clear(0x430, 0x01);
  const bool done = Await(0x430, 0x02, 0x03);
  Unlock();
  if (!done) return kNotReady;
  const unsigned uses = g_uses[Choose(static_cast<unsigned>(g_uses.size()))];
  R8Is(0x430, static_cast<uint8_t>((Random() & 0xC3) | uses << 2));
  count = static_cast<uint8_t>(handle <= 15 ? uses - 1 : uses);
  return kOk;
}

uint8_t g_cursor = 1;  ///< Transmit handle that the next allocation tries first.

DriverStatus AllocTxBuffer(uint32_t& data) {
  unsigned wraps = 0;
  for (;;) {
    Part();
    data = FrameDataAddress(Base(), g_cursor);
    uint8_t count;
    if (TxBufferStatus(data, count) != kOk) return kNotReady;
    ++g_cursor;
    if (g_cursor > 15) {
      ++wraps;
      if (wraps > 1) return kNotReady;
      g_cursor = 1;
    }
    if (count == 0) return kOk;
  }
}

DriverStatus FreeFrameBuffer(uint32_t data) {
  const uint8_t handle = Handle(data, Base());
  if (handle == 0) return kRefused;
  if (handle <= 15) return kOk;
  Lock();
  W8(0x428, handle);
  W8(0x427, 0x01);
  Clear(0x427, 0x01);
  Unlock();
  return Await(0x427, 0x04, 0x07) ? kOk : kNotReady;
}

TEST(Hostile, ReadBufferBase) {
  Explore(ReadBufferBase, monitor::ReadBufferBase, Junk<uint16_t>());
}
TEST(Hostile, WriteBufferBase) {
  Explore(WriteBufferBase, monitor::WriteBufferBase, Junk<uint16_t>());
}
TEST(Hostile, FrameDataAddress) {
  for (const uint8_t handle : Bytes{0, 1, 15, 16, 255}) {
    for (const unsigned base : {0U, 1U, 0x1234U, 0xFFFFU}) {
      Explore(FrameDataAddress, monitor::FrameDataAddress, static_cast<uint16_t>(base), handle);
    }
  }
}
TEST(Hostile, TransmitFrame) {
  for (const uint8_t port : Bytes{0, 1, 2, 3, 4, 7, 8, 9, 16, 255}) {
    for (const uint8_t service_class : Bytes{0, 1, 2, 3, 4, 255}) {
      for (const bool high : {false, true}) {
        Explore(TransmitFrame, monitor::TransmitFrame, port, service_class, high, Junk<uint32_t>(),
                Junk<uint16_t>());
      }
    }
  }
}
TEST(Hostile, ReceiveFrame) {
  for (unsigned round = 0; round < 16; ++round) {
    Explore(ReceiveFrame, monitor::ReceiveFrame, Junk<ReceivedFrame>());
  }
}

TEST(Hostile, TxBufferStatus) {
  g_uses = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
  for (const uint8_t handle : Bytes{0, 1, 2, 14, 15, 16, 17, 128, 255}) {
    Explore(TxBufferStatus, monitor::TxBufferStatus, FrameDataAddress(kBase, handle),
            Junk<uint8_t>());
  }
  for (unsigned round = 0; round < 16; ++round) {
    Explore(TxBufferStatus, monitor::TxBufferStatus, Junk<uint32_t>(), Junk<uint8_t>());
  }
}
TEST(Hostile, FreeFrameBuffer) {
  for (const uint8_t handle : Bytes{0, 1, 2, 14, 15, 16, 17, 128, 255}) {
    Explore(FreeFrameBuffer, monitor::FreeFrameBuffer, FrameDataAddress(kBase, handle));
  }
  for (unsigned round = 0; round < 64; ++round) {
    Explore(FreeFrameBuffer, monitor::FreeFrameBuffer, Junk<uint32_t>());
  }
}

unsigned g_moves = 0;  ///< Allocations that brought the cursor where a path begins.

/// Successes take the cursor to 1 to 15, a failure to 16.
void MoveModelCursor(unsigned cursor) {
  const std::vector<uint8_t> uses =
      std::exchange(g_uses, {static_cast<uint8_t>(cursor < 16 ? 1 : 2)});
  Quiet(true);
  uint32_t data;
  for (g_moves = 0; g_cursor != cursor; ++g_moves) (void)AllocTxBuffer(data);
  Quiet(false);
  g_uses = uses;
}

void MoveDriverCursor() {
  uint32_t data;
  for (; g_moves != 0; --g_moves) (void)monitor::AllocTxBuffer(data);
}

DriverStatus AllocFrom(unsigned cursor, uint32_t& data) {
  MoveModelCursor(cursor);
  return AllocTxBuffer(data);
}

DriverStatus DriverAllocFrom(unsigned /*cursor*/, uint32_t& data) {
  MoveDriverCursor();
  return monitor::AllocTxBuffer(data);
}

TEST(Hostile, AllocTxBuffer) {
  g_uses = {15, 1, 0};
  for (const unsigned cursor : {1U, 8U, 15U, 16U}) {
    Explore({.parts = 1}, AllocFrom, DriverAllocFrom, cursor, Junk<uint32_t>());
  }
}

/// A byte of a frame that is compared with `value`.
bool Matches(uint32_t address, uint8_t value) {
  const bool equal = Choose(2) == 0;
  M8Is(address, static_cast<uint8_t>(equal ? value : value ^ (1U << Random() % 8)));
  return equal;
}

template <std::size_t N>
std::array<uint8_t, N> Fetch(uint32_t address) {
  std::array<uint8_t, N> bytes;
  for (uint8_t& byte : bytes) byte = M8(address++);
  return bytes;
}

template <typename Array>
void Put(uint32_t address, const Array& bytes) {
  for (const uint8_t byte : bytes) MW8(address++, byte);
}

DriverStatus BuildArpReply(uint8_t port, uint32_t frame) {
  const bool arp_high = Matches(frame + 12, 0x08);
  const bool arp_low = Matches(frame + 13, 0x06);
  if (!arp_high || !arp_low) return kRefused;
  const bool request_high = Matches(frame + 20, 0x00);
  const bool request_low = Matches(frame + 21, 0x01);
  if (!request_high || !request_low) return kRefused;

  uint32_t own;
  if (ReadIpAddr(port, own) != kOk) return kRefused;
  bool for_us = true;
  std::array<uint8_t, 4> target;
  for (unsigned i = 0; i < 4; ++i) {
    target[i] = static_cast<uint8_t>(own >> (24 - 8 * i));
    for_us &= Matches(frame + 38 + i, target[i]);
  }
  if (for_us) {
    const auto sender = Fetch<4>(frame + 28);
    Put(frame + 28, target);
    Put(frame + 38, sender);
  }
  Put(frame + 20, Bytes{0, 2});
  std::array<uint8_t, 6> cpu;
  ReadMacAddr(8, cpu);
  Put(frame + 32, Fetch<6>(frame + 22));
  Put(frame + 22, cpu);
  Put(frame, Fetch<6>(frame + 6));
  Put(frame + 6, cpu);
  return kOk;
}

TEST(Hostile, BuildArpReply) {
  for (const uint8_t port : Bytes{0, 1, 2, 3, 4, 8, 16, 255}) {
    Explore(BuildArpReply, monitor::BuildArpReply, port, Junk<uint32_t>());
  }
}

void Dump(const ReceivedFrame& frame) {
  for (unsigned i = 0; i < frame.length; ++i) M8(frame.data + i);
}

bool PacketService(unsigned mode, unsigned arp) {
  if (mode == 0 && arp == 0) return false;
  ReceivedFrame frame;
  Part();
  if (hostile::ReceiveFrame(frame) != kOk) return false;
  Part();
  if (arp != 0 && BuildArpReply(frame.port, frame.data) == kOk) {
    Dump(frame);
    Part();
    (void)TransmitFrame(frame.port, 0, false, frame.data, frame.length);
  }
  if (mode == 3) {
    uint32_t copy;
    if (AllocTxBuffer(copy) == kOk) {
      for (unsigned i = 0; i < frame.length; ++i) MW8(copy + i, M8(frame.data + i));
      Part();
      (void)TransmitFrame(1, 0, false, copy, frame.length);
      Part();
      (void)FreeFrameBuffer(copy);
    }
  }
  if (mode == 1) Dump(frame);
  Part();
  (void)FreeFrameBuffer(frame.data);
  IntStatusWrite(0x0010);
  return true;
}

bool Serve(unsigned mode, unsigned arp, unsigned cursor) {
  MoveModelCursor(cursor);
  return PacketService(mode, arp);
}

bool DriverServe(unsigned mode, unsigned arp, unsigned /*cursor*/) {
  MoveDriverCursor();
  monitor::ReceiveMode = static_cast<uint16_t>(mode);
  monitor::ArpAutoReply = static_cast<uint16_t>(arp);
  return monitor::PacketService();
}

TEST(Hostile, PacketService) {
  for (const unsigned mode : {0U, 1U, 3U}) {
    for (const unsigned arp : {0U, 1U, 2U}) {
      g_uses = {1, 2};  // The first path finds a free buffer,
      g_base_changes = false;
      g_lengths = 2;
      Explore({.parts = arp == 1 ? 2U : 1U}, Serve, DriverServe, mode, arp, 3U);
      g_uses = {2, 1};  // or none.
      g_base_changes = true;
      g_lengths = 5;
      Explore({.parts = 1}, Serve, DriverServe, mode, arp, 15U);
    }
  }
}

bool PacketServiceOn(unsigned mode, unsigned arp) { return mode != 0 || arp != 0; }

bool DriverServiceOn(unsigned mode, unsigned arp) {
  monitor::ReceiveMode = static_cast<uint16_t>(mode);
  monitor::ArpAutoReply = static_cast<uint16_t>(arp);
  return monitor::PacketServiceOn();
}

TEST(Hostile, PacketServiceOn) {
  for (const unsigned mode : {0U, 1U, 3U}) {
    for (const unsigned arp : {0U, 1U, 0x100U}) {
      Explore(PacketServiceOn, DriverServiceOn, mode, arp);
    }
  }
}

}  // namespace
}  // namespace hostile
