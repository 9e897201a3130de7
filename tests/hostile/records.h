// Every field of the drivers' records, for comparisons. Padding may differ, so records are not
// compared as memory.
#pragma once

#include <tuple>

#include "classifier/same_rule.h"
#include "mac/forward_control.h"
#include "mac/frame.h"
#include "mac/port_config.h"
#include "pppoe/pdr.h"
#include "pppoe/pppoe_session.h"
#include "pppoe/pxt.h"
#include "qos/qos.h"
#include "qos/rate_control.h"
#include "system/chip_select.h"
#include "system/gpio.h"
#include "tables/arp.h"
#include "tables/l3_route.h"
#include "tables/mcast.h"
#include "tables/nat.h"
#include "tables/nat_config.h"

inline auto Fields(const monitor::ChipSelect& r) { return std::tie(r.start, r.maskSize, r.wait); }
inline auto Fields(const monitor::SdramType& r) { return std::tie(r.chipSelect, r.column, r.row); }
inline auto Fields(const monitor::GpioConfig& r) {
  return std::tie(r.direction, r.enable, r.setting, r.trigger);
}
inline auto Fields(const monitor::PortConfig& r) {
  return std::tie(r.link, r.duplex, r.speed, r.flow_control, r.interface, r.loopback, r.vlan_aware);
}
inline auto Fields(const monitor::ReceivedFrame& r) {
  return std::tie(r.port, r.data, r.reason, r.length);
}
inline auto Fields(const monitor::ForwardControl& r) {
  return std::tie(r.filterWanToWan, r.dropChecksumErrors, r.frgnn, r.mirrlan, r.mirrwan, r.disttl,
                  r.mtu, r.frg, r.frdallip, r.pppMode, r.ageoutbm, r.mtuBytes);
}
inline auto Fields(const monitor::NatConfig& r) {
  return std::tie(r.ip, r.portPrefix, r.defaultAge, r.finAge, r.lanToWan, r.dmzToWan, r.autoTcp,
                  r.autoUdp, r.disableAgeOut, r.filter);
}
inline auto Fields(const monitor::NatEntry& r) {
  return std::tie(r.index, r.sip, r.sport, r.dip, r.dport, r.protocol, r.nsport, r.nsip, r.age,
                  r.server, r.valid);
}
inline auto Fields(const monitor::L3Route& r) {
  return std::tie(r.ip, r.mask, r.nextHop, r.port, r.direct, r.wanMac, r.pppoe, r.session, r.valid);
}
inline auto Fields(const monitor::McastEntry& r) { return std::tie(r.ip, r.ports, r.valid); }
inline auto Fields(const monitor::McastSettings& r) { return std::tie(r.flood, r.filter); }
inline auto Fields(const monitor::ArpEntry& r) { return std::tie(r.ip, r.mac, r.valid); }
inline auto Fields(const monitor::SystemQos& r) {
  return std::tie(r.redEnable, r.mcasth, r.mcastl, r.sharepool, r.bufthrhd, r.xonthrhd, r.xoffthrhd,
                  r.no_buf);
}
inline auto Fields(const monitor::QueueQos& r) {
  return std::tie(r.lowthrhd, r.highthrhd, r.lowdrop, r.highdrop, r.credit);
}
inline auto Fields(const monitor::RateControl& r) { return std::tie(r.cir, r.cbs, r.enable); }
inline auto Fields(const monitor::PstEntry& r) {
  return std::tie(r.ip, r.sessionId, r.vlanId, r.serverMac, r.tag, r.force, r.used, r.valid);
}
inline auto Fields(const monitor::PdrEntry& r) {
  return std::tie(r.ip, r.pppoe, r.sessionNumber, r.valid);
}
inline auto Fields(const monitor::PxtEntry& r) {
  return std::tie(r.internalMac, r.externalMac, r.internalSessionId, r.externalSessionId,
                  r.internalVlanId, r.externalVlanId, r.internalForce, r.internalTag,
                  r.internalUsed, r.externalForce, r.externalTag, r.externalUsed, r.port, r.valid);
}
