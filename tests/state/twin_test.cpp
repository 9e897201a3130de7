// A chip and the chip that was loaded from its state do the same, whatever comes next: random
// accesses and events are given to both.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>

#include "machine/state/state_text.h"

namespace {

/// Registers that belong together, where an engine's command and index lie among them, and the
/// commands that read and write the entry under the index.
struct Block {
  std::uint32_t first;
  std::uint32_t past_last;
  std::uint32_t command = 0;
  std::uint32_t index = 0;
  std::uint8_t read = 0x04;
  std::uint8_t write = 0x0C;
};

constexpr Block kBlocks[] = {
    {0x000, 0x010},                            // ports, TDM
    {0x020, 0x040},                            // rate control
    {0x100, 0x134},                            // reset, forwarding, chip selects
    {0x200, 0x254},                            // timers, interrupts, GPIO
    {0x300, 0x308},                            // UART
    {0x400, 0x432},                            // addresses, MII, frames
    {0x500, 0x550, 0x51C, 0x51A, 0x02, 0x0E},  // NAT
    {0x600, 0x618, 0x60D, 0x60E},              // routes
    {0x620, 0x630, 0x621, 0x622},              // multicast
    {0x630, 0x648, 0x63B, 0x63C},              // ARP
    {0x700, 0x758, 0x720, 0x721},              // classifier
    {0x720, 0x738, 0x720, 0x721, 0x04, 0x1C},  // its counters
    {0x800, 0x848},                            // QoS
    {0x850, 0x860, 0x85C, 0x85D},              // statistic counters
    {0xA00, 0xA10, 0xA0F, 0xA0E},              // PPPoE sessions
    {0xA10, 0xA18, 0xA16, 0xA14},              // PDR
    {0xA20, 0xA40, 0xA3A, 0xA39},              // PXT
};

class Random {
 public:
  std::uint32_t Below(std::uint32_t limit) { return static_cast<std::uint32_t>(engine_() % limit); }
  bool OneIn(std::uint32_t n) { return Below(n) == 0; }

 private:
  std::mt19937_64 engine_{5910};
};

/// A chip with what comes from outside. Its time may have begun at any moment.
struct Board {
  explicit Board(std::uint64_t begin) {
    chip.Advance(begin);
    chip.frames.on_transmit = [this](monitor::PortId port, std::span<const std::uint8_t> frame) {
      sent.emplace_back(port, frame.size());
    };
  }

  std::vector<std::pair<monitor::PortId, std::size_t>> sent;
  chip::RouterChip chip;
};

class Twins : public testing::Test {
 protected:
  /// The second board becomes what the first one is.
  void Reload() {
    second = std::make_unique<Board>(random.Below(1'000'000'000));
    first.sent.clear();
    board::ReplaceState(board::StateText(first.chip), second->chip);
  }

  template <typename Action>
  void Both(Action action) {
    action(first);
    if (second) action(*second);
  }

  void Store(std::uint32_t offset, unsigned width, std::uint32_t value) {
    Both([&](Board& board) { board.chip.registers.Store(offset, width, value); });
  }

  void Load(std::uint32_t offset, unsigned width) {
    const std::uint32_t value = first.chip.registers.Load(offset, width);
    if (!second) return;
    ASSERT_EQ(second->chip.registers.Load(offset, width), value) << std::hex << offset;
  }

  void StoreCommand(const Block& block, std::uint8_t command) { Store(block.command, 1, command); }

  void Finish(const Block& block) {
    Load(block.command, 1);
    Load(block.command, 1);
  }

  void LoadAll(const Block& block) {
    for (std::uint32_t at = block.first; at < block.past_last; ++at) Load(at, 1);
  }

  void AccessAnywhere(const Block& block) {
    const unsigned width = 1U << random.Below(3);
    const std::uint32_t places = (block.past_last - block.first) / width;
    const std::uint32_t offset = block.first + width * random.Below(places);
    if (random.OneIn(2)) return Load(offset, width);
    // Few different indexes, so that reads meet writes; and few resets.
    const std::uint32_t value = random.OneIn(2) ? random.Below(4) : random.Below(0xFFFFFFFF);
    if (offset < 0x104 && offset + width > 0x100 && !random.OneIn(50)) return;
    Store(offset, width, value);
  }

  void AccessMii() {
    constexpr std::uint32_t kAddresses[] = {1, 2, 4, 3};
    Store(0x40A, 2, random.Below(0x10000));
    const std::uint32_t direction = random.OneIn(2) ? 0x40 : 0x20;
    Store(0x408, 2, 0x80 | direction | kAddresses[random.Below(4)] << 8 | random.Below(32));
  }

  void RandomEvent() {
    switch (random.Below(8)) {
      case 0: {
        const std::vector<std::uint8_t> frame(random.Below(1600),
                                              static_cast<std::uint8_t>(random.Below(256)));
        const auto port = static_cast<monitor::PortId>(random.Below(4));
        return Both([&](Board& board) { board.chip.frames.Receive(port, frame); });
      }
      case 1: {
        const auto levels = static_cast<std::uint8_t>(random.Below(256));
        return Both([&](Board& board) { board.chip.gpio.SetInputs(levels); });
      }
      case 2: {
        const auto byte = static_cast<std::uint8_t>(random.Below(256));
        return Both([&](Board& board) { board.chip.uart.Receive(byte); });
      }
      case 3: {
        const auto port = static_cast<monitor::PortId>(random.Below(3));
        const bool up = random.OneIn(2);
        return Both([&](Board& board) { board.chip.mii.SetLink(port, up); });
      }
      case 4: {
        const std::uint32_t at = random.Below(256 * 2048);
        const auto byte = static_cast<std::uint8_t>(random.Below(256));
        return Both([&](Board& board) { board.chip.frames.memory.HeaderByte(0, at) = byte; });
      }
      case 5:
        return AccessMii();
      case 6:
        return SetBits();
      default: {
        const std::uint32_t passed = random.Below(random.OneIn(2) ? 3000 : 1'000'000'000);
        return Both([&](Board& board) { board.chip.Advance(board.chip.Now() + passed); });
      }
    }
  }

  /// Stores something in every register, but starts nothing.
  void StoreAll(const Block& block) {
    for (std::uint32_t at = block.first; at < block.past_last; ++at) {
      if (at != block.command) Store(at, 1, random.Below(256));
    }
    // The session tables keep switches next to the index.
    if (block.first < 0xA00) Store(block.index, 1, random.Below(4));
  }

  void WriteEntry(const Block& block) {
    StoreCommand(block, block.write);
    Finish(block);
  }

  /// Overflow and reference bits, which nothing here sets by itself.
  void SetBits() {
    Both([](Board& board) {
      board.chip.l3.map.fill(0xFF);
      board.chip.mcast.map.fill(0xFF);
      board.chip.arp.map.fill(0xFF);
      board.chip.classifier.map.fill(0xFF);
      board.chip.stat_counters.overflow.fill(0x0FFFFFFF);
    });
  }

  void Step(const Block& focus) {
    const Block& block = random.OneIn(4) ? kBlocks[random.Below(std::size(kBlocks))] : focus;
    if (random.OneIn(5)) return RandomEvent();
    if (block.command == 0 || !random.OneIn(3)) return AccessAnywhere(block);
    if (random.OneIn(2)) Store(block.index, 1, random.Below(4));
    StoreCommand(block, random.OneIn(2) ? block.read : block.write);
    if (random.OneIn(2)) Finish(block);
  }

  /// Everything observable of the boards, on the bus or from outside.
  void Compare() {
    for (const Block& block : kBlocks) {
      LoadAll(block);
      if (block.command == 0) continue;
      Finish(block);
      for (std::uint32_t index = 0; index < 4; ++index) {
        Store(block.index, 1, index);
        StoreCommand(block, block.read);
        Finish(block);
        LoadAll(block);
      }
    }
    for (const unsigned address : {1U, 2U, 4U}) {
      for (unsigned reg = 0; reg < chip::Phy::kRegisters; ++reg) {
        ASSERT_EQ(first.chip.mii.FindPhy(address)->Load(reg),
                  second->chip.mii.FindPhy(address)->Load(reg));
      }
    }
    for (unsigned handle = 0; handle < 256; ++handle) {
      const auto frame = first.chip.frames.memory.Frame(handle, 2048);
      ASSERT_TRUE(std::equal(frame.begin(), frame.end(),
                             second->chip.frames.memory.Frame(handle, 2048).begin()));
    }
    ASSERT_EQ(first.sent, second->sent);
    ASSERT_EQ(first.chip.frames.pool.Free(), second->chip.frames.pool.Free());
    ASSERT_EQ(board::StateText(first.chip), board::StateText(second->chip));
  }

  Random random;
  Board first{1};
  std::unique_ptr<Board> second;
};

TEST_F(Twins, WriteWhatWasStoredBefore) {
  for (const Block& block : kBlocks) {
    if (block.command == 0) continue;
    SCOPED_TRACE(testing::Message() << std::hex << block.command);
    second.reset();
    SetBits();
    StoreAll(block);
    Reload();
    WriteEntry(block);
    Compare();
  }
}

TEST_F(Twins, DoTheSame) {
  constexpr unsigned kRounds = 150;
  constexpr unsigned kSteps = 40;
  for (unsigned round = 0; round < kRounds && !HasFatalFailure(); ++round) {
    SCOPED_TRACE(round);
    const Block& focus = kBlocks[random.Below(std::size(kBlocks))];
    second.reset();
    for (const Block& block : kBlocks) {
      if (block.command == 0) continue;
      StoreAll(block);
      WriteEntry(block);
    }
    for (unsigned i = 0; i < kSteps; ++i) Step(focus);
    Reload();
    for (unsigned i = 0; i < kSteps && !HasFatalFailure(); ++i) Step(focus);
    if (!HasFatalFailure()) Compare();
  }
}

}  // namespace
