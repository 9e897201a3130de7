"""The register map that virtual-board prints, and the registers that the tests touch."""

import json
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as xml

import support

BOARD = support.program("VIRTUAL_BOARD")

TESTS = pathlib.Path(__file__).resolve().parent.parent
SCHEMA = TESTS / "blackbox/cmsis_svd.xsd"
WINDOW = 0x50000000

# Tests of accesses as such, at any offset.
OF_ACCESSES = {
    "chip/engine_test.cpp", "chip/plain_storage_test.cpp", "chip/register_file_test.cpp",
    "console/console_test.cpp", "core/engine_test.cpp", "core/long_wait_test.cpp",
    "core/registers_test.cpp", "shell/shell_test.cpp", "system/reg_test.cpp",
}
# The driver does not check the queue, so a test asks for one that the chip does not have.
NO_REGISTER = {(0x030, 16), (0x032, 16)}

# Kinds of value whose values have names.
NAMED = {"enumeration", "port", "port_set"}

ONE_HOT = {1: "wan", 2: "lan", 4: "dmz", 8: "cpu"}
DIRECTION = {0: "read", 1: "write"}
LOOPBACK = {0: "none", 1: "internal", 2: "external"}
INTERFACE = {0: "serial", 2: "mii", 3: "rmii"}
ENUMERATIONS = {
    "MAC_CONTROL.qos_mode": {0: "mode1", 1: "mode2"},
    "MAC_CONTROL.speed_100": {0: "mbps10", 1: "mbps100"},
    "MAC_CONTROL.full_duplex": {0: "half", 1: "full"},
    "LOOPBACK.dmz": LOOPBACK, "LOOPBACK.lan": LOOPBACK, "LOOPBACK.wan": LOOPBACK,
    "INTERFACE_TYPE.cpu_qos_mode": {0: "mode1", 1: "mode2"},
    "INTERFACE_TYPE.dmz": INTERFACE, "INTERFACE_TYPE.lan": INTERFACE,
    "INTERFACE_TYPE.wan": INTERFACE,
    "TDM_INTERFACE.enable": {0: "disabled", 3: "enabled"},
    "PPP_CONTROL.ppp_mode": {0: "proxy", 1: "routing", 2: "ip"},
    "FRAME_TX_CONTROL.high": {0: "low", 1: "high"},
    "FRAME_TX_CONTROL.port": ONE_HOT,
    "SDRAM_TYPE.row": {0: "bits11", 1: "bits12", 2: "bits13"},
    "SDRAM_TYPE.column": {0: "bits8", 1: "bits9"},
    "SDRAM_TYPE.chip_select": {0: "one", 1: "two"},
    "UART_ISR_FCR.fifos": {0: "off", 3: "on"},
    "UART_ISR_FCR.source": {1: "transmit_empty", 2: "received_data"},
    "UART_LCR.parity": {0: "none", 1: "odd", 3: "even", 5: "mark", 7: "space"},
    "UART_LCR.stop_bits": {0: "one", 1: "two"},
    "UART_LCR.word_length": {0: "bits5", 1: "bits6", 2: "bits7", 3: "bits8"},
    "MII_COMMAND.phy": {1: "wan", 2: "lan", 4: "dmz"},
    "NAT_CONTROL.tcp": {0: "udp", 1: "tcp"},
    "NAT_CONTROL.server_table": {0: "main", 1: "server"},
    "NAT_COMMAND.write": DIRECTION,
    "L3_ENCAPSULATION.pppoe": {0: "ipoe", 1: "pppoe"},
    "L3_FLAGS.port": ONE_HOT,
    "L3_COMMAND.write": DIRECTION,
    "MCAST_FLAGS.ports": ONE_HOT,
    "MCAST_COMMAND.write": DIRECTION,
    "ARP_COMMAND.write": DIRECTION,
    "CLS_FLAGS2.drop_high": {0: "low", 1: "high"},
    "CLS_FLAGS2.positive": {0: "negated", 1: "positive"},
    "CLS_FLAGS2.ingress": {0: "egress", 1: "ingress"},
    "CLS_FLAGS2.interfaces": ONE_HOT,
    "CLS_COMMAND.write": DIRECTION,
    "CLS_FLAGS3.ingress_tagged": {0: "untagged", 1: "tagged"},
    "SC_COMMAND.write": DIRECTION,
    "SC_SELECTOR.port": {0: "wan", 1: "lan", 2: "dmz"},
    "PST_COMMAND.write": DIRECTION,
    "PDR_FLAGS.pppoe": {0: "ipoe", 1: "pppoe"},
    "PDR_COMMAND.write": DIRECTION,
    "PXT_FLAGS.port": {2: "dmz"},
    "PXT_COMMAND.write": DIRECTION,
}

# All kinds but numbers, flags and enumerations.
KINDS = {
    "ipv4_address": {
        "WAN_IP", "LAN_IP", "DMZ_IP", "NAT_IP", "NAT_SIP", "NAT_DIP", "NAT_NSIP", "L3_IP",
        "L3_NEXT_HOP", "MCAST_IP", "ARP_IP", "CLS_SIP", "CLS_DIP", "PST_IP", "PDR_IP"},
    "mac_address": {"CPU_MAC", "WAN_MAC", "ARP_MAC", "CLS_SMAC", "CLS_DMAC", "PST_SERVER_MAC",
                    "PXT_INTERNAL_MAC", "PXT_EXTERNAL_MAC"},
    "transport_port": {"NAT_SPORT", "NAT_NSPORT", "NAT_DPORT", "CLS_SPORT", "CLS_DPORT"},
    "port": {"FRAME_TX_CONTROL.port", "L3_FLAGS.port", "MII_COMMAND.phy", "SC_SELECTOR.port",
             "PXT_FLAGS.port"},
    "port_set": {"MCAST_FLAGS.ports", "CLS_FLAGS2.interfaces"},
    "index": {"NAT_INDEX", "L3_INDEX", "L3_ENCAPSULATION.session", "MCAST_INDEX", "ARP_INDEX",
              "CLS_INDEX.rule", "CLS_HEAD.rule", "CLS_CONTROL.next", "SC_SELECTOR.group",
              "PST_FLAGS.index", "PDR_INDEX", "PDR_FLAGS.session", "PXT_FLAGS.index"},
    "handle": {"FRAME_RX_HANDLE", "FRAME_RELEASE_HANDLE", "FRAME_TX_HANDLE",
               "FRAME_STATUS_HANDLE"},
    "counter": {"L3_COUNTER", "MCAST_COUNTER", "CLS_COUNTER"},
    "age": {"NAT_AGE", "NAT_DEFAULT_AGE", "NAT_FIN_AGE"},
    "length": {"MTU.bytes"},
    "mask_length": {"L3_MASK"},
    "ether_type": {"CLS_ETHER_TYPE"},
    "ip_protocol": {"CLS_PROTOCOL"},
    "vlan_id": {"CLS_VLAN", "CLS_DESIRED_VLAN.id", "PST_VLAN", "PXT_INTERNAL_VLAN",
                "PXT_EXTERNAL_VLAN"},
    "session_id": {"PST_SESSION", "PXT_INTERNAL_SESSION", "PXT_EXTERNAL_SESSION"},
    "bits": {"INT_GROUP", "INT_MASK", "GPIO_DIRECTION", "GPIO_DATA", "GPIO_STATUS",
             "GPIO_SETTING", "GPIO_ENABLE", "GPIO_TRIGGER", "NAT_VALID", "NAT_SERVER_VALID",
             "L3_OVERFLOW", "MCAST_OVERFLOW", "ARP_REFERENCE", "CLS_OVERFLOW", "SC_OVERFLOW"},
}

ACCESS = re.compile(r"\b[rw](8|16|32)\s+([0-9a-f]{4})\b")


def register_map(form=""):
    """What --registers prints."""
    done = support.run([BOARD, "--registers" + form])
    assert (done.returncode, done.stderr) == (0, b""), done
    return done.stdout.decode()


def as_json():
    return json.loads(register_map("=json"))


def named(description):
    """The registers of the JSON form by name."""
    return {row["name"]: row for block in description["blocks"] for row in block["registers"]}


def typed(registers):
    """The fields, and the registers without fields, by name."""
    for name, row in registers.items():
        for field in row["fields"]:
            yield f"{name}.{field['name']}", field
        if not row["fields"]:
            yield name, row


def enumerations(registers):
    return {name: {named["value"]: named["name"] for named in field["values"]}
            for name, field in typed(registers) if "values" in field}


def kinds(registers):
    """What is of each kind, but for numbers, flags and enumerations."""
    found = {}
    for name, field in typed(registers):
        if field["kind"] not in ("number", "flag", "enumeration"):
            found.setdefault(field["kind"], set()).add(name)
    return found


def places(description):
    """Offset and width of every single register, with its name."""
    found = {}
    for name, row in named(description).items():
        for number in range(row["count"]):
            found[(row["offset"] + number * row["width"] // 8, row["width"])] = name
    return found


class Json(unittest.TestCase):
    def setUp(self):
        self.map = as_json()
        self.registers = named(self.map)

    def test_window(self):
        self.assertEqual(self.map["window"], {"address": WINDOW, "size": 0x2000})
        self.assertEqual(self.map["byte_order"], "big")

    def test_one_register(self):
        row = self.registers["L3_ENCAPSULATION"]
        ppp = {"name": "pppoe", "high": 0, "low": 0, "meaning": "encapsulation",
               "kind": "enumeration",
               "values": [{"value": 0, "name": "ipoe", "meaning": "IPoE"},
                          {"value": 1, "name": "pppoe", "meaning": "PPPoE"}]}
        session = {"name": "session", "high": 2, "low": 1, "meaning": "PPPoE session number",
                   "kind": "index"}
        wanted = {
            "name": "L3_ENCAPSULATION", "offset": 0x605, "width": 8, "count": 1,
            "meaning": "how frames leave", "use": "read-write", "reset": 0,
            "fields": [{**session, "use": "read-write"}, {**ppp, "use": "read-write"}],
        }
        self.assertEqual(row, wanted)

    def test_how_registers_behave(self):
        use = {name: row["use"] for name, row in self.registers.items()}
        self.assertEqual(use["CHIP_MODEL"], "read-only")
        self.assertEqual(self.registers["CHIP_MODEL"]["reset"], 0x5910)
        self.assertEqual(use["INT_STATUS"], "one-to-clear")
        self.assertEqual(use["NAT_VALID"], "read-only")
        self.assertEqual(self.registers["NAT_VALID"]["count"], 32)
        # Part of a register may be read only.
        fields = {field["name"]: field["use"] for field in self.registers["RESET_CONTROL"]["fields"]}
        self.assertEqual(use["RESET_CONTROL"], "read-write")
        self.assertEqual((fields["done"], fields["hw"]), ("read-only", "read-write"))
        # Both ready bits are set at power-on.
        self.assertEqual(self.registers["L3_COMMAND"]["reset"], 0x03)

    def test_loads_that_do_something(self):
        loads = {name for name, row in self.registers.items() if "on_load" in row}
        self.assertEqual(loads, {"UART_DATA", "UART_ISR_FCR"})

    def test_named_values(self):
        self.assertEqual(enumerations(self.registers), ENUMERATIONS)

    def test_kinds_of_values(self):
        self.assertEqual(kinds(self.registers), KINDS)

    def test_values_fit_and_are_distinct(self):
        for _, field in typed(self.registers):
            values = [named["value"] for named in field.get("values", [])]
            names = [named["name"] for named in field.get("values", [])]
            self.assertEqual(len(set(values)), len(values), field)
            self.assertEqual(len(set(names)), len(names), field)
            bits = field["high"] - field["low"] + 1 if "high" in field else field["width"]
            self.assertTrue(all(value < 1 << bits for value in values), field)

    def test_a_field_or_a_register_without_fields_has_a_kind(self):
        for row in self.registers.values():
            self.assertEqual("kind" in row, row["fields"] == [], row["name"])
            for field in row["fields"]:
                self.assertEqual("values" in field, field["kind"] in NAMED, field)

    def test_names_are_those_of_saved_states(self):
        with tempfile.TemporaryDirectory() as folder:
            file = f"{folder}/board.json"
            script = "".join(f"reg {offset:x} 1 = 5a\n" for offset in range(0x2000))
            support.run([BOARD, "--save", file], script.encode())
            saved = json.loads(pathlib.Path(file).read_text("ascii"))["registers"]
        counts = {name: row.get("count", 1) for name, row in self.registers.items()}
        # The six bytes of a MAC address are noted together.
        names = {name for name, count in counts.items() if count in (1, 6)}
        names |= {f"{name}[{i}]" for name, count in counts.items() for i in range(count)}
        self.assertLessEqual(set(saved), names)
        self.assertGreater(len(saved), 200)

    def test_every_engine(self):
        help_text = support.run([BOARD, "--help"]).stdout.decode()
        names = set(re.search(r"Engines: ([a-z0-9, ]+)", help_text)[1].replace(",", "").split())
        self.assertEqual({engine["name"] for engine in self.map["engines"]}, names - {"reset"})

    def test_engines_refer_to_registers_and_their_fields(self):
        for engine in self.map["engines"]:
            fields = {row["name"] for row in self.registers[engine["command"]]["fields"]}
            bits = [engine[key] for key in ("start", "read_done", "write_done")]
            bits += [engine[key] for key in ("write", "result") if key in engine]
            self.assertLessEqual(set(bits), fields)
            index = self.registers[engine["index"]["register"]]
            self.assertLessEqual(set(engine["index"]["fields"]), {f["name"] for f in index["fields"]})
            for name in engine["data"]:
                self.assertIn(name, self.registers)

    def test_where_engines_are_commanded_and_indexed(self):
        found = {engine["name"]: (self.registers[engine["command"]]["offset"],
                                  self.registers[engine["index"]["register"]]["offset"])
                 for engine in self.map["engines"]}
        wanted = {
            "mii": (0x408, 0x408), "tx": (0x42B, 0x429), "status": (0x430, 0x431),
            "release": (0x427, 0x428), "nat": (0x51C, 0x51A), "l3": (0x60D, 0x60E),
            "mcast": (0x621, 0x622), "arp": (0x63B, 0x63C), "cls": (0x720, 0x721),
            "sc": (0x85C, 0x85D), "pst": (0xA0F, 0xA0E), "pdr": (0xA16, 0xA14),
            "pxt": (0xA3A, 0xA39),
        }
        self.assertEqual(found, wanted)

    def test_one_engine(self):
        engine = next(row for row in self.map["engines"] if row["name"] == "pst")
        wanted = {
            "name": "pst", "command": "PST_COMMAND", "start": "start", "read_done": "read_ready",
            "write_done": "write_ready", "write": "write",
            "index": {"register": "PST_FLAGS", "fields": ["index"]},
            "data": ["PST_IP", "PST_SESSION", "PST_VLAN", "PST_SERVER_MAC", "PST_FLAGS"],
        }
        self.assertEqual(engine, wanted)
        engine = next(row for row in self.map["engines"] if row["name"] == "nat")
        self.assertEqual(engine["result"], "result")
        self.assertNotIn("NAT_VALID", engine["data"])

    def test_no_byte_has_two_registers(self):
        owners = {}
        for (offset, width), name in places(self.map).items():
            for byte in range(offset, offset + width // 8):
                self.assertNotIn(byte, owners, name)
                owners[byte] = name
        self.assertLess(max(owners), 0x2000)

    def test_blocks_are_in_order(self):
        first = [block["registers"][0]["offset"] for block in self.map["blocks"]]
        self.assertEqual(sorted(set(first)), first)
        self.assertEqual(len({block["name"] for block in self.map["blocks"]}), len(first))


class Phys(unittest.TestCase):
    """Registers that are not in the window but reached through MII_COMMAND."""

    def setUp(self):
        self.map = as_json()
        self.registers = {row["number"]: row for row in self.map["phy"]["registers"]}

    def test_where_they_are(self):
        phy = self.map["phy"]
        self.assertEqual(phy["engine"], "mii")
        self.assertEqual([(row["value"], row["name"]) for row in phy["addresses"]],
                         [(1, "wan"), (2, "lan"), (4, "dmz")])
        self.assertEqual({number: row["name"] for number, row in self.registers.items()},
                         {0: "PHY_CONTROL", 1: "PHY_STATUS", 2: "PHY_ID1", 3: "PHY_ID2",
                          4: "PHY_ADVERTISEMENT", 5: "PHY_PARTNER"})

    def test_a_load_of_the_status_changes_it(self):
        loads = {number for number, row in self.registers.items() if "on_load" in row}
        self.assertEqual(loads, {1})

        # With a partner: the link bit is 0 at the first load only.
        answers = self.loads([1, 1, 2, 2, 4, 4], "--wan", "pcap:,/dev/null")
        self.assertEqual([answer & 1 << self.field(1, "link")["low"] for answer in answers[:2]],
                         [0, 0x0004])
        self.assertEqual(answers[2:4], answers[2:3] * 2)
        self.assertEqual(answers[4:], answers[4:5] * 2)

    def test_power_on_values_are_those_of_a_phy(self):
        numbers = sorted(self.registers)
        self.assertEqual(self.loads(numbers), [self.registers[n]["reset"] for n in numbers])
        self.assertEqual([self.registers[n]["reset"] for n in numbers],
                         [0x3100, 0x7809, 0x5642, 0x0010, 0x01E1, 0x0000])

    def test_stores_to_read_only_registers_change_nothing(self):
        use = {number: row["use"] for number, row in self.registers.items()}
        self.assertEqual(use, {0: "read-write", 1: "read-only", 2: "read-only", 3: "read-only",
                               4: "read-write", 5: "read-only"})
        for number, row in self.registers.items():
            # A bit that is not the reset of the PHY.
            value = row["reset"] ^ 0x0100
            line = f"mii 1 {number:x} = {value:04x}\n"
            shown = int(re.search(r"VALUE: ([0-9a-f]{4})", self.script(line))[1], 16)
            self.assertEqual(shown, row["reset"] if use[number] == "read-only" else value)

    def test_fields_of_the_status(self):
        fields = {field["name"]: field["low"] for field in self.registers[1]["fields"]}
        self.assertEqual(fields, {
            "can_100_t4": 15, "can_100_full": 14, "can_100_half": 13, "can_10_full": 12,
            "can_10_half": 11, "negotiated": 5, "remote_fault": 4, "can_negotiate": 3, "link": 2,
            "jabber": 1, "extended": 0,
        })
        self.assertEqual({field["kind"] for field in self.registers[1]["fields"]}, {"flag"})

    def test_named_values(self):
        rows = {row["name"]: row for row in self.registers.values()}
        self.assertEqual(enumerations(rows), {
            "PHY_CONTROL.speed": {0: "mbps10", 1: "mbps100"},
            "PHY_CONTROL.duplex": {0: "half", 1: "full"},
            "PHY_ADVERTISEMENT.selector": {1: "ethernet"},
            "PHY_PARTNER.selector": {1: "ethernet"},
        })

    def test_text(self):
        text = register_map()
        self.assertIn("\n  1         16  ro  PHY_STATUS            status; a load ends the", text)
        self.assertIn("\n    2           ro    link                link is up; 0 is latched", text)

    def field(self, number, name):
        return next(row for row in self.registers[number]["fields"] if row["name"] == name)

    def script(self, lines, *options):
        done = support.run([BOARD, *options], lines.encode())
        self.assertEqual(done.returncode, 0, done)
        return done.stdout.decode()

    def loads(self, numbers, *options):
        """What loads of registers of the WAN port's PHY answer, in turn."""
        lines = "".join(f"mii 1 {number:x}\n" for number in numbers)
        return [int(value, 16)
                for value in re.findall(r"VALUE: ([0-9a-f]{4})", self.script(lines, *options))]


class Counters(unittest.TestCase):
    """Where the statistics of a port lie."""

    def setUp(self):
        self.counters = as_json()["counters"]

    def test_slices(self):
        found = [(row["name"], row["group"], row["register"], row["high"], row["low"])
                 for row in self.counters]
        self.assertEqual(len(found), 28)
        self.assertEqual(found[0], ("SC_BYTESENT", 0, "SC_WORD_A", 31, 0))
        self.assertEqual(found[1], ("SC_UNICASTSENT", 0, "SC_WORD_B", 23, 0))
        self.assertEqual(found[2], ("SC_FRMSNDFAIL", 0, "SC_WORD_B", 31, 24))
        self.assertEqual(found[3], ("SC_FLWCTRLFRMSENT", 1, "SC_WORD_A", 15, 0))
        self.assertEqual(found[21], ("SC_ALIGNMENTERR", 6, "SC_WORD_A", 23, 16))
        self.assertEqual(found[27], ("SC_LATECOLLISION", 7, "SC_WORD_B", 31, 24))
        self.assertEqual([row["index"] for row in self.counters], list(range(28)))

    def test_they_fill_the_words_but_for_three_bytes(self):
        used = [(row["group"], row["register"], bit)
                for row in self.counters for bit in range(row["low"], row["high"] + 1)]
        self.assertEqual(len(set(used)), len(used))
        self.assertEqual(len(used), 8 * 2 * 32 - 24)

    def test_names_and_their_order_are_those_of_the_console(self):
        shown = support.run([BOARD], b"sc wan\n").stdout.decode()
        self.assertEqual(re.findall(r"\bSC_\w+", shown), [row["name"] for row in self.counters])


class Text(unittest.TestCase):
    def test_every_register_and_field(self):
        text = register_map()
        for name, row in named(as_json()).items():
            use = {"read-write": "rw", "read-only": "ro", "one-to-clear": "w1c"}[row["use"]]
            place = f"{row['offset']:04x}"
            if row["count"] > 1:
                place += f"-{row['offset'] + row['count'] - 1:04x}"
            line = rf"^  {place} +{row['width']}  {use} +{name} +{re.escape(row['meaning'])}"
            found = re.search(line, text, re.MULTILINE)
            self.assertIsNotNone(found, line)
            lines = text[found.end() :].splitlines()[1 : 1 + len(row["fields"])]
            self.assertEqual([line.split()[2] for line in lines], [f["name"] for f in row["fields"]])

    def test_lines(self):
        text = register_map()
        self.assertIn("\nL3 routes\n  0600      32  rw  L3_IP                 destination ad", text)
        self.assertIn("\n  0614-061b  8  rw  L3_OVERFLOW           counter overflow", text)
        self.assertIn("\n    2:1         rw    session             PPPoE session number\n", text)
        self.assertIn("\n    1:0         rw    wan                 interface of WAN: 0 serial, 2 mii,"
                      " 3 rmii\n", text)
        self.assertIn("divisor latch, low; a load takes the received byte\n", text)
        self.assertEqual(text, register_map("=text"))


class Svd(unittest.TestCase):
    def check(self, text):
        """True when the text obeys the schema."""
        with tempfile.NamedTemporaryFile("w", suffix=".svd") as file:
            file.write(text)
            file.flush()
            arguments = ["xmllint", "--noout", "--schema", str(SCHEMA), file.name]
            return subprocess.run(arguments, stderr=subprocess.DEVNULL, check=False).returncode == 0

    @unittest.skipUnless(shutil.which("xmllint"), "there is no xmllint")
    def test_obeys_the_schema(self):
        text = register_map("=svd")
        self.assertTrue(self.check(text))
        damages = [
            ("<name>L3_INDEX</name>", ""),
            ("<name>L3_INDEX</name>", "<name>L3_MASK</name>"),
            ("<name>L3_INDEX</name>", "<name>L3 INDEX</name>"),
            ("<size>32</size>", "<size>24</size>"),
            ("<access>read-only</access>", "<access>ro</access>"),
            ("</lsb>\n", "</lsb>\n<lsb>1</lsb>\n"),
            ("<readAction>modify</readAction>", "<readAction>pop</readAction>"),
            ("<usage>registers</usage>", ""),
            (' schemaVersion="1.3"', ""),
            ("<endian>big</endian>", "<endian>network</endian>"),
            ("<revision>r0p0</revision>", ""),
            ("<nvicPrioBits>0</nvicPrioBits>", ""),
            ("<name>rmii</name>", "<name>mii</name>"),
            ("<value>3</value>", "<value>2</value>"),
            ("<value>3</value>", ""),
            ("</device>", ""),
        ]
        for old, new in damages:
            with self.subTest(new):
                self.assertIn(old, text)
                self.assertFalse(self.check(text.replace(old, new, 1)))

    def test_says_what_the_json_says(self):
        actions = {"read-write": ("read-write", None), "read-only": ("read-only", None),
                   "one-to-clear": ("read-write", "oneToClear")}
        rows = named(as_json())
        seen = set()
        for peripheral in xml.fromstring(register_map("=svd")).iter("peripheral"):
            base = int(peripheral.findtext("baseAddress"), 0) - WINDOW
            for register in peripheral.iter("register"):
                name = register.findtext("name").removesuffix("[%s]")
                row = rows[name]
                seen.add(name)
                self.assertEqual(base + int(register.findtext("addressOffset"), 0), row["offset"])
                self.assertEqual(int(register.findtext("size")), row["width"])
                self.assertEqual(int(register.findtext("dim") or "1"), row["count"])
                increment = register.findtext("dimIncrement") or str(row["width"] // 8)
                self.assertEqual(int(increment), row["width"] // 8)
                self.assertEqual(int(register.findtext("resetValue"), 0), row["reset"])
                self.assertEqual(int(register.findtext("resetMask"), 0), 2 ** row["width"] - 1)
                behaviour = (register.findtext("access"), register.findtext("modifiedWriteValues"))
                self.assertEqual(behaviour, actions[row["use"]])
                action = "modify" if "on_load" in row else None
                self.assertEqual(register.findtext("readAction"), action)
                fields = [(field.findtext("name"), int(field.findtext("msb")),
                           int(field.findtext("lsb")), field.findtext("access"))
                          for field in register.iter("field")]
                wanted = [(field["name"], field["high"], field["low"], actions[field["use"]][0])
                          for field in row["fields"]]
                self.assertEqual(fields, wanted)
        self.assertEqual(seen, set(rows))

    def test_processor(self):
        processor = xml.fromstring(register_map("=svd")).find("cpu")
        self.assertEqual([(row.tag, row.text) for row in processor], [
            ("name", "other"), ("revision", "r0p0"), ("endian", "big"), ("mpuPresent", "false"),
            ("fpuPresent", "false"), ("nvicPrioBits", "0"), ("vendorSystickConfig", "false"),
        ])

    def test_enumerated_values(self):
        found = {}
        for register in xml.fromstring(register_map("=svd")).iter("register"):
            name = register.findtext("name").removesuffix("[%s]")
            for field in register.iter("field"):
                values = {int(row.findtext("value")): row.findtext("name")
                          for row in field.iter("enumeratedValue")}
                if values:
                    found[f"{name}.{field.findtext('name')}"] = values
        # The names of a set of ports are those of its bits.
        sets = {"MCAST_FLAGS.ports", "CLS_FLAGS2.interfaces"}
        self.assertEqual(found, {name: values for name, values in ENUMERATIONS.items()
                                 if name not in sets})

    def test_address_blocks_hold_the_registers(self):
        covered = set()
        for peripheral in xml.fromstring(register_map("=svd")).iter("peripheral"):
            base = int(peripheral.findtext("baseAddress"), 0) - WINDOW
            for block in peripheral.iter("addressBlock"):
                begin = base + int(block.findtext("offset"), 0)
                own = set(range(begin, begin + int(block.findtext("size"), 0)))
                self.assertFalse(own & covered)
                covered |= own
        described = {byte for offset, width in places(as_json())
                     for byte in range(offset, offset + width // 8)}
        self.assertEqual(covered, described)


class Use(unittest.TestCase):
    """The map and the tests know the same registers."""

    maxDiff = None

    def transcripts(self):
        """Accesses in the bus transcripts of the blocks."""
        found = set()
        for path in TESTS.rglob("*_test.cpp"):
            if str(path.relative_to(TESTS)) not in OF_ACCESSES:
                text = path.read_text(encoding="utf-8")
                found |= {(int(m[2], 16), int(m[1])) for m in ACCESS.finditer(text)}
        return found

    def sessions(self):
        """Accesses of the typed lines of all sessions, except `reg`, which reaches anything, and a
        hardware reset, whose pause is a million loads."""
        found = set()
        with tempfile.TemporaryDirectory() as folder:
            trace = os.path.join(folder, "trace")
            for session in sorted((TESTS / "sessions").glob("*.session")):
                lines = typed_lines(session.read_text(encoding="latin-1"))
                done = support.run([BOARD, "--trace", trace], lines.encode("latin-1"))
                self.assertEqual(done.returncode, 0, session)
                with open(trace, encoding="ascii") as events:
                    found |= accesses_beside_reg(events)
        return found

    def test_registers_and_tests_agree(self):
        described = set(places(as_json()))
        transcripts, sessions = self.transcripts(), self.sessions()
        self.assertEqual(transcripts - described, NO_REGISTER)
        self.assertEqual(sessions - described, set())
        self.assertEqual(described - transcripts - sessions, set())
        # Hardly a register is left to the sessions alone.
        self.assertLess(len(described - transcripts), 70)


def typed_lines(session):
    """The lines that a session types, except those that would not end here."""
    lines = []
    ends = True
    for line in session.splitlines():
        ends = ends and line != "@ctrl-c"
        if line.startswith("Debug>> "):
            keys = line.removeprefix("Debug>> ")
            if ends and not keys.lower().startswith(("reset hw", "exit")):
                lines.append(keys + "\n")
            ends = True
    return "".join(lines)


def accesses_beside_reg(events):
    found = set()
    by_number = False
    for line in events:
        if line.startswith("#"):
            by_number = line.lower().startswith("# reg ")
        elif not by_number:
            found |= {(int(m[2], 16), int(m[1])) for m in ACCESS.finditer(line.partition("  ")[0])}
    return found


class CommandLine(unittest.TestCase):
    def test_unknown_format(self):
        for form in ("xml", "SVD"):
            done = support.run([BOARD, "--registers=" + form])
            self.assertEqual((done.returncode, done.stdout), (2, b""))
            message = f"virtual-board: --registers: there is no format '{form}'; known are text, "
            self.assertEqual(done.stderr.decode(), message + "svd, json\n")

    def test_format_is_not_a_separate_word(self):
        done = support.run([BOARD, "--registers", "svd"])
        self.assertEqual((done.returncode, done.stdout), (2, b""))
        self.assertIn(b"'svd'", done.stderr)

    def test_near_misses(self):
        for option in ("--register", "--regs", "--registers-svd"):
            self.assertIn(b"'--registers'", support.run([BOARD, option]).stderr)

    def test_full_disk(self):
        with open("/dev/full", "wb") as full:
            done = support.run([BOARD, "--registers=svd"], stdout=full)
        self.assertEqual(done.returncode, 1)


if __name__ == "__main__":
    support.main()
