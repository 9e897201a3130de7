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
        ppp = {"name": "pppoe", "high": 0, "low": 0, "meaning": "1 PPPoE, 0 IPoE"}
        session = {"name": "session", "high": 2, "low": 1, "meaning": "PPPoE session number"}
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

    def test_names_are_those_of_saved_states(self):
        with tempfile.TemporaryDirectory() as folder:
            file = f"{folder}/board.json"
            script = "".join(f"reg {offset:x} 1 = 5a\n" for offset in range(0x2000))
            support.run([BOARD, "--save", file], script.encode())
            saved = json.loads(pathlib.Path(file).read_text("ascii"))["registers"]
        names = {f"{offset:04x} {name}" for (offset, _), name in places(self.map).items()}
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
