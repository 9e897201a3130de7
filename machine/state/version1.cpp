#include "machine/state/version1.h"

#include <charconv>
#include <memory>
#include <span>

#include "chip/router_chip.h"
#include "machine/state/state_error.h"
#include "machine/state/state_writer.h"

namespace board {
namespace {

using nlohmann::json;

/// A member of an entry and the registers that it was noted from: `size` bytes, or one bit.
struct Member {
  const char* name;
  std::uint16_t offset;
  std::uint8_t size;
  std::uint8_t flag = 0;  ///< Mask of the bit.
};

// clang-format off
constexpr Member kNat[] = {
    {"sip", 0x500, 4}, {"sport", 0x504, 2}, {"nsport", 0x506, 2}, {"dip", 0x508, 4},
    {"dport", 0x50C, 2}, {"age", 0x516, 2}, {"nsip", 0x548, 4}, {"tcp", 0x51B, 1, 0x04},
    {"server", 0x51B, 1, 0x02}};
constexpr Member kRoute[] = {
    {"ip", 0x600, 4}, {"mask", 0x604, 1}, {"encapsulation", 0x605, 1}, {"next_hop", 0x608, 4},
    {"flags", 0x60C, 1}, {"counter", 0x610, 4}};
constexpr Member kMcast[] = {
    {"ip", 0x61C, 4}, {"ports", 0x620, 1}, {"valid", 0x620, 1, 0x10}, {"counter", 0x62C, 4}};
constexpr Member kArp[] = {{"ip", 0x630, 4}, {"mac", 0x634, 6}, {"valid", 0x63D, 1, 0x01}};
constexpr Member kRule[] = {
    {"ether_type", 0x700, 2}, {"protocol", 0x702, 1}, {"ds", 0x703, 1}, {"sip", 0x704, 4},
    {"sip_mask", 0x708, 1}, {"dip", 0x70C, 4}, {"dip_mask", 0x710, 1}, {"sport", 0x714, 2},
    {"dport", 0x716, 2}, {"flags1", 0x718, 1}, {"flags2", 0x719, 1}, {"control", 0x71C, 4},
    {"counter", 0x724, 4}, {"smac", 0x740, 6}, {"dmac", 0x748, 6}, {"vlan", 0x750, 2},
    {"sp_mask", 0x752, 1}, {"dp_mask", 0x753, 1}, {"flags3", 0x754, 1},
    {"extended_valid", 0x755, 1}, {"desired_vlan", 0x756, 2}};
constexpr Member kSession[] = {
    {"ip", 0xA00, 4}, {"session", 0xA04, 2}, {"vlan", 0xA06, 2}, {"server_mac", 0xA08, 6},
    {"flags", 0xA0E, 1}};
constexpr Member kPdr[] = {{"ip", 0xA10, 4}, {"flags", 0xA15, 1}};
constexpr Member kPxt[] = {
    {"internal_mac", 0xA20, 6}, {"external_mac", 0xA28, 6}, {"internal_session", 0xA30, 2},
    {"external_session", 0xA32, 2}, {"internal_vlan", 0xA34, 2}, {"external_vlan", 0xA36, 2},
    {"switches", 0xA38, 1}, {"flags", 0xA39, 1}};
// clang-format on

/// A value and the JSON pointer of its place.
class Node {
 public:
  explicit Node(json& value, json::json_pointer pointer = json::json_pointer())
      : value_(value), pointer_(std::move(pointer)) {}

  [[noreturn]] void Refuse(const std::string& reason) const {
    throw StateError(pointer_.to_string() + ": " + reason);
  }

  /// A member of an object.
  [[nodiscard]] Node operator[](const std::string& name) const {
    const auto found = Members().find(name);
    if (found == value_.end()) throw StateError((pointer_ / name).to_string() + ": is missing");
    return Node(*found, pointer_ / name);
  }

  /// All of them.
  [[nodiscard]] json& Members() const {
    if (!value_.is_object()) Refuse("is not an object");
    return value_;
  }

  [[nodiscard]] json& Get() const { return value_; }

  [[nodiscard]] bool GetFlag() const {
    if (!value_.is_boolean()) Refuse("is neither true nor false");
    return value_.get<bool>();
  }

  /// The number that a text of so many hexadecimal digits, or a number, stands for.
  [[nodiscard]] std::uint64_t GetNumber(std::size_t digits) const {
    std::uint64_t number = 0;
    if (value_.is_number_unsigned()) {
      number = value_.get<std::uint64_t>();
    } else if (!value_.is_string() || !ParseHex(value_.get<std::string>(), digits, number)) {
      Refuse("is not a string of " + std::to_string(digits) + " hexadecimal digits");
    }
    if (number >> (4 * digits) != 0) Refuse("is too large");
    return number;
  }

  static bool ParseHex(const std::string& text, std::size_t digits, std::uint64_t& number) {
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number, 16);
    return text.size() == digits && result.ec == std::errc() && result.ptr == end;
  }

 private:
  json& value_;
  json::json_pointer pointer_;
};

/// Stores the lowest `size` bytes of a number, bypassing the bus.
void Store(chip::RegisterFile& registers, std::uint64_t offset, std::size_t size,
           std::uint64_t number) {
  for (std::size_t i = size; i-- != 0; number >>= 8) {
    const monitor::Reg8 reg{static_cast<std::uint16_t>(offset + i)};
    registers.Set(reg, static_cast<std::uint8_t>(number));
  }
}

void StoreMember(chip::RegisterFile& registers, const Member& member, const Node& entry) {
  const Node value = entry[member.name];
  if (member.flag == 0) {
    Store(registers, member.offset, member.size, value.GetNumber(2U * member.size));
    return;
  }
  const monitor::Reg8 reg{member.offset};
  const int others = registers.Get(reg) & ~member.flag;
  registers.Set(reg, static_cast<std::uint8_t>(others | (value.GetFlag() ? member.flag : 0)));
}

/// What `state` notes under a name.
template <typename State>
json Noted(const char* name, State state) {
  StateWriter writer;
  state(writer);
  return json::parse(writer.Text())[name];
}

/// Writes each entry to a table through its registers, and notes it from there.
template <typename Entry, unsigned kSlots>
void ConvertEntries(const Node& entries, std::span<const Member> members,
                    chip::RegisterFile& registers, chip::EntryTable<Entry, kSlots>& table) {
  for (const auto& item : entries.Members().items()) {
    const Node entry = entries[item.key()];
    std::uint64_t index = 0;
    if (!Node::ParseHex(item.key(), 2, index) || index >= kSlots) {
      entry.Refuse("has no meaning here");
    }
    for (const Member& member : members) StoreMember(registers, member, entry);
    table.Apply(registers, static_cast<unsigned>(index), {.entry = true, .counter = true});
    std::size_t known = members.size();
    if constexpr (std::is_same_v<Entry, chip::NatEntry>) {
      table.Change(static_cast<unsigned>(index)).valid = entry["valid"].GetFlag();
      ++known;
    }
    if (entry.Get().size() != known) entry.Refuse("has members that have no meaning here");
  }
  entries.Get() = Noted("entries", [&](StateWriter& writer) { table.State(writer, "entries"); });
}

/// Each register was a member, named by its offset and its name.
void ConvertRegisters(const Node& noted, chip::RegisterFile& registers) {
  registers.Reset();
  for (const auto& item : noted.Members().items()) {
    const Node value = noted[item.key()];
    std::uint64_t offset = 0;
    const bool known = Node::ParseHex(item.key().substr(0, 4), 4, offset) &&
                       offset < chip::RegisterFile::kSize &&
                       registers.BehaviourAt(static_cast<std::uint32_t>(offset)) != nullptr;
    if (!known) value.Refuse("has no meaning here");
    const std::size_t digits = value.Get().is_string() ? value.Get().get<std::string>().size() : 0;
    if (digits != 2 && digits != 4 && digits != 8) value.Refuse("is not the content of a register");
    Store(registers, offset, digits / 2, value.GetNumber(digits));
  }
  noted.Get() = Noted("registers", [&](StateWriter& writer) { registers.State(writer); });
}

}  // namespace

void ConvertVersion1(json& state) {
  const auto chip = std::make_unique<chip::RouterChip>();
  chip::RegisterFile& registers = chip->registers;
  const Node top(state);
  ConvertEntries(top["nat"]["main"], kNat, registers, chip->nat.main);
  ConvertEntries(top["nat"]["server"], kNat, registers, chip->nat.server);
  ConvertEntries(top["l3"]["entries"], kRoute, registers, chip->l3);
  ConvertEntries(top["mcast"]["entries"], kMcast, registers, chip->mcast);
  ConvertEntries(top["arp"]["entries"], kArp, registers, chip->arp);
  ConvertEntries(top["classifier"]["rules"], kRule, registers, chip->classifier);
  ConvertEntries(top["pst"]["entries"], kSession, registers, chip->pst);
  ConvertEntries(top["pdr"]["entries"], kPdr, registers, chip->pdr);
  ConvertEntries(top["pxt"]["entries"], kPxt, registers, chip->pxt);
  ConvertRegisters(top["registers"], registers);

  json& classifier = top["classifier"].Get();
  classifier["entries"] = std::move(classifier["rules"]);
  classifier.erase("rules");
  json& stored = top["classifier"]["stored_since_start"].Get();
  stored["entry"] = top["classifier"]["stored_since_start"]["rule"].GetFlag();
  stored.erase("rule");
  const Node pdr = top["pdr"]["stored_since_start"];
  pdr.Get() = {{"entry", pdr.GetFlag()}};
  state["version"] = 2U;
}

}  // namespace board
