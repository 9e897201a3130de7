// The handlers like `reg` that work on memory of this process.
#include <gtest/gtest.h>

#include <sys/mman.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "support/scripted_bus.h"
#include "support/scripted_console.h"
#include "system/reg.h"

namespace monitor {
namespace {

/// Memory of this process at addresses of 32 bits, filled with a pattern.
class ProcessMemory : public testing::Test {
 protected:
  static constexpr std::uint32_t kHere = 0x20000000;
  static constexpr std::size_t kSize = 4096;

  void SetUp() override {
    ClearConsole();
    void* const wanted = reinterpret_cast<void*>(std::uintptr_t{kHere});
    void* const got = mmap(wanted, kSize, PROT_READ | PROT_WRITE,
                           MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0);
    ASSERT_EQ(got, wanted);
    memory_ = static_cast<std::uint8_t*>(got);
    for (std::size_t i = 0; i < kSize; ++i) memory_[i] = static_cast<std::uint8_t>(i);
  }

  void TearDown() override { munmap(memory_, kSize); }

  using Handler = int (*)(int argc, ArgVector argv);

  /// Calls a handler with words after its own; none of them may reach the bus.
  static int Call(Handler handler, std::vector<std::string> words) {
    words.insert(words.begin(), "mem");
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    const ScriptedBus bus("");
    return handler(static_cast<int>(argv.size()), argv.data());
  }

  void ExpectRefused(Handler handler, const std::vector<std::string>& words) {
    const std::vector<std::uint8_t> before(memory_, memory_ + kSize);
    EXPECT_EQ(Call(handler, words), kUsage);
    EXPECT_EQ(TakeOutput(), "");
    EXPECT_EQ(std::memcmp(memory_, before.data(), kSize), 0);
  }

  std::uint8_t* memory_ = nullptr;
};

TEST_F(ProcessMemory, ADumpShowsOneByteOrSoMany) {
  EXPECT_EQ(Call(MemoryDumpCommand, {"20000010"}), kDone);
  EXPECT_EQ(TakeOutput(), "20000010: 10 .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
  EXPECT_EQ(Call(MemoryDumpCommand, {"0X2000001E", "3"}), kDone);
  EXPECT_EQ(TakeOutput(),
            "20000010: .. .. .. .. .. .. .. .. .. .. .. .. .. .. 1E 1F \n\r"
            "20000020: 20 .. .. .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
  EXPECT_EQ(Call(MemoryDumpCommand, {"20000010", "0"}), kDone);
  EXPECT_EQ(TakeOutput(), "");
}

TEST_F(ProcessMemory, ADumpTakesAnAddressAndACount) {
  ExpectRefused(MemoryDumpCommand, {});
  ExpectRefused(MemoryDumpCommand, {"G"});
  ExpectRefused(MemoryDumpCommand, {"20000010", "G"});
  ExpectRefused(MemoryDumpCommand, {"120000010"});
  ExpectRefused(MemoryDumpCommand, {"20000010", "="});
  ExpectRefused(MemoryDumpCommand, {"20000010", "=", "1"});
  ExpectRefused(MemoryDumpCommand, {"20000010", "1", "1"});
}

TEST_F(ProcessMemory, AWriteStoresItsValuesAndDumpsThem) {
  EXPECT_EQ(Call(MemoryWriteCommand, {"20000010", "=", "A5", "5A"}), kDone);
  EXPECT_EQ(TakeOutput(), "20000010: A5 5A .. .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
  EXPECT_EQ(memory_[0x0F], 0x0F);
  EXPECT_EQ(memory_[0x10], 0xA5);
  EXPECT_EQ(memory_[0x11], 0x5A);
  EXPECT_EQ(memory_[0x12], 0x12);
}

TEST_F(ProcessMemory, AWriteRepeatsItsValues) {
  EXPECT_EQ(Call(MemoryWriteCommand, {"20000020", "3", "=", "1", "FF"}), kDone);
  EXPECT_EQ(TakeOutput(), "20000020: 01 FF 01 .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
  EXPECT_EQ(memory_[0x23], 0x23);
}

TEST_F(ProcessMemory, ABadValueEndsTheWriting) {
  EXPECT_EQ(Call(MemoryWriteCommand, {"20000010", "=", "A5", "123"}), kUsage);
  EXPECT_EQ(TakeOutput(), "");
  EXPECT_EQ(memory_[0x10], 0xA5);
  EXPECT_EQ(memory_[0x11], 0x11);
}

TEST_F(ProcessMemory, AWriteTakesAtLeastFourWords) {
  ExpectRefused(MemoryWriteCommand, {});
  ExpectRefused(MemoryWriteCommand, {"20000010"});
  ExpectRefused(MemoryWriteCommand, {"20000010", "1"});
  ExpectRefused(MemoryWriteCommand, {"20000010", "1", "="});
  ExpectRefused(MemoryWriteCommand, {"20000010", "1", "1", "1"});
  ExpectRefused(MemoryWriteCommand, {"G", "=", "1"});
  ExpectRefused(MemoryWriteCommand, {"20000010", "G", "=", "1"});
}

TEST_F(ProcessMemory, ACopyMovesBytesAndDumpsTheDestination) {
  EXPECT_EQ(Call(MemoryWriteCommand, {"C", "20000040", "200000F1", "4"}), kDone);
  EXPECT_EQ(TakeOutput(), "200000F0: .. 40 41 42 43 .. .. .. .. .. .. .. .. .. .. .. \n\r");
  EXPECT_EQ(memory_[0x40], 0x40);
  EXPECT_EQ(memory_[0xF0], 0xF0);
  EXPECT_EQ(memory_[0xF5], 0xF5);
}

TEST_F(ProcessMemory, ACopyGoesUpwardsAByteAtATime) {
  EXPECT_EQ(Call(MemoryWriteCommand, {"C", "20000010", "20000011", "4"}), kDone);
  EXPECT_EQ(TakeOutput(), "20000010: .. 10 10 10 10 .. .. .. .. .. .. .. .. .. .. .. \n\r");
  EXPECT_EQ(Call(MemoryWriteCommand, {"C", "20000021", "20000020", "3"}), kDone);
  EXPECT_EQ(TakeOutput(), "20000020: 21 22 23 .. .. .. .. .. .. .. .. .. .. .. .. .. \n\r");
}

TEST_F(ProcessMemory, ACopyHasExactlyFiveWords) {
  ExpectRefused(MemoryWriteCommand, {"C", "20000010", "20000020"});
  ExpectRefused(MemoryWriteCommand, {"C", "20000010", "20000020", "1", "1"});
  ExpectRefused(MemoryWriteCommand, {"C", "G", "20000020", "1"});
  ExpectRefused(MemoryWriteCommand, {"C", "20000010", "G", "1"});
  ExpectRefused(MemoryWriteCommand, {"C", "20000010", "20000020", "G"});
}

}  // namespace
}  // namespace monitor
