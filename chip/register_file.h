// The model's 8 KiB of registers: storage, what each register does beyond storing, and the
// complaints about accesses that real software should not make.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "chip/state.h"
#include "core/registers.h"

namespace chip {

/// The notation of a register's value in a state.
enum class Notation : std::uint8_t {
  kHex,
  kAddress,  ///< An IP address.
  kMac,      ///< A run of six, which hold a MAC address.
};

/// How a register differs from plain storage that starts at 0. Masks are register values.
struct Behaviour {
  std::uint32_t reset = 0;               ///< Value at power-on.
  std::uint32_t read_only = 0;           ///< Bits that stores leave alone.
  std::uint32_t write_one_to_clear = 0;  ///< Bits that a store of 1 clears, of 0 leaves alone.
  Notation notation = Notation::kHex;
  std::function<void()> before_load = {};                      ///< Brings the register up to date.
  std::function<void(std::uint32_t stored)> after_store = {};  ///< Given the raw value stored.
};

/// One bus access, for observers.
struct Access {
  bool store;
  unsigned width;  ///< Bytes: 1, 2 or 4.
  std::uint32_t offset;
  std::uint32_t value;
};

class RegisterFile {
 public:
  static constexpr std::uint32_t kSize = 0x2000;

  RegisterFile();

  /// Claims a register. Each byte of the window belongs to one register at most.
  template <std::unsigned_integral T>
  void Define(monitor::Reg<T> reg, const Behaviour& behaviour = {}) {
    Claim(reg.offset, sizeof(T), reg.name, behaviour);
  }

  /// Claims a run of byte registers that behave alike; hooks are called for each byte.
  template <std::size_t N>
  void Define(monitor::RegBytes<N> regs, const Behaviour& behaviour = {}) {
    for (unsigned i = 0; i < N; ++i) Define(regs[i], behaviour);
  }

  /// Says whether loads of the register have to call its `before_load`, as they do at first.
  /// Loads that do not are quicker.
  void CallBeforeLoad(monitor::Reg8 reg, bool on) { load_flags_[reg.offset] = FlagsOf(on); }

  // What the registers hold, bypassing the bus: no hooks, no masks, no complaints.
  template <std::unsigned_integral T>
  [[nodiscard]] T Get(monitor::Reg<T> reg) const {
    return static_cast<T>(Assemble(reg.offset, sizeof(T)));
  }
  template <std::unsigned_integral T>
  void Set(monitor::Reg<T> reg, std::uint32_t value) {
    Disassemble(reg.offset, sizeof(T), value);
  }
  template <std::size_t N>
  [[nodiscard]] std::array<std::uint8_t, N> Get(monitor::RegBytes<N> regs) const {
    std::array<std::uint8_t, N> bytes;
    for (unsigned i = 0; i < N; ++i) bytes[i] = Get(regs[i]);
    return bytes;
  }
  template <std::size_t N>
  void Set(monitor::RegBytes<N> regs, const std::array<std::uint8_t, N>& bytes) {
    for (unsigned i = 0; i < N; ++i) Set(regs[i], bytes[i]);
  }

  /// A bus load or store of `width` bytes. Values are register values (the byte at the lowest
  /// offset is the most significant). An access that leaves the window reads as all ones.
  [[nodiscard]] std::uint32_t Load(std::uint32_t offset, unsigned width) {
    if (!IsPlain(load_flags_, offset, width)) return LoadSpecial(offset, width);
    return Assemble(offset, width);
  }
  void Store(std::uint32_t offset, unsigned width, std::uint32_t value) {
    if (!IsPlain(store_flags_, offset, width)) {
      StoreSpecial(offset, width, value);
    } else {
      Disassemble(offset, width, value);
    }
  }

  /// How the register that contains the byte behaves; null where there is none.
  [[nodiscard]] const Behaviour* BehaviourAt(std::uint32_t offset) const;

  /// Every register back to its power-on value.
  void Reset();

  /// What every byte of the window holds.
  void State(StateArchive& archive);

  /// Every byte of the window as stored, in order of offset.
  [[nodiscard]] std::span<const std::uint8_t, kSize> Snapshot() const { return bytes_; }

  /// Notes that the software did something it should not.
  void Complain(const std::string& text);

  /// Complaints so far, with how often each was raised.
  [[nodiscard]] std::map<std::string, unsigned> Complaints() const;
  void ForgetComplaints();

  /// The observer is called after each load and before each store takes effect; an empty one ends
  /// that.
  void Watch(std::function<void(const Access&)> observer);

  /// Called when a complaint is raised for the first time, except for accesses to bytes
  /// without a register.
  std::function<void(const std::string&)> on_complaint;
  /// Called when a byte without a register is accessed for the first time.
  std::function<void(std::uint32_t offset)> on_unmapped;

 private:
  struct Row {
    std::uint16_t offset;
    std::uint8_t width;
    std::string name;
    Behaviour behaviour;
  };

  static constexpr std::uint16_t kUnclaimed = 0xFFFF;

  /// What a load or store does besides moving bytes, for each byte of the window, so
  /// that an access looks at all of its bytes at once. 0: nothing.
  using DispatchFlags = std::array<std::uint8_t, kSize>;
  static constexpr std::uint8_t kSpecial = 0x01;  ///< What the register does, or its absence.
  static constexpr std::uint8_t kWatched = 0x02;  ///< The observer.

  [[nodiscard]] std::uint8_t FlagsOf(bool special) const {
    return static_cast<std::uint8_t>(watched_ | (special ? kSpecial : 0));
  }

  void Claim(std::uint16_t offset, unsigned width, const char* name, const Behaviour& behaviour);

  // Inlined, as every access goes through these and its width is mostly a constant.
  [[nodiscard]] static constexpr std::uint32_t WidthMask(unsigned width) {
    return static_cast<std::uint32_t>((std::uint64_t{1} << (8 * width)) - 1);
  }
  /// The access lies in the window and is aligned.
  [[nodiscard]] static bool IsProper(std::uint32_t offset, unsigned width) {
    return offset < kSize && (offset & (width - 1)) == 0;
  }
  [[nodiscard]] static bool IsPlain(const DispatchFlags& flags, std::uint32_t offset,
                                    unsigned width) {
    constexpr DispatchFlags::value_type kNothing[] = {0, 0, 0, 0};
    return IsProper(offset, width) && std::memcmp(&flags[offset], kNothing, width) == 0;
  }
  [[nodiscard]] std::uint32_t Assemble(std::uint32_t offset, unsigned width) const {
    const std::uint8_t* const bytes = &bytes_[offset];
    // Most registers are bytes, and a loop costs them more than the access.
    if (width == 1) return bytes[0];
    std::uint32_t value = 0;
    for (unsigned i = 0; i < width; ++i) value = value << 8 | bytes[i];
    return value;
  }
  void Disassemble(std::uint32_t offset, unsigned width, std::uint32_t value) {
    std::uint8_t* const bytes = &bytes_[offset];
    if (width == 1) {
      bytes[0] = static_cast<std::uint8_t>(value);
      return;
    }
    for (unsigned i = width; i-- != 0; value >>= 8) bytes[i] = static_cast<std::uint8_t>(value);
  }

  [[nodiscard]] std::uint32_t LoadSpecial(std::uint32_t offset, unsigned width);
  void StoreSpecial(std::uint32_t offset, unsigned width, std::uint32_t value);
  // Whatever the access reaches, parts of registers, several or none, and watched.
  [[nodiscard]] std::uint32_t LoadParts(std::uint32_t offset, unsigned width);
  void StoreParts(std::uint32_t offset, unsigned width, std::uint32_t value);
  static void Refresh(const Row& row) {
    if (row.behaviour.before_load) row.behaviour.before_load();
  }
  /// Complains about an improper access; false when it leaves the window.
  bool ComplainOfAddress(std::uint32_t offset, unsigned width);
  /// The register that the access covers exactly, as most do; null otherwise.
  [[nodiscard]] const Row* WholeRow(std::uint32_t offset, unsigned width) const;
  /// Calls `visit_row` once for each register that the access touches, `visit_unmapped` for each
  /// byte without one.
  template <typename VisitRow, typename VisitUnmapped>
  void ForEachRow(std::uint32_t offset, unsigned width, VisitRow visit_row,
                  VisitUnmapped visit_unmapped);
  /// Stores into the register the bits of `value` that the access at `offset` reaches.
  void StoreToRow(const Row& row, std::uint32_t offset, std::uint32_t reach, std::uint32_t value);
  void ComplainOfStore(const Row& row, std::uint32_t offset);
  void ComplainOfUnmapped(std::uint32_t offset);
  /// The row that begins there; null when there is none.
  [[nodiscard]] const Row* RowFrom(std::uint32_t offset) const;
  /// What the trace calls the register; `position` counts successive ones of that name.
  [[nodiscard]] std::string UniqueName(const Row& row, unsigned position) const;
  void RowState(StateArchive& archive, const Row& row, const std::string& name);
  void MacState(StateArchive& archive, const Row& first);
  void UnmappedState(StateArchive& archive);

  std::vector<Row> rows_;
  std::array<std::uint16_t, kSize> row_at_;
  DispatchFlags load_flags_;
  DispatchFlags store_flags_;
  std::uint8_t watched_ = 0;  ///< kWatched while there is an observer, in every byte's flags.
  std::function<void(const Access&)> observer_;
  std::array<std::uint8_t, kSize> bytes_{};
  std::map<std::string, unsigned> complaints_;
  /// Accesses to bytes without a register; dumps of the whole window make many.
  std::array<unsigned, kSize> unmapped_accesses_{};
};

}  // namespace chip
