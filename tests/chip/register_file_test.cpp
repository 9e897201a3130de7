// The register file of the model: storage, masks, hooks and complaints, by raw loads and stores.
#include "chip/register_file.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace chip {
namespace {

using monitor::Reg16;
using monitor::Reg32;
using monitor::Reg8;
using monitor::RegBytes;

using Counts = std::map<std::string, unsigned>;

class Registers : public testing::Test {
 protected:
  /// A hook that notes when it is called and with what.
  std::function<void(std::uint32_t)> Note(const char* name) {
    return [this, name](std::uint32_t stored) {
      char text[40];
      std::snprintf(text, sizeof(text), "%s %x", name, stored);
      notes_.emplace_back(text);
    };
  }
  std::function<void()> NoteLoad(const char* name) {
    return [this, name] { notes_.emplace_back(name); };
  }

  std::vector<std::string> TakeNotes() { return std::exchange(notes_, {}); }

  Counts TakeComplaints() {
    const Counts complaints = file_.Complaints();
    file_.ForgetComplaints();
    return complaints;
  }

  void TearDown() override { EXPECT_EQ(file_.Complaints(), Counts{}); }

  RegisterFile file_;
  std::vector<std::string> notes_;
};

using Notes = std::vector<std::string>;

TEST_F(Registers, ArePlainStorageThatStartsAt0) {
  file_.Define(Reg8{0x100});
  file_.Define(Reg16{0x102});
  file_.Define(Reg32{0x104});
  EXPECT_EQ(file_.Load(0x100, 1), 0U);
  EXPECT_EQ(file_.Load(0x102, 2), 0U);
  EXPECT_EQ(file_.Load(0x104, 4), 0U);
  file_.Store(0x100, 1, 0xA5);
  file_.Store(0x102, 2, 0x1234);
  file_.Store(0x104, 4, 0x89ABCDEF);
  EXPECT_EQ(file_.Load(0x100, 1), 0xA5U);
  EXPECT_EQ(file_.Load(0x102, 2), 0x1234U);
  EXPECT_EQ(file_.Load(0x104, 4), 0x89ABCDEFU);
}

TEST_F(Registers, TheByteAtTheLowestOffsetIsTheMostSignificant) {
  file_.Define(Reg16{0x102});
  file_.Define(Reg32{0x104});
  file_.Store(0x102, 2, 0x1234);
  EXPECT_EQ(file_.Load(0x102, 1), 0x12U);
  EXPECT_EQ(file_.Load(0x103, 1), 0x34U);
  file_.Store(0x103, 1, 0xA5);
  EXPECT_EQ(file_.Load(0x102, 2), 0x12A5U);
  file_.Store(0x104, 4, 0x89ABCDEF);
  EXPECT_EQ(file_.Load(0x104, 1), 0x89U);
  EXPECT_EQ(file_.Load(0x105, 1), 0xABU);
  EXPECT_EQ(file_.Load(0x106, 2), 0xCDEFU);
  file_.Store(0x104, 2, 0x1122);
  EXPECT_EQ(file_.Load(0x104, 4), 0x1122CDEFU);
}

TEST_F(Registers, NeighboursStandSideBySide) {
  file_.Define(RegBytes<4>{0x108});
  file_.Store(0x108, 4, 0x01020304);
  EXPECT_EQ(file_.Load(0x109, 1), 0x02U);
  EXPECT_EQ(file_.Load(0x10A, 2), 0x0304U);
}

TEST_F(Registers, BeginWithTheirPowerOnValue) {
  file_.Define(Reg8{0x100}, {.reset = 0x81});
  file_.Define(Reg16{0x102}, {.reset = 0x8001});
  file_.Define(Reg32{0x104}, {.reset = 0x80000001});
  file_.Define(RegBytes<2>{0x108}, {.reset = 0x7E});
  EXPECT_EQ(file_.Load(0x100, 1), 0x81U);
  EXPECT_EQ(file_.Load(0x102, 2), 0x8001U);
  EXPECT_EQ(file_.Load(0x104, 4), 0x80000001U);
  EXPECT_EQ(file_.Load(0x108, 2), 0x7E7EU);
}

TEST_F(Registers, ResetBringsPowerOnBack) {
  file_.Define(Reg16{0x102}, {.reset = 0x8001, .read_only = 0x8000});
  file_.Define(Reg8{0x100});
  file_.Store(0x102, 2, 0x1234);
  file_.Store(0x100, 1, 0xFF);
  file_.Store(0x300, 1, 0xFF);
  EXPECT_EQ(TakeComplaints(), (Counts{{"no register at 0300", 1}}));
  file_.Reset();
  EXPECT_EQ(file_.Load(0x102, 2), 0x8001U);
  EXPECT_EQ(file_.Load(0x100, 1), 0U);
  EXPECT_EQ(file_.Snapshot()[0x300], 0);
}

TEST_F(Registers, SnapshotShowsEveryByteAsStored) {
  file_.Define(Reg32{0x104});
  file_.Store(0x104, 4, 0x89ABCDEF);
  EXPECT_EQ(file_.Snapshot().size(), 0x2000U);
  EXPECT_EQ(file_.Snapshot()[0x103], 0);
  EXPECT_EQ(file_.Snapshot()[0x104], 0x89);
  EXPECT_EQ(file_.Snapshot()[0x107], 0xEF);
}

TEST_F(Registers, StoresLeaveReadOnlyBitsAlone) {
  file_.Define(Reg8{0x100}, {.reset = 0xA0, .read_only = 0xF0});
  file_.Define(Reg16{0x102}, {.reset = 0x1234, .read_only = 0x0FF0});
  file_.Define(Reg32{0x104}, {.reset = 0x12345678, .read_only = 0x00FFFF00});
  file_.Store(0x100, 1, 0x55);
  EXPECT_EQ(file_.Load(0x100, 1), 0xA5U);
  file_.Store(0x102, 2, 0xABCD);
  EXPECT_EQ(file_.Load(0x102, 2), 0xA23DU);
  file_.Store(0x104, 4, 0xAABBCCDD);
  EXPECT_EQ(file_.Load(0x104, 4), 0xAA3456DDU);
}

TEST_F(Registers, StoresOfAPartRespectItsShareOfTheMasks) {
  file_.Define(Reg16{0x102}, {.reset = 0x1234, .read_only = 0x0FF0});
  file_.Store(0x102, 1, 0xAB);
  EXPECT_EQ(file_.Load(0x102, 2), 0xA234U);
  file_.Store(0x103, 1, 0xCD);
  EXPECT_EQ(file_.Load(0x102, 2), 0xA23DU);
  file_.Define(Reg32{0x104}, {.reset = 0xFFFFFFFF, .write_one_to_clear = 0x00FF00FF});
  file_.Store(0x105, 1, 0x81);
  EXPECT_EQ(file_.Load(0x104, 4), 0xFF7EFFFFU);
  file_.Store(0x106, 2, 0x0018);
  EXPECT_EQ(file_.Load(0x104, 4), 0xFF7E00E7U);
}

TEST_F(Registers, AStoreOfOneClearsWhereItDoesSo) {
  file_.Define(Reg8{0x100}, {.reset = 0xF5, .write_one_to_clear = 0xF0});
  file_.Store(0x100, 1, 0x3A);
  EXPECT_EQ(file_.Load(0x100, 1), 0xCAU);
  file_.Store(0x100, 1, 0x00);
  EXPECT_EQ(file_.Load(0x100, 1), 0xC0U);
  file_.Store(0x100, 1, 0xFF);
  EXPECT_EQ(file_.Load(0x100, 1), 0x0FU);
}

TEST_F(Registers, AStoreThatReachesOnlyReadOnlyBitsIsComplainedAbout) {
  file_.Define(Reg16{0x102, "CHIP_MODEL"}, {.reset = 0x5910, .read_only = 0xFFFF});
  file_.Define(Reg16{0x104, "HALF"}, {.read_only = 0xFF00});
  file_.Store(0x102, 2, 0x1234);
  file_.Store(0x103, 1, 0x34);
  EXPECT_EQ(file_.Load(0x102, 2), 0x5910U);
  EXPECT_EQ(TakeComplaints(), (Counts{{"store to read-only CHIP_MODEL at 0102", 1},
                                      {"store to read-only CHIP_MODEL at 0103", 1}}));
  file_.Store(0x104, 2, 0x1234);
  file_.Store(0x105, 1, 0x34);
  EXPECT_EQ(TakeComplaints(), Counts{});
  file_.Store(0x104, 1, 0x12);
  EXPECT_EQ(TakeComplaints(), (Counts{{"store to read-only HALF at 0104", 1}}));
}

TEST_F(Registers, AHookBeforeALoadMayBringItsRegisterUpToDate) {
  static constexpr Reg16 kCounter{0x102};
  file_.Define(kCounter,
               {.before_load = [this] { file_.Set(kCounter, file_.Get(kCounter) + 1U); }});
  EXPECT_EQ(file_.Load(0x102, 2), 1U);
  EXPECT_EQ(file_.Load(0x103, 1), 2U);
  file_.Store(0x102, 2, 0x00FF);
  EXPECT_EQ(file_.Load(0x102, 1), 0x01U);
}

TEST_F(Registers, HooksAreCalledOnceForEachRegisterTouched) {
  file_.Define(Reg32{0x104}, {.before_load = NoteLoad("long"), .after_store = Note("long")});
  file_.Define(Reg16{0x108}, {.before_load = NoteLoad("high"), .after_store = Note("high")});
  file_.Define(Reg8{0x10A}, {.before_load = NoteLoad("low"), .after_store = Note("low")});
  file_.Define(Reg8{0x10B});
  (void)file_.Load(0x104, 4);
  (void)file_.Load(0x105, 1);
  EXPECT_EQ(TakeNotes(), (Notes{"long", "long"}));
  (void)file_.Load(0x108, 4);
  EXPECT_EQ(TakeNotes(), (Notes{"high", "low"}));
  (void)file_.Load(0x10B, 1);
  EXPECT_EQ(TakeNotes(), Notes{});
  file_.Store(0x104, 4, 0x12345678);
  EXPECT_EQ(TakeNotes(), Notes{"long 12345678"});
  file_.Store(0x108, 4, 0xAABBCCDD);
  EXPECT_EQ(TakeNotes(), (Notes{"high aabb", "low cc"}));
}

TEST_F(Registers, AStoreHookIsGivenWhatWasStoredInItsPlaces) {
  file_.Define(Reg32{0x104}, {.reset = 0xFFFFFFFF,
                              .read_only = 0xFF000000,
                              .write_one_to_clear = 0x00FF0000,
                              .after_store = Note("long")});
  file_.Store(0x104, 4, 0x11223344);  // masks or not
  file_.Store(0x105, 1, 0x5A);
  file_.Store(0x106, 2, 0xABCD);
  EXPECT_EQ(TakeNotes(), (Notes{"long 11223344", "long 5a0000", "long abcd"}));
}

TEST_F(Registers, AStoreHookFindsItsRegisterStored) {
  static constexpr Reg8 kReg{0x100};
  std::uint8_t found = 0;
  file_.Define(kReg, {.after_store = [&](std::uint32_t) { found = file_.Get(kReg); }});
  file_.Store(0x100, 1, 0xA5);
  EXPECT_EQ(found, 0xA5);
}

TEST_F(Registers, HooksOfARunAreCalledForEachByte) {
  file_.Define(RegBytes<4>{0x108}, {.before_load = NoteLoad("byte"), .after_store = Note("byte")});
  file_.Store(0x108, 4, 0x01020304);
  EXPECT_EQ(TakeNotes(), (Notes{"byte 1", "byte 2", "byte 3", "byte 4"}));
  (void)file_.Load(0x10A, 2);
  EXPECT_EQ(TakeNotes(), (Notes{"byte", "byte"}));
}

TEST_F(Registers, GetAndSetBypassTheBus) {
  static constexpr Reg16 kReg{0x102, "REG"};
  static constexpr RegBytes<3> kRun{0x108};
  unsigned seen = 0;
  file_.Watch([&](const Access&) { ++seen; });
  file_.Define(
      kReg, {.read_only = 0xFFFF, .before_load = NoteLoad("load"), .after_store = Note("store")});
  file_.Set(kReg, 0x1234);
  EXPECT_EQ(file_.Get(kReg), 0x1234);
  file_.Set(kRun, {1, 2, 3});
  EXPECT_EQ(file_.Get(kRun), (std::array<std::uint8_t, 3>{1, 2, 3}));
  EXPECT_EQ(TakeNotes(), Notes{});
  EXPECT_EQ(seen, 0U);
}

TEST_F(Registers, UnmappedOffsetsAreStorageAndComplainedAbout) {
  file_.Store(0x300, 2, 0x1234);
  EXPECT_EQ(file_.Load(0x300, 2), 0x1234U);
  EXPECT_EQ(file_.Load(0x301, 1), 0x34U);
  EXPECT_EQ(TakeComplaints(), (Counts{{"no register at 0300", 2}, {"no register at 0301", 3}}));
}

TEST_F(Registers, UnmappedOffsetsNextToARegisterAreStorageToo) {
  file_.Define(Reg8{0x301}, {.read_only = 0x0F, .after_store = Note("reg")});
  file_.Store(0x300, 4, 0xAABBCCDD);
  EXPECT_EQ(file_.Load(0x300, 4), 0xAAB0CCDDU);
  EXPECT_EQ(TakeNotes(), Notes{"reg bb"});
  EXPECT_EQ(
      TakeComplaints(),
      (Counts{{"no register at 0300", 2}, {"no register at 0302", 2}, {"no register at 0303", 2}}));
}

TEST_F(Registers, AccessesOutsideTheWindowAreComplainedAboutAndReadAllOnes) {
  file_.Define(Reg8{0x1FFF}, {.reset = 0x5A});
  EXPECT_EQ(file_.Load(0x1FFF, 1), 0x5AU);
  EXPECT_EQ(file_.Load(0x2000, 1), 0xFFU);
  EXPECT_EQ(file_.Load(0x1FFF, 2), 0xFFFFU);
  EXPECT_EQ(file_.Load(0x1FFE, 4), 0xFFFFFFFFU);
  EXPECT_EQ(file_.Load(0xFFFFFFFF, 4), 0xFFFFFFFFU);
  file_.Store(0x1FFF, 2, 0x1234);
  file_.Store(0x2000, 1, 0x12);
  EXPECT_EQ(file_.Load(0x1FFF, 1), 0x5AU);
  EXPECT_EQ(TakeComplaints(), (Counts{{"access outside the window at 2000", 2},
                                      {"access outside the window at 1fff", 2},
                                      {"access outside the window at 1ffe", 1},
                                      {"access outside the window at ffffffff", 1}}));
}

TEST_F(Registers, UnalignedAccessesAreCarriedOutAndComplainedAbout) {
  file_.Define(RegBytes<8>{0x100});
  file_.Store(0x101, 2, 0x1234);
  EXPECT_EQ(file_.Load(0x101, 2), 0x1234U);
  file_.Store(0x102, 4, 0x55667788);
  EXPECT_EQ(file_.Load(0x100, 4), 0x00125566U);
  EXPECT_EQ(file_.Load(0x104, 4), 0x77880000U);
  EXPECT_EQ(TakeComplaints(),
            (Counts{{"access not aligned at 0101", 2}, {"access not aligned at 0102", 1}}));
}

TEST_F(Registers, UnalignedAccessesReachTheRegistersOfBothWords) {
  file_.Define(RegBytes<4>{0x100});  // a whole word of plain storage
  file_.Define(Reg8{0x104}, {.reset = 0x5A,
                             .read_only = 0xF0,
                             .before_load = NoteLoad("load"),
                             .after_store = Note("store")});
  EXPECT_EQ(file_.Load(0x103, 2), 0x005AU);
  file_.Store(0x103, 2, 0x12A5);
  EXPECT_EQ(file_.Load(0x103, 1), 0x12U);
  EXPECT_EQ(file_.Load(0x104, 1), 0x55U);
  EXPECT_EQ(TakeNotes(), (Notes{"load", "store a5", "load"}));
  EXPECT_EQ(file_.Load(0x102, 4), 0x00125500U);
  EXPECT_EQ(TakeComplaints(), (Counts{{"access not aligned at 0103", 2},
                                      {"access not aligned at 0102", 1},
                                      {"no register at 0105", 1}}));
  EXPECT_EQ(TakeNotes(), Notes{"load"});

  file_.Define(Reg8{0x107}, {.before_load = NoteLoad("last")});
  file_.Define(RegBytes<4>{0x108});
  (void)file_.Load(0x107, 2);
  EXPECT_EQ(TakeNotes(), Notes{"last"});
  EXPECT_EQ(TakeComplaints(), (Counts{{"access not aligned at 0107", 1}}));
}

TEST_F(Registers, ComplaintsAreCountedAndAnnouncedOnce) {
  std::vector<std::string> announced;
  file_.on_complaint = [&](const std::string& text) { announced.push_back(text); };
  file_.Complain("a");
  file_.Complain("b");
  file_.Complain("a");
  EXPECT_EQ(TakeComplaints(), (Counts{{"a", 2}, {"b", 1}}));
  EXPECT_EQ(announced, (std::vector<std::string>{"a", "b"}));
  file_.Complain("a");
  EXPECT_EQ(TakeComplaints(), (Counts{{"a", 1}}));
  EXPECT_EQ(announced, (std::vector<std::string>{"a", "b", "a"}));
}

TEST_F(Registers, UnmappedOffsetsAreAnnouncedOnceByThemselves) {
  std::vector<std::uint32_t> announced;
  file_.on_unmapped = [&](std::uint32_t offset) { announced.push_back(offset); };
  file_.on_complaint = [](const std::string& text) { FAIL() << text; };
  file_.Store(0x302, 2, 0);
  (void)file_.Load(0x300, 4);
  EXPECT_EQ(announced, (std::vector<std::uint32_t>{0x302, 0x303, 0x300, 0x301}));
  EXPECT_EQ(TakeComplaints(), (Counts{{"no register at 0300", 1},
                                      {"no register at 0301", 1},
                                      {"no register at 0302", 2},
                                      {"no register at 0303", 2}}));
  (void)file_.Load(0x303, 1);
  EXPECT_EQ(announced.size(), 5U);
  EXPECT_EQ(TakeComplaints(), (Counts{{"no register at 0303", 1}}));
}

TEST_F(Registers, TheObserverSeesEachAccess) {
  static constexpr Reg16 kReg{0x102};
  std::vector<std::string> seen;
  file_.Define(kReg, {.before_load = [this] { file_.Set(kReg, 0x1234); }});
  file_.Watch([&](const Access& access) {
    char text[60];
    std::snprintf(text, sizeof(text), "%c%u %x %x, holds %x", access.store ? 'w' : 'r',
                  8 * access.width, access.offset, access.value, file_.Get(kReg));
    seen.emplace_back(text);
  });
  file_.Store(0x102, 2, 0xABCD);
  (void)file_.Load(0x102, 2);
  (void)file_.Load(0x103, 1);
  // A store is seen before it takes effect, a load when its value is known.
  EXPECT_EQ(seen, (std::vector<std::string>{"w16 102 abcd, holds 0", "r16 102 1234, holds 1234",
                                            "r8 103 34, holds 1234"}));
}

TEST_F(Registers, TheObserverSeesAccessesOutsideTheWindowToo) {
  std::vector<std::string> seen;
  file_.Watch([&](const Access& access) {
    char text[40];
    std::snprintf(text, sizeof(text), "%c%u %x %x", access.store ? 'w' : 'r', 8 * access.width,
                  access.offset, access.value);
    seen.emplace_back(text);
  });
  file_.Store(0x2000, 1, 0x5A);
  (void)file_.Load(0x1FFF, 2);
  EXPECT_EQ(seen, (std::vector<std::string>{"w8 2000 5a", "r16 1fff ffff"}));
  EXPECT_EQ(TakeComplaints().size(), 2U);
}

}  // namespace
}  // namespace chip
