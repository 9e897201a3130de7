// The UART of the model, by raw loads and stores.
#include <gtest/gtest.h>

#include <vector>

#include "chip/router_chip.h"

namespace chip {
namespace {

class UartModel : public testing::Test {
 protected:
  void SetUp() override {
    chip_.uart.on_transmit = [this](std::uint8_t byte) { sent_.push_back(byte); };
  }
  void TearDown() override { EXPECT_TRUE(chip_.registers.Complaints().empty()); }

  void Store8(std::uint32_t offset, std::uint8_t value) { chip_.registers.Store(offset, 1, value); }
  std::uint8_t Load8(std::uint32_t offset) {
    return static_cast<std::uint8_t>(chip_.registers.Load(offset, 1));
  }

  RouterChip chip_;
  std::vector<std::uint8_t> sent_;
};

TEST_F(UartModel, IsIdleAtPowerOn) {
  EXPECT_EQ(Load8(0x300), 0x00);
  EXPECT_EQ(Load8(0x301), 0x00);
  EXPECT_EQ(Load8(0x302), 0x01);
  EXPECT_EQ(Load8(0x303), 0x00);
  EXPECT_EQ(Load8(0x304), 0x00);
  EXPECT_EQ(Load8(0x305), 0x60);
}

TEST_F(UartModel, ReceivedBytesAreTakenOneByOneAndTheLastOneStays) {
  chip_.uart.Receive(0x41);
  chip_.uart.Receive(0x42);
  EXPECT_EQ(Load8(0x305), 0x61);
  EXPECT_EQ(Load8(0x300), 0x41);
  EXPECT_EQ(Load8(0x305), 0x61);
  EXPECT_EQ(Load8(0x300), 0x42);
  EXPECT_EQ(Load8(0x305), 0x60);
  EXPECT_EQ(Load8(0x300), 0x42);
}

TEST_F(UartModel, StoredBytesAreSent) {
  Store8(0x300, 0x41);
  Store8(0x300, 0x42);
  EXPECT_EQ(sent_, (std::vector<std::uint8_t>{0x41, 0x42}));
  EXPECT_EQ(Load8(0x300), 0x00);  // what is sent is not what is received
}

TEST_F(UartModel, TheDivisorLatchHidesDataAndInterruptEnable) {
  chip_.uart.Receive(0x41);
  Store8(0x301, 0x05);
  Store8(0x303, 0x83);
  Store8(0x300, 0x12);
  Store8(0x301, 0x34);
  EXPECT_EQ(Load8(0x300), 0x12);
  EXPECT_EQ(Load8(0x301), 0x34);
  EXPECT_EQ(Load8(0x303), 0x83);
  Store8(0x303, 0x03);
  EXPECT_TRUE(sent_.empty());
  EXPECT_EQ(Load8(0x301), 0x05);
  EXPECT_EQ(Load8(0x300), 0x41);
  Store8(0x303, 0x80);
  EXPECT_EQ(Load8(0x300), 0x12);
  EXPECT_EQ(Load8(0x301), 0x34);
}

TEST_F(UartModel, TheInterruptStatusNamesReceivedDataBeforeTheEmptyTransmitter) {
  chip_.uart.Receive(0x41);
  EXPECT_EQ(Load8(0x302), 0x01);  // nothing is enabled
  Store8(0x301, 0x03);
  EXPECT_EQ(Load8(0x302), 0x04);
  EXPECT_EQ(Load8(0x302), 0x04);
  (void)Load8(0x300);
  EXPECT_EQ(Load8(0x302), 0x02);
  EXPECT_EQ(Load8(0x302), 0x01);  // told once
  Store8(0x300, 0x42);
  EXPECT_EQ(Load8(0x302), 0x02);
}

TEST_F(UartModel, FifoControlShowsInTheInterruptStatusAndClearsTheReceiver) {
  chip_.uart.Receive(0x41);
  Store8(0x302, 0x01);
  EXPECT_EQ(Load8(0x302), 0xC1);
  EXPECT_EQ(Load8(0x305), 0x61);
  Store8(0x302, 0x03);
  EXPECT_EQ(Load8(0x305), 0x60);
  Store8(0x302, 0x00);
  EXPECT_EQ(Load8(0x302), 0x01);
}

TEST_F(UartModel, ModemControlIsStorage) {
  Store8(0x304, 0xA5);
  EXPECT_EQ(Load8(0x304), 0xA5);
}

TEST_F(UartModel, LineStatusIsReadOnly) {
  Store8(0x305, 0xFF);
  EXPECT_EQ(Load8(0x305), 0x60);
  EXPECT_EQ(chip_.registers.Complaints().count("store to read-only UART_LSR at 0305"), 1U);
  chip_.registers.ForgetComplaints();
}

TEST_F(UartModel, ResetForgetsEverything) {
  chip_.uart.Receive(0x41);
  Store8(0x302, 0x01);
  Store8(0x301, 0x02);
  Store8(0x303, 0x80);
  Store8(0x300, 0x12);
  Store8(0x301, 0x34);
  chip_.Reset();
  EXPECT_EQ(Load8(0x305), 0x60);
  EXPECT_EQ(Load8(0x302), 0x01);
  EXPECT_EQ(Load8(0x301), 0x00);
  Store8(0x303, 0x80);
  EXPECT_EQ(Load8(0x300), 0x00);
  EXPECT_EQ(Load8(0x301), 0x00);
}

}  // namespace
}  // namespace chip
