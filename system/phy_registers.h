// The registers of a PHY that every PHY has. They are not in the register window but reached by
// number through the MII management interface; the offset of a row here is that number.
#pragma once

#include "core/value_names.h"

namespace monitor {

inline constexpr Reg16 kPhyControl{0, "PHY_CONTROL", "control"};
inline constexpr Field kPhyReset{15, 15, "reset", "reset the PHY; reads as 0"};
inline constexpr Field kPhyLoopback{14, 14, "loopback", "loopback"};
inline constexpr Field kPhySpeed{13, 13, "speed", "speed without negotiation"};
inline constexpr Field kPhyNegotiation{12, 12, "negotiation", "auto-negotiation enable"};
inline constexpr Field kPhyPowerDown{11, 11, "power_down", "power-down"};
inline constexpr Field kPhyIsolate{10, 10, "isolate", "isolate from the MAC"};
inline constexpr Field kPhyRestart{9, 9, "restart", "restart auto-negotiation; reads as 0"};
inline constexpr Field kPhyDuplex{8, 8, "duplex", "duplex without negotiation"};
inline constexpr Field kPhyCollisionTest{7, 7, "collision_test", "collision test"};

inline constexpr Reg16 kPhyStatus{1, "PHY_STATUS", "status"};
inline constexpr Field kPhyCan100T4{15, 15, "can_100_t4", "can 100BASE-T4"};
inline constexpr Field kPhyCan100Full{14, 14, "can_100_full", "can 100 Mbit/s, full duplex"};
inline constexpr Field kPhyCan100Half{13, 13, "can_100_half", "can 100 Mbit/s, half duplex"};
inline constexpr Field kPhyCan10Full{12, 12, "can_10_full", "can 10 Mbit/s, full duplex"};
inline constexpr Field kPhyCan10Half{11, 11, "can_10_half", "can 10 Mbit/s, half duplex"};
inline constexpr Field kPhyNegotiated{5, 5, "negotiated", "auto-negotiation is complete"};
inline constexpr Field kPhyRemoteFault{4, 4, "remote_fault", "the partner reports a fault"};
inline constexpr Field kPhyCanNegotiate{3, 3, "can_negotiate", "can auto-negotiate"};
inline constexpr Field kPhyLink{2, 2, "link", "link is up; 0 is latched until the next load"};
inline constexpr Field kPhyJabber{1, 1, "jabber", "jabber detected"};
inline constexpr Field kPhyExtended{0, 0, "extended", "has extended registers"};

inline constexpr Reg16 kPhyIdentifier1{2, "PHY_ID1", "identifier, upper half"};
inline constexpr Reg16 kPhyIdentifier2{3, "PHY_ID2", "identifier, lower half"};

inline constexpr Reg16 kPhyAdvertisement{4, "PHY_ADVERTISEMENT", "what the PHY offers"};
inline constexpr Reg16 kPhyPartner{5, "PHY_PARTNER", "what the partner offers; 0 without link"};
inline constexpr Field kPhyNextPage{15, 15, "next_page", "next page"};
inline constexpr Field kPhyAcknowledge{14, 14, "acknowledge", "offer of the PHY received"};
inline constexpr Field kPhyOfferFault{13, 13, "remote_fault", "remote fault"};
inline constexpr Field kPhyAsymmetricPause{11, 11, "asymmetric_pause", "asymmetric pause"};
inline constexpr Field kPhyPause{10, 10, "pause", "pause"};
inline constexpr Field kPhyOffer100T4{9, 9, "offer_100_t4", "100BASE-T4"};
inline constexpr Field kPhyOffer100Full{8, 8, "offer_100_full", "100 Mbit/s, full duplex"};
inline constexpr Field kPhyOffer100Half{7, 7, "offer_100_half", "100 Mbit/s, half duplex"};
inline constexpr Field kPhyOffer10Full{6, 6, "offer_10_full", "10 Mbit/s, full duplex"};
inline constexpr Field kPhyOffer10Half{5, 5, "offer_10_half", "10 Mbit/s, half duplex"};
inline constexpr Field kPhySelector{4, 0, "selector", "protocol of the offer"};

inline constexpr ValueName kPhySelectorNames[] = {{1, "ethernet", "IEEE 802.3"}};

inline constexpr RegisterRow kPhyRegisters[] = {
    {kPhyControl,
     {kPhyReset,
      kPhyLoopback,
      {kPhySpeed, kSpeedNames},
      kPhyNegotiation,
      kPhyPowerDown,
      kPhyIsolate,
      kPhyRestart,
      {kPhyDuplex, kDuplexNames},
      kPhyCollisionTest}},
    {kPhyStatus,
     {kPhyCan100T4, kPhyCan100Full, kPhyCan100Half, kPhyCan10Full, kPhyCan10Half, kPhyNegotiated,
      kPhyRemoteFault, kPhyCanNegotiate, kPhyLink, kPhyJabber, kPhyExtended},
     "ends the latch of a lost link"},
    kPhyIdentifier1,
    kPhyIdentifier2,
    {kPhyAdvertisement,
     {kPhyNextPage,
      kPhyOfferFault,
      kPhyAsymmetricPause,
      kPhyPause,
      kPhyOffer100T4,
      kPhyOffer100Full,
      kPhyOffer100Half,
      kPhyOffer10Full,
      kPhyOffer10Half,
      {kPhySelector, kPhySelectorNames}}},
    {kPhyPartner,
     {kPhyNextPage,
      kPhyAcknowledge,
      kPhyOfferFault,
      kPhyAsymmetricPause,
      kPhyPause,
      kPhyOffer100T4,
      kPhyOffer100Full,
      kPhyOffer100Half,
      kPhyOffer10Full,
      kPhyOffer10Half,
      {kPhySelector, kPhySelectorNames}}},
};

/// Stores to status, identifiers and partner ability have no effect.
[[nodiscard]] constexpr bool IsReadOnlyPhyRegister(unsigned number) {
  return number == kPhyStatus.offset || number == kPhyIdentifier1.offset ||
         number == kPhyIdentifier2.offset || number == kPhyPartner.offset;
}

}  // namespace monitor
