#include "chip/pppoe/pdr.h"

#include "pppoe/pdr_registers.h"

namespace chip {

using namespace monitor;  // NOLINT: the register names

namespace {

constexpr std::uint8_t kExisting = kPdrSession.Mask() | kPdrPppoe.Mask() | kPdrValid.Mask();

}  // namespace

PdrTable::PdrTable(RegisterFile& registers)
    : engine(registers, "pdr", kPdrCommand, kTableEngineBits,
             [this](std::uint8_t command) { return Run(kEngineWrite.Get(command) != 0); }),
      registers_(registers) {
  engine.on_end = [this] { stored_ = false; };
  const auto entry = [this](std::uint32_t) { stored_ = true; };
  registers.Define(kPdrIp, {.after_store = entry});
  registers.Define(kPdrIndex);
  registers.Define(kPdrFlags, {.after_store = entry});
}

void PdrTable::Reset() {
  entries.fill({});
  stored_ = false;
  engine.Reset();
}

bool PdrTable::Run(bool write) {
  Entry& entry = entries[registers_.Get(kPdrIndex) % kEntries];
  if (!write) {
    registers_.Set(kPdrIp, entry.ip);
    registers_.Set(kPdrFlags, entry.flags);
  } else if (stored_) {
    entry.ip = registers_.Get(kPdrIp);
    entry.flags = registers_.Get(kPdrFlags) & kExisting;
  }
  return true;
}

void PdrTable::State(StateArchive& archive) {
  archive.Table("entries", entries, [&](Entry& entry) {
    archive.Hex("ip", entry.ip);
    archive.Hex("flags", entry.flags, kExisting);
  });
  archive.Flag("stored_since_start", stored_);
  engine.State(archive);
}

}  // namespace chip
