#include "machine/registers/engines.h"

#include <algorithm>
#include <initializer_list>
#include <span>

#include "classifier/classifier_registers.h"
#include "mac/frame_registers.h"
#include "mac/stat_counters_registers.h"
#include "pppoe/pdr_registers.h"
#include "pppoe/pppoe_session_registers.h"
#include "pppoe/pxt_registers.h"
#include "system/mii_registers.h"
#include "tables/arp_registers.h"
#include "tables/l3_route_registers.h"
#include "tables/mcast_registers.h"
#include "tables/nat_registers.h"

namespace board {
namespace {

using namespace monitor;  // NOLINT: the register names

constexpr Field kNone{};

/// Names of a block's registers except those at the offsets.
std::vector<std::string> AllBut(std::initializer_list<std::uint16_t> offsets,
                                std::span<const RegisterRow> rows) {
  std::vector<std::string> names;
  for (const RegisterRow& row : rows) {
    if (std::find(offsets.begin(), offsets.end(), row.offset) == offsets.end()) {
      names.emplace_back(row.name);
    }
  }
  return names;
}

/// An engine with the bits that most have, alone in its block.
EngineRow Usual(const char* name, Reg8 command, Reg8 index, std::vector<Field> index_fields,
                std::span<const RegisterRow> rows) {
  std::vector<std::string> data = AllBut({command.offset}, rows);
  if (index_fields.empty()) data = AllBut({command.offset, index.offset}, rows);
  return {name,         command.offset, kEngineStart, kEngineReadReady,        kEngineWriteReady,
          kEngineWrite, kNone,          index.offset, std::move(index_fields), std::move(data)};
}

/// One of the handshakes of the frame buffers, which have no direction.
EngineRow OfFrames(const char* name, Reg8 command, Field start, Field done, Reg8 handle,
                   std::vector<std::string> data) {
  return {name,  command.offset, start,         done, done,
          kNone, kNone,          handle.offset, {},   std::move(data)};
}

}  // namespace

std::vector<EngineRow> Engines() {
  EngineRow classifier = Usual("cls", kClsCommand, kClsIndex, {}, kClsRegisters);
  classifier.index_fields = {kClsRuleNumber};
  std::erase(classifier.data, kClsHead.name);
  EngineRow counters = Usual("sc", kStatCommand, kStatSelector, {}, kStatCounterRegisters);
  counters.index_fields = {kStatPort, kStatGroup};
  EngineRow nat{
      "nat",
      kNatCommand.offset,
      kNatStart,
      kEngineReadReady,
      kEngineWriteReady,
      kNatWrite,
      kNatResult,
      kNatIndex.offset,
      {},
      AllBut({kNatCommand.offset, kNatIndex.offset, kNatValid.offset, kNatServerValid.offset},
             kNatRegisters)};
  EngineRow mii{"mii",
                kMiiCommand.offset,
                kMiiStart,
                kMiiReadValid,
                kMiiReady,
                kMiiWriteAccess,
                kNone,
                kMiiCommand.offset,
                {kMiiPhy, kMiiRegister},
                {kMiiWriteData.name, kMiiReadData.name}};
  return {
      std::move(mii),
      OfFrames("tx", kTransmitCommand, kTransmitStart, kTransmitDone, kTransmitHandle,
               {kTransmitControl.name}),
      OfFrames("status", kBufferStatus, kStatusStart, kStatusDone, kStatusHandle, {}),
      OfFrames("release", kBufferControl, kReleaseStart, kReleaseDone, kReleaseHandle, {}),
      std::move(nat),
      Usual("l3", kRouteCommand, kRouteIndex, {}, kRouteRegisters),
      Usual("mcast", kMcastCommand, kMcastIndex, {}, kMcastRegisters),
      Usual("arp", kArpCommand, kArpIndex, {}, kArpRegisters),
      std::move(classifier),
      std::move(counters),
      Usual("pst", kPstCommand, kPstFlags, {kPstIndex}, kPstRegisters),
      Usual("pdr", kPdrCommand, kPdrIndex, {}, kPdrRegisters),
      Usual("pxt", kPxtCommand, kPxtFlags, {kPxtIndex}, kPxtRegisters),
  };
}

}  // namespace board
