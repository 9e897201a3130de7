#include "machine/registers/register_blocks.h"

#include "classifier/classifier_registers.h"
#include "core/filter_registers.h"
#include "mac/forward_control_registers.h"
#include "mac/frame_registers.h"
#include "mac/port_config_registers.h"
#include "mac/stat_counters_registers.h"
#include "mac/station_address_registers.h"
#include "pppoe/pdr_registers.h"
#include "pppoe/pppoe_session_registers.h"
#include "pppoe/pxt_registers.h"
#include "qos/qos_registers.h"
#include "qos/rate_control_registers.h"
#include "system/chip_select_registers.h"
#include "system/gpio_registers.h"
#include "system/interrupt_registers.h"
#include "system/mii_registers.h"
#include "system/reset_registers.h"
#include "system/tdm_registers.h"
#include "system/timer_registers.h"
#include "system/uart_registers.h"
#include "tables/arp_registers.h"
#include "tables/l3_route_registers.h"
#include "tables/mcast_registers.h"
#include "tables/nat_config_registers.h"
#include "tables/nat_registers.h"

namespace board {
namespace {

using namespace monitor;  // NOLINT: the register names

/// A new block adds its row.
constexpr RegisterBlock kBlocks[] = {
    {"port", "port configuration", kPortConfigRegisters},
    {"tdm", "TDM timer", kTdmRegisters},
    {"forward", "forwarding controls", kForwardControlRegisters},
    {"rate", "rate control", kRateControlRegisters},
    {"reset", "reset and chip identity", kResetRegisters},
    {"filter", "filter switches", kFilterRegisters},
    {"frame", "frame buffers", kFrameRegisters},
    {"cs", "chip selects and SDRAM", kChipSelectRegisters},
    {"timer", "timers", kTimerRegisters},
    {"interrupt", "interrupt controller", kInterruptRegisters},
    {"gpio", "general-purpose pins", kGpioRegisters},
    {"uart", "UART", kUartRegisters},
    {"station", "station addresses", kStationAddressRegisters},
    {"mii", "MII management", kMiiRegisters},
    {"nat", "NAT tables", kNatRegisters},
    {"natcfg", "NAT configuration", kNatConfigRegisters},
    {"l3", "L3 routes", kRouteRegisters},
    {"mcast", "multicast table", kMcastRegisters},
    {"arp", "ARP table", kArpRegisters},
    {"cls", "classifier", kClsRegisters},
    {"qos", "queues and buffers", kQosRegisters},
    {"sc", "statistics counters", kStatCounterRegisters},
    {"pst", "PPPoE sessions", kPstRegisters},
    {"pdr", "PPPoE destinations", kPdrRegisters},
    {"pxt", "PPPoE translations", kPxtRegisters},
};

}  // namespace

std::span<const RegisterBlock> RegisterBlocks() { return kBlocks; }

}  // namespace board
