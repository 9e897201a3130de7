#include "shell/command_table.h"

#include "classifier/classifier.h"
#include "mac/frame.h"
#include "mac/port_config.h"
#include "mac/stat_counters.h"
#include "mac/station_address.h"
#include "pppoe/pdr.h"
#include "pppoe/pppoe_session.h"
#include "pppoe/pxt.h"
#include "qos/control_command.h"
#include "qos/qos.h"
#include "qos/rate_control.h"
#include "system/chip_select.h"
#include "system/gpio.h"
#include "system/mii.h"
#include "system/reg.h"
#include "system/reset.h"
#include "system/tdm.h"
#include "system/timer.h"
#include "system/uart.h"
#include "tables/arp.h"
#include "tables/l3_route.h"
#include "tables/mcast.h"
#include "tables/nat.h"
#include "tables/nat_config.h"

namespace monitor {
namespace {

// clang-format off
constexpr CommandEntry kRows[] = {
    {"help", "", Help},
    {"help", "<command>", Help},
    {"reg", "<reg> [<bytes>]", RegCommand},
    {"reg", "<reg> [<bytes>] = <values>", RegCommand},
    {"timer", "", TimerCommand},
    {"timer", "0|1 = <start> <divisor>", TimerCommand},
    {"timer", "0|1 p|s|r", TimerCommand},
    {"reset", "<hw|cpu|cpucs>", ResetCommand},
    {"version", "", VersionCommand},
    {"cs", "0|a|1|3|4|5", CsCommand},
    {"cs", "a = <start>", CsCommand},
    {"cs", "0|1 = <start> <masksize>", CsCommand},
    {"cs", "3|4|5 = <start> <masksize> <wait>", CsCommand},
    {"macaddr", "", StationAddressCommand},
    {"macaddr", "m cpu|wan <MAC addr>", StationAddressCommand},
    {"macaddr", "i lan|wan|dmz <IP addr>", StationAddressCommand},
    {"maccfg", "<port>", PortConfigCommand},
    {"maccfg", "<port> = up|down 10|100 full|half mii|rmii|serial [int|ext] [fc|afc] [vlan]", PortConfigCommand},
    {"frame", "", FrameCommand},
    {"frame", "b = <base addr>", FrameCommand},
    {"frame", "t <length> <handle> <port> <class> high|low", FrameCommand},
    {"frame", "r", FrameCommand},
    {"frame", "r = auto|manual|forward", FrameCommand},
    {"frame", "s [<handle>]", FrameCommand},
    {"frame", "f [enable|disable]", FrameCommand},
    {"frame", "d [enable|disable]", FrameCommand},
    {"uart", "", UartCommand},
    {"uart", "thr|ier|dll|dlh|fcr|lcr|mcr = <value>", UartCommand},
    {"natcfg", "", NatConfigCommand},
    {"natcfg", "= <ip> <portprefix> <defaultage> <finage>[lw][dw][filter][autotcp][autoudp][disageout]", NatConfigCommand},
    {"nat", "[s] <index> [<number>]", NatCommand},
    {"nat", "[s] <index> = <sip> <sport> <dip> <dport> <proto> <nsip> <nsport> <age> [server]", NatCommand},
    {"nat", "d [s] <index> [<number>]", NatCommand},
    {"nat", "d h <dip> <dport>", NatCommand},
    {"nat", "h <dip> <dport>", NatCommand},
    {"nat", "h = <sip> <sport> <dip> <dport> <proto> <nsip> <nsport> <age> [server]", NatCommand},
    {"l3", "<index> [<number>]", L3Command},
    {"l3", "<index> = <ip> <mask> <next> <port> <pppoe> <ses no> [direct] [wanmac]", L3Command},
    {"l3", "d <index> [<number>]", L3Command},
    {"l3", "c [<index>]", L3Command},
    {"l3", "c [<index>] = <value>", L3Command},
    {"l3", "o [<index>]", L3Command},
    {"l3", "o [<index>] =", L3Command},
    {"l3", "f [enable|disable]", L3Command},
    {"mcast", "<index> [<number>]", McastCommand},
    {"mcast", "<index> = <ip> [lan] [wan] [dmz] [cpu]", McastCommand},
    {"mcast", "d <index> [<number>]", McastCommand},
    {"mcast", "c [<index>]", McastCommand},
    {"mcast", "c [<index>] = <value>", McastCommand},
    {"mcast", "o [<index>]", McastCommand},
    {"mcast", "o [<index>] =", McastCommand},
    {"mcast", "f [flood 0|1] [filter 0|1]", McastCommand},
    {"arp", "<index> [<number>]", ArpCommand},
    {"arp", "<index> = <IP addr> <MAC addr>", ArpCommand},
    {"arp", "d <index> [<number>]", ArpCommand},
    {"arp", "r [<index>]", ArpCommand},
    {"arp", "r [<index>] =", ArpCommand},
    {"arp", "r = <clear>", ArpCommand},
    {"arp", "auto", ArpCommand},
    {"arp", "f [enable|disable]", ArpCommand},
    {"clsfr", "<index> [<number>]", ClsCommand},
    {"clsfr", "<index> = <next> <counter> [eg] [cpu] [cc] [filter] [!] [eth <Ether type>] [[sip <sip> <sipmask>] [dip <dip> <dipmask>] [sp <sport> <spmask>] [dp <dport> <dpmask>]", ClsCommand},
    {"clsfr", "<index> = [pro <protocol>] [ds <ds>] [tag <tag>] [dds <dds>] [dtag <dtag>] [int [lan] [wan] [dmz] [cpu]] [class <class>] [syn <syn>] [fin <fin>] [ack <ack>] [drop high|low]", ClsCommand},
    {"clsfr", "<index> = [smac <src mac addr>] [dmac <dst mac addr>] [ivlan <input vlan id>] [dvlan <desired vlan id> <force> <tag>] [itag <ingress tag>] [rst <rst>] ", ClsCommand},
    {"clsfr", "d <index> [<number>]", ClsCommand},
    {"clsfr", "l <index> [<number>]", ClsCommand},
    {"clsfr", "h = <index>", ClsCommand},
    {"clsfr", "n <index> = <next>", ClsCommand},
    {"clsfr", "c [<index>]", ClsCommand},
    {"clsfr", "c [<index>] = <value>", ClsCommand},
    {"clsfr", "o [<index>]", ClsCommand},
    {"clsfr", "o [<index>] =", ClsCommand},
    {"clsfr", "f [enable|disable]", ClsCommand},
    {"sc", "<port> [<counter>]", StatCountersCommand},
    {"sc", "c <port>", StatCountersCommand},
    {"sc", "o <port> [<counter>]", StatCountersCommand},
    {"sc", "o <port> [<counter>] =", StatCountersCommand},
    {"mii", "<PHY addr> <reg>", MiiCommand},
    {"mii", "<PHY addr> <reg> = <value>", MiiCommand},
    {"gpiocfg", "", GpioConfigCommand},
    {"gpiocfg", "= <dir> <setting> <enable> <trigger>", GpioConfigCommand},
    {"gpio", "", GpioCommand},
    {"gpio", "= <value>", GpioCommand},
    {"gpio", "i", GpioCommand},
    {"gpio", "i = <value>", GpioCommand},
    {"qos", "", QosCommand},
    {"qos", "<port>", QosCommand},
    {"qos", "<port> <queue>", QosCommand},
    {"qos", "= <mcasth> <mcastl> <sharepool> <bufthrhd> <xonthrhd> <xoffthrhd> [red] [<no_buf>]", QosCommand},
    {"qos", "<port> = <qosmode>", QosCommand},
    {"qos", "<port> <queue> = <lowthrhd> <highthrhd> <lowdrop> <highdrop> <credit>", QosCommand},
    {"tdmcfg", "", TdmConfigCommand},
    {"tdmcfg", "= <on_value> <off_value> [auto]", TdmConfigCommand},
    {"tdm", "[off]", TdmCommand},
    {"pst", "<index> [<number>]", PstCommand},
    {"pst", "<index> = <ip> <ses_id> <vlan_id> <ser_mac_addr> <force> <tag>", PstCommand},
    {"pst", "d <index> [<number>]", PstCommand},
    {"pst", "c <index> [<number>]", PstCommand},
    {"pdr", "<index> [<number>]", PdrCommand},
    {"pdr", "<index> = <ip> <pppoe> <ses_no> ", PdrCommand},
    {"pdr", "d <index> [<number>]", PdrCommand},
    {"pxt", "<index> [<number>]", PxtCommand},
    {"pxt", "<index> = <int_mac_addr> <ext_mac_addr> <int_ses_id> <ext_ses_id> <int_vlan_id> <ext_vlan_id> <int_force> <ext_force> <int_tag> <out_tag> <port>", PxtCommand},
    {"pxt", "d <index> [<number>]", PxtCommand},
    {"pxt", "c <index> = <int_used> <ext_used>", PxtCommand},
    {"rc", "<queue> [<number>]", RateControlCommand},
    {"rc", "<queue> = <cir> <cbs> [enable|disable]", RateControlCommand},
    {"ctrl", "f [ageoutbm 0|1] [frdallip 0|1] [frgnn 0|1] [mirrlan 0|1] [mirrwan 0|1] [disttl 0|1] [mtu 0|1] [frg 0|1]", ControlCommand},
    {"ctrl", "ppp [proxy|routing|ip]", ControlCommand},
    {"ctrl", "mtu [<mtu>]", ControlCommand},
    {"exit", "", nullptr},
};
// clang-format on

}  // namespace

constinit const std::span<const CommandEntry> CommandTable = kRows;

}  // namespace monitor
