maccfg wan = up 100 full mii
maccfg lan = up 100 full mii vlan
maccfg dmz = up 100 full mii
macaddr m cpu 020000000001
macaddr m wan 020000000002
macaddr i wan 203.0.113.2
macaddr i lan 192.168.1.1
macaddr i dmz 192.168.2.1
arp auto
