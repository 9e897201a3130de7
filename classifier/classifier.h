// The packet classifier: 128 rules accessed through an index, data registers and a command byte. A
// rule compares optional header fields, acts on frames that match and counts them; rules form
// chains, which the chip follows from the chain head. Filter switch: bit 5 of the filter control
// byte.
//
// Surprises: a read never reports copy-to-CPU. Relinking a rule above 63 writes to the rule 64
// below it. The values of ACK and the ingress tag are not cut and overflow into their neighbours.
// The overflow map has nine bytes, which hold rules 0x38 to 0x7F; the other rules have no bit.
#pragma once

#include <array>

#include "console/command.h"
#include "core/driver_status.h"

namespace monitor {

inline constexpr unsigned kClsRules = 128;

/// `next` of the last rule of a chain.
inline constexpr std::uint16_t kClsNoNext = 255;

/// Bits of `fieldMask`: which optional fields of a rule are present.
enum ClsMatch : std::uint16_t {
  kMatchEtherType = 0x0001,
  kMatchSip = 0x0002,    ///< With `sipMask`.
  kMatchDip = 0x0004,    ///< With `dipMask`.
  kMatchSport = 0x0008,  ///< With `spMask`.
  kMatchDport = 0x0010,  ///< With `dpMask`.
  kMatchProtocol = 0x0020,
  kMatchDs = 0x0040,
  kMatchTag = 0x0080,
  kMatchInterfaces = 0x0200,
  kMatchSyn = 0x0400,
  kMatchFin = 0x0800,
  kMatchClass = 0x1000,
  kMatchDrop = 0x2000,
  kMatchDds = 0x4000,
  kMatchDtag = 0x8000,
};

/// One rule. Addresses and 16-bit values are host integers.
struct ClsRule {
  std::uint16_t fieldMask;  ///< ClsMatch bits.
  std::uint16_t etherType;
  std::uint32_t sip;
  std::uint8_t sipMask;
  std::uint32_t dip;
  std::uint8_t dipMask;
  std::uint16_t sport;
  std::uint16_t dport;
  std::uint8_t protocol;
  std::uint8_t ds;
  std::uint8_t tag;   ///< 3 bits.
  std::uint8_t dds;   ///< Desired DS value, 6 bits.
  std::uint8_t dtag;  ///< Desired tag, 3 bits.
  std::uint8_t syn;   ///< 0 or 1; so are the other TCP flags.
  std::uint8_t fin;
  std::uint8_t interfaces;  ///< Set of port codes at which a frame arrives.
  std::uint8_t dclass;      ///< Class to assign, 2 bits.
  std::uint8_t dropHigh;    ///< Enforced drop precedence: 1 high, 0 low.
  std::uint8_t filter;
  std::uint8_t toCpu;
  std::uint8_t ingress;   ///< Applies at 1 ingress, 0 egress.
  std::uint8_t positive;  ///< 1 positive, 0 negated match.
  std::uint16_t next;     ///< Next rule of the chain, or kClsNoNext.
  std::uint32_t counter;
  MacAddress smac;
  MacAddress dmac;
  std::uint16_t vlanId;  ///< VLAN with which a frame arrives.
  std::uint8_t spMask;   ///< 5 bits.
  std::uint8_t dpMask;   ///< 5 bits.
  std::uint8_t ack;
  std::uint8_t ingressTagged;  ///< Frame must arrive 1 tagged, 0 untagged.
  std::uint8_t smacValid;      ///< `smac` is present; likewise the next four.
  std::uint8_t dmacValid;
  std::uint8_t vlanValid;
  std::uint8_t ackValid;
  std::uint8_t itagValid;
  std::uint16_t desiredVlanId;    ///< 12 bits; always written, as the next two.
  std::uint8_t desiredVlanForce;  ///< 0 or 1.
  std::uint8_t desiredVlanTag;    ///< 0 or 1.
  std::uint8_t valid;             ///< 0 or 1; set by writes, filled by reads.
  std::uint8_t rst;
  std::uint8_t rstValid;
  std::uint8_t copyToCpu;  ///< Never filled by reads.
};
static_assert(sizeof(ClsRule) == 76);

/// How a rule marks an optional field as present: by bits of `fieldMask` or by a separate byte.
/// A default-constructed one is never present.
struct ClsPresence {
  std::uint16_t mask = 0;
  std::uint8_t ClsRule::*byte = nullptr;

  constexpr ClsPresence() = default;
  constexpr ClsPresence(ClsMatch bit) : mask(bit) {}  // NOLINT: table rows name either
  constexpr ClsPresence(std::uint8_t ClsRule::*member) : byte(member) {}  // NOLINT: likewise

  [[nodiscard]] constexpr bool In(const ClsRule& rule) const {
    return (rule.fieldMask & mask) != 0 || (byte != nullptr && rule.*byte != 0);
  }

  constexpr void Mark(ClsRule& rule) const {
    rule.fieldMask = static_cast<std::uint16_t>(rule.fieldMask | mask);
    if (byte != nullptr) rule.*byte = 1;
  }
};

/// Overflow bits: rule i is bit (i AND 7) of byte (0x7F - i) / 8, if there is such a byte.
using ClsOverflowMap = std::array<std::uint8_t, 9>;

/// What the driver last wrote to each rule. Deleted rules stay, with `valid` cleared.
extern std::array<ClsRule, kClsRules> ClsShadow;

/// Clears the shadow of all rules.
void ClsClearShadow();

// All table operations: kNotReady when the engine is busy, kRefused, with nothing touched, for
// a rule above 127. Only the low 16 bits of a rule's number count.

/// Fills `rule` except `copyToCpu`, and `rst` when it is absent, which keep their values. Other
/// absent fields become 0.
[[nodiscard]] DriverStatus ClsRead(unsigned index, ClsRule& rule);

/// Writes the rule and marks it valid, in `rule` too; the shadow keeps a copy. Registers of
/// absent fields stay as they are.
[[nodiscard]] DriverStatus ClsWrite(unsigned index, ClsRule& rule);

/// Marks the rule invalid; the rest of it stays, its link included.
[[nodiscard]] DriverStatus ClsDelete(unsigned index);

/// The chain head, 0 to 127. Reading it is always kOk.
DriverStatus ClsReadFirst(std::uint16_t& head);
[[nodiscard]] DriverStatus ClsWriteFirst(std::uint16_t head);

/// Links the rule to `next` (kClsNoNext: ends the chain there). The result goes to rule
/// `index` AND 0x3F.
[[nodiscard]] DriverStatus ClsNext(unsigned index, std::uint16_t next);

[[nodiscard]] DriverStatus ClsReadCounter(unsigned index, std::uint32_t& value);
[[nodiscard]] DriverStatus ClsWriteCounter(unsigned index, std::uint32_t value);

/// Reads the overflow bits of all rules.
[[nodiscard]] DriverStatus ClsCheckOverflow(ClsOverflowMap& map);

/// Clears the overflow bits that are 1 in `map`.
[[nodiscard]] DriverStatus ClsClearOverflow(const ClsOverflowMap& map);

/// The classifier filter switch, 0 or 1. Always kOk.
DriverStatus ClsReadFilter(std::uint8_t& on);
DriverStatus ClsWriteFilter(std::uint8_t on);

/// Prints the rule as rule `index`.
void ClsRulePrint(const ClsRule& rule, unsigned index);

/// The `clsfr` command.
int ClsCommand(int argc, ArgVector argv);

}  // namespace monitor
