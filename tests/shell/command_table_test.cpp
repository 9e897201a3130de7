#include "shell/command_table.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace monitor {
namespace {

struct Command {
  std::string name;
  std::vector<std::string> usages;
};

// clang-format off
const std::vector<Command> kCommands{
    {"help",
     {"",
      "<command>"}},
    {"reg",
     {"<reg> [<bytes>]",
      "<reg> [<bytes>] = <values>"}},
    {"timer",
     {"",
      "0|1 = <start> <divisor>",
      "0|1 p|s|r"}},
    {"reset",
     {"<hw|cpu|cpucs>"}},
    {"version",
     {""}},
    {"cs",
     {"0|a|1|3|4|5",
      "a = <start>",
      "0|1 = <start> <masksize>",
      "3|4|5 = <start> <masksize> <wait>"}},
    {"macaddr",
     {"",
      "m cpu|wan <MAC addr>",
      "i lan|wan|dmz <IP addr>"}},
    {"maccfg",
     {"<port>",
      "<port> = up|down 10|100 full|half mii|rmii|serial [int|ext] [fc|afc] [vlan]"}},
    {"frame",
     {"",
      "b = <base addr>",
      "t <length> <handle> <port> <class> high|low",
      "r",
      "r = auto|manual|forward",
      "s [<handle>]",
      "f [enable|disable]",
      "d [enable|disable]"}},
    {"uart",
     {"",
      "thr|ier|dll|dlh|fcr|lcr|mcr = <value>"}},
    {"natcfg",
     {"",
      "= <ip> <portprefix> <defaultage> <finage>[lw][dw][filter][autotcp][autoudp][disageout]"}},
    {"nat",
     {"[s] <index> [<number>]",
      "[s] <index> = <sip> <sport> <dip> <dport> <proto> <nsip> <nsport> <age> [server]",
      "d [s] <index> [<number>]",
      "d h <dip> <dport>",
      "h <dip> <dport>",
      "h = <sip> <sport> <dip> <dport> <proto> <nsip> <nsport> <age> [server]"}},
    {"l3",
     {"<index> [<number>]",
      "<index> = <ip> <mask> <next> <port> <pppoe> <ses no> [direct] [wanmac]",
      "d <index> [<number>]",
      "c [<index>]",
      "c [<index>] = <value>",
      "o [<index>]",
      "o [<index>] =",
      "f [enable|disable]"}},
    {"mcast",
     {"<index> [<number>]",
      "<index> = <ip> [lan] [wan] [dmz] [cpu]",
      "d <index> [<number>]",
      "c [<index>]",
      "c [<index>] = <value>",
      "o [<index>]",
      "o [<index>] =",
      "f [flood 0|1] [filter 0|1]"}},
    {"arp",
     {"<index> [<number>]",
      "<index> = <IP addr> <MAC addr>",
      "d <index> [<number>]",
      "r [<index>]",
      "r [<index>] =",
      "r = <clear>",
      "auto",
      "f [enable|disable]"}},
    {"clsfr",
     {"<index> [<number>]",
      "<index> = <next> <counter> [eg] [cpu] [cc] [filter] [!] [eth <Ether type>] [[sip <sip> <sipmask>] [dip <dip> <dipmask>] [sp <sport> <spmask>] [dp <dport> <dpmask>]",
      "<index> = [pro <protocol>] [ds <ds>] [tag <tag>] [dds <dds>] [dtag <dtag>] [int [lan] [wan] [dmz] [cpu]] [class <class>] [syn <syn>] [fin <fin>] [ack <ack>] [drop high|low]",
      "<index> = [smac <src mac addr>] [dmac <dst mac addr>] [ivlan <input vlan id>] [dvlan <desired vlan id> <force> <tag>] [itag <ingress tag>] [rst <rst>] ",
      "d <index> [<number>]",
      "l <index> [<number>]",
      "h = <index>",
      "n <index> = <next>",
      "c [<index>]",
      "c [<index>] = <value>",
      "o [<index>]",
      "o [<index>] =",
      "f [enable|disable]"}},
    {"sc",
     {"<port> [<counter>]",
      "c <port>",
      "o <port> [<counter>]",
      "o <port> [<counter>] ="}},
    {"mii",
     {"<PHY addr> <reg>",
      "<PHY addr> <reg> = <value>"}},
    {"gpiocfg",
     {"",
      "= <dir> <setting> <enable> <trigger>"}},
    {"gpio",
     {"",
      "= <value>",
      "i",
      "i = <value>"}},
    {"qos",
     {"",
      "<port>",
      "<port> <queue>",
      "= <mcasth> <mcastl> <sharepool> <bufthrhd> <xonthrhd> <xoffthrhd> [red] [<no_buf>]",
      "<port> = <qosmode>",
      "<port> <queue> = <lowthrhd> <highthrhd> <lowdrop> <highdrop> <credit>"}},
    {"tdmcfg",
     {"",
      "= <on_value> <off_value> [auto]"}},
    {"tdm",
     {"[off]"}},
    {"pst",
     {"<index> [<number>]",
      "<index> = <ip> <ses_id> <vlan_id> <ser_mac_addr> <force> <tag>",
      "d <index> [<number>]",
      "c <index> [<number>]"}},
    {"pdr",
     {"<index> [<number>]",
      "<index> = <ip> <pppoe> <ses_no> ",
      "d <index> [<number>]"}},
    {"pxt",
     {"<index> [<number>]",
      "<index> = <int_mac_addr> <ext_mac_addr> <int_ses_id> <ext_ses_id> <int_vlan_id> <ext_vlan_id> <int_force> <ext_force> <int_tag> <out_tag> <port>",
      "d <index> [<number>]",
      "c <index> = <int_used> <ext_used>"}},
    {"rc",
     {"<queue> [<number>]",
      "<queue> = <cir> <cbs> [enable|disable]"}},
    {"ctrl",
     {"f [ageoutbm 0|1] [frdallip 0|1] [frgnn 0|1] [mirrlan 0|1] [mirrwan 0|1] [disttl 0|1] [mtu 0|1] [frg 0|1]",
      "ppp [proxy|routing|ip]",
      "mtu [<mtu>]"}},
    {"exit",
     {""}},
};
// clang-format on

TEST(CommandTable, HoldsEveryFormOfEveryCommandInOrder) {
  std::size_t row = 0;
  for (const Command& command : kCommands) {
    for (const std::string& usage : command.usages) {
      ASSERT_LT(row, CommandTable.size());
      EXPECT_EQ(CommandTable[row].name, command.name) << "row " << row;
      EXPECT_EQ(CommandTable[row].usage, usage) << "row " << row;
      ++row;
    }
  }
  EXPECT_EQ(row, CommandTable.size());
}

TEST(CommandTable, RowsOfACommandStandTogether) {
  std::set<std::string> seen;
  std::string last;
  for (const CommandEntry& row : CommandTable) {
    if (row.name == last) continue;
    EXPECT_TRUE(seen.insert(row.name).second) << row.name;
    last = row.name;
  }
}

TEST(CommandTable, RowsOfACommandShareItsHandler) {
  for (std::size_t row = 1; row < CommandTable.size(); ++row) {
    if (std::string(CommandTable[row].name) != CommandTable[row - 1].name) continue;
    EXPECT_EQ(CommandTable[row].handler, CommandTable[row - 1].handler) << "row " << row;
  }
}

TEST(CommandTable, OnlyExitHasNoHandler) {
  for (const CommandEntry& row : CommandTable) {
    EXPECT_EQ(row.handler == nullptr, std::string(row.name) == "exit") << row.name;
  }
}

TEST(CommandTable, HelpIsItsOwnHandler) { EXPECT_EQ(CommandTable[0].handler, &Help); }

TEST(CommandTable, NamesAreLowerCaseWordsThatFitTheirSlots) {
  for (const CommandEntry& row : CommandTable) {
    const std::string name = row.name;
    EXPECT_EQ(name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789"), std::string::npos);
    EXPECT_GT(name.size(), 0U);
    EXPECT_LT(name.size(), 32U);
  }
}

}  // namespace
}  // namespace monitor
