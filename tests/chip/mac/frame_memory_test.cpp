// Frame buffer memory of the model, by bus address.
#include <gtest/gtest.h>

#include "chip/router_chip.h"

namespace chip {
namespace {

class BufferMemory : public testing::Test {
 protected:
  std::uint32_t Load(std::uint32_t address, unsigned width = 1) {
    return chip_.frames.memory.Load(address, width);
  }
  void Store(std::uint32_t address, std::uint16_t value, unsigned width = 1) {
    chip_.frames.memory.Store(address, width, value);
  }
  unsigned Complaints(const std::string& text) {
    const auto& all = chip_.registers.Complaints();
    const auto found = all.find(text);
    return found == all.end() ? 0 : found->second;
  }

  RouterChip chip_;
};

TEST_F(BufferMemory, LiesWhereTheBaseRegisterSays) {
  EXPECT_EQ(chip_.registers.Load(0x10C, 2), 0x0100U);
  Store(0x01000820, 0x5A);
  chip_.registers.Store(0x10C, 2, 0xFFFF);
  EXPECT_EQ(Load(0xFFFF0820), 0x5AU);
  Store(0x0006F820, 0xA5);  // past the end of the address space: buffer ff
  chip_.registers.Store(0x10C, 2, 0x0100);
  EXPECT_EQ(Load(0x0107F820), 0xA5U);
  EXPECT_TRUE(chip_.registers.Complaints().empty());
}

TEST_F(BufferMemory, HalfwordsAreLittleEndianOnEveryHost) {
  Store(0x01000000, 0x1234, 2);
  EXPECT_EQ(Load(0x01000000), 0x34U);
  EXPECT_EQ(Load(0x01000001), 0x12U);
  Store(0x01000002, 0x78);
  Store(0x01000003, 0x56);
  EXPECT_EQ(Load(0x01000002, 2), 0x5678U);
}

TEST_F(BufferMemory, EndsAfterTheLongestFrameOfTheLastBuffer) {
  Store(0x0108001F, 0x77);
  EXPECT_EQ(Load(0x0108001F), 0x77U);
  EXPECT_TRUE(chip_.registers.Complaints().empty());
  Store(0x01080020, 0x77);
  EXPECT_EQ(Load(0x01080020), 0xFFU);
  EXPECT_EQ(Complaints("memory access outside the frame buffers at 01080020"), 2U);
}

TEST_F(BufferMemory, AccessesOutsideReadAsOnes) {
  EXPECT_EQ(Load(0x00FFFFFF), 0xFFU);
  EXPECT_EQ(Load(0x12340000, 2), 0xFFFFU);
  EXPECT_EQ(Complaints("memory access outside the frame buffers at 00ffffff"), 1U);
  EXPECT_EQ(Complaints("memory access outside the frame buffers at 12340000"), 1U);
}

TEST_F(BufferMemory, HalfwordsAreAligned) {
  EXPECT_EQ(Load(0x01000001, 2), 0xFFFFU);
  EXPECT_EQ(Complaints("memory access not aligned at 01000001"), 1U);
}

TEST_F(BufferMemory, AnObserverSeesEachAccess) {
  std::vector<Access> seen;
  chip_.frames.memory.observer = [&](const Access& access) { seen.push_back(access); };
  Store(0x01000800, 0x1234, 2);
  (void)Load(0x01000802);
  ASSERT_EQ(seen.size(), 2U);
  EXPECT_TRUE(seen[0].store);
  EXPECT_EQ(seen[0].width, 2U);
  EXPECT_EQ(seen[0].offset, 0x01000800U);
  EXPECT_EQ(seen[0].value, 0x1234U);
  EXPECT_FALSE(seen[1].store);
  EXPECT_EQ(seen[1].width, 1U);
  EXPECT_EQ(seen[1].offset, 0x01000802U);
  EXPECT_EQ(seen[1].value, 0U);
}

TEST_F(BufferMemory, CopiesByteAfterByte) {
  for (std::uint16_t i = 0; i < 3; ++i)
    Store(0x01008020u + i, static_cast<std::uint16_t>(0x31 + i));
  Store(0x01000823, 0x77);
  chip_.frames.memory.Copy(0x01000820, 0x01008020, 3);
  EXPECT_EQ(Load(0x01000820), 0x31U);
  EXPECT_EQ(Load(0x01000821), 0x32U);
  EXPECT_EQ(Load(0x01000822), 0x33U);
  EXPECT_EQ(Load(0x01000823), 0x77U);
  EXPECT_TRUE(chip_.registers.Complaints().empty());
}

TEST_F(BufferMemory, ACopyOntoItsOwnSourceRepeatsTheFirstByte) {
  Store(0x01000820, 0x31);
  Store(0x01000821, 0x32);
  chip_.frames.memory.Copy(0x01000821, 0x01000820, 3);
  EXPECT_EQ(Load(0x01000821), 0x31U);
  EXPECT_EQ(Load(0x01000822), 0x31U);
  EXPECT_EQ(Load(0x01000823), 0x31U);
}

TEST_F(BufferMemory, ACopyComplainsAboutEachByteOutside) {
  Store(0x0108001F, 0x31);
  chip_.frames.memory.Copy(0x01000820, 0x0108001F, 2);
  EXPECT_EQ(Load(0x01000820), 0x31U);
  EXPECT_EQ(Load(0x01000821), 0xFFU);
  EXPECT_EQ(Complaints("memory access outside the frame buffers at 01080020"), 1U);
  chip_.frames.memory.Copy(0x0108001F, 0x01000820, 2);
  EXPECT_EQ(Complaints("memory access outside the frame buffers at 01080020"), 2U);
}

TEST_F(BufferMemory, AnObserverSeesEachAccessOfACopy) {
  std::vector<std::uint32_t> loads;
  std::vector<std::uint32_t> stores;
  chip_.frames.memory.observer = [&](const Access& access) {
    EXPECT_EQ(access.width, 1U);
    EXPECT_EQ(stores.size() + (access.store ? 1 : 0), loads.size());
    (access.store ? stores : loads).push_back(access.offset);
  };
  chip_.frames.memory.Copy(0x01000820, 0x01008020, 2);
  EXPECT_EQ(loads, (std::vector<std::uint32_t>{0x01008020, 0x01008021}));
  EXPECT_EQ(stores, (std::vector<std::uint32_t>{0x01000820, 0x01000821}));
}

TEST_F(BufferMemory, ResetClearsIt) {
  Store(0x01000820, 0x5A);
  chip_.Reset();
  EXPECT_EQ(Load(0x01000820), 0U);
}

}  // namespace
}  // namespace chip
