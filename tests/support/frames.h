// A model whose ports are up, and what the tests of its frames do with it.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <vector>

#include "chip/router_chip.h"

namespace chip {

using Bytes = std::vector<std::uint8_t>;

/// A frame of that length to a unicast address, with bytes that count up.
inline Bytes SomeFrame(std::size_t length) {
  Bytes frame(length);
  for (std::size_t i = 0; i < length; ++i) frame[i] = static_cast<std::uint8_t>(2 * i);
  return frame;
}

class Frames : public testing::Test {
 protected:
  static constexpr auto kWan = monitor::PortId::kWan;
  static constexpr auto kLan = monitor::PortId::kLan;
  static constexpr auto kDmz = monitor::PortId::kDmz;

  struct Sent {
    monitor::PortId port;
    Bytes frame;
  };

  /// Counts by port and counter.
  using Counts = std::map<std::pair<monitor::PortId, unsigned>, std::uint32_t>;

  void SetUp() override {
    for (std::uint32_t port = 0; port < 3; ++port) Store8(port, 0x08);
    chip_.frames.on_transmit = [this](monitor::PortId port, std::span<const std::uint8_t> frame) {
      sent_.push_back({port, Bytes(frame.begin(), frame.end())});
    };
  }
  void TearDown() override { EXPECT_TRUE(chip_.registers.Complaints().empty()); }

  void Store8(std::uint32_t offset, std::uint8_t value) { chip_.registers.Store(offset, 1, value); }
  std::uint8_t Load8(std::uint32_t offset) {
    return static_cast<std::uint8_t>(chip_.registers.Load(offset, 1));
  }
  std::uint32_t Events() { return chip_.registers.Load(0x210, 2); }
  std::uint16_t Memory(std::uint32_t address, unsigned width = 1) {
    return chip_.frames.memory.Load(address, width);
  }

  /// Pulses the receive acknowledge.
  void TakeOffered() {
    Store8(0x427, 0x02);
    Store8(0x427, 0x00);
  }

  void Release(std::uint8_t handle) {
    Store8(0x428, handle);
    Store8(0x427, 0x01);
    Store8(0x427, 0x00);
    (void)Load8(0x427);
    EXPECT_EQ(Load8(0x427), 0x04);
  }

  /// Sends `length` bytes from a buffer, to the port of that code.
  void Transmit(std::uint8_t handle, std::uint8_t code, std::uint16_t length) {
    chip_.frames.memory.Store(0x01000000 + 0x800U * handle, 2, length);
    Store8(0x42A, code);
    Store8(0x429, handle);
    Store8(0x42B, 0x01);
    Store8(0x42B, 0x00);
    (void)Load8(0x42B);
    EXPECT_EQ(Load8(0x42B), 0x02);
  }

  /// The uses that a status query counts.
  unsigned Uses(std::uint8_t handle) {
    Store8(0x431, handle);
    Store8(0x430, 0x01);
    Store8(0x430, 0x00);
    (void)Load8(0x430);
    const std::uint8_t answer = Load8(0x430);
    EXPECT_EQ(answer & 0xC3, 0x02);
    return answer >> 2;
  }

  /// What the counters have come to, without those at 0.
  Counts Counted() const {
    Counts counts;
    for (const auto port : {kWan, kLan, kDmz}) {
      for (unsigned counter = 0; counter < StatCounters::kCounters; ++counter) {
        const std::uint32_t count = chip_.stat_counters.counters[port][counter];
        if (count != 0) counts[{port, counter}] = count;
      }
    }
    return counts;
  }

  void ExpectComplaint(const char* text) {
    EXPECT_EQ(chip_.registers.Complaints().size(), 1U);
    EXPECT_EQ(chip_.registers.Complaints().count(text), 1U) << text;
    chip_.registers.ForgetComplaints();
  }

  RouterChip chip_;
  std::vector<Sent> sent_;
};

}  // namespace chip
