// The directives of session files:
//   @w8 060e 05             a store on the bus, bypassing the monitor (w16, w32 likewise)
//   @r8 060e 05             a load that must answer so
//   @fault l3 hang          what an engine (or reset, mii) does instead of working: hang, busy,
//   @fault l3 slow 50       fail, none, or the loads that an operation takes
//   @clock 1000000          lets that many nanoseconds pass
//   @gpio-in 5a             levels of the general-purpose pins from outside
//   @uart-in 41 42          bytes that arrive at the UART
//   @uart-out 41 42         bytes that the UART must have sent since the last look
//   @link wan up            attaches a partner to a port, or takes it away (down)
//   @phy 1 10 1234          a register of the PHY at that address
//   @set l3 counter 5 ff    counter of an entry, bypassing the engine
//   @set l3 overflow 5      an overflow bit; mcast likewise
//   @set arp reference 5    a reference bit
//   @set nat fill 0 ff      entries in main slots, each with its slot in every field
//   @set cls counter 5 ff   likewise of the classifier's rules
//   @set cls overflow 5
//   @set sc wan sc_crc ff   a statistic counter, bypassing the engine
//   @set sc wan overflow 1  all overflow bits of a port
//   @set pst used 2         the used bit of an entry
//   @set buffer 05 0102     contents of a frame buffer, from its data address on
//   @set memory absent      frame buffer memory cannot be mapped; "present": it can again
//   @frame wan 0102 00 x14  a frame arrives at a port; "x14": 14 times the byte before it
//   @lost wan 0102          the same, but the chip must lose the frame
//   @sent wan 0102          the oldest frame not yet checked that has left the chip
//   @sent nothing           there is none
//   @ctrl-c                 waits on hardware find a Ctrl-C in the next line
//   @complaint TEXT         the model will complain so during the next line
//   @ignore complaints      whatever the model complains about during the next line
#include <cctype>
#include <iomanip>
#include <map>
#include <sstream>
#include <utility>

#include "support/frame_directives.h"
#include "support/session_words.h"

namespace {

void Store(SessionState& state, Words& words, unsigned width) {
  const std::uint32_t offset = TakeHex(words);
  state.chip.registers.Store(offset, width, TakeHex(words));
}

void CheckLoad(SessionState& state, Words& words, unsigned width) {
  const std::uint32_t offset = TakeHex(words);
  const std::uint32_t wanted = TakeHex(words);
  const std::uint32_t got = state.chip.registers.Load(offset, width);
  if (got == wanted) return;
  std::ostringstream text;
  text << std::hex << "register " << offset << ": wanted " << wanted << ", got " << got;
  throw SessionError(text.str());
}

void SetFault(SessionState& state, Words& words) {
  const std::string name = TakeWord(words);
  const std::string kind = TakeWord(words);
  using Kind = chip::Fault::Kind;
  static const std::map<std::string, Kind> kKinds{{"none", Kind::kNone},
                                                  {"hang", Kind::kHang},
                                                  {"busy", Kind::kBusy},
                                                  {"slow", Kind::kSlow},
                                                  {"fail", Kind::kFail}};
  const auto found = kKinds.find(kind);
  if (found == kKinds.end()) throw SessionError("no fault named " + kind);
  unsigned loads = 0;
  if (found->second == Kind::kSlow && !(words >> std::dec >> loads)) {
    throw SessionError("slow: the number of loads is missing");
  }
  if (!state.chip.SetFault(name, {.kind = found->second, .loads = loads})) {
    throw SessionError("nothing to fail named " + name);
  }
}

void AdvanceClock(SessionState& state, Words& words) {
  std::uint64_t nanoseconds;
  if (!(words >> std::dec >> nanoseconds)) throw SessionError("clock: a number is missing");
  state.chip.Advance(state.chip.Now() + nanoseconds);
}

void SetPins(SessionState& state, Words& words) {
  state.chip.gpio.SetInputs(static_cast<std::uint8_t>(TakeHex(words)));
}

std::vector<std::uint8_t> TakeBytes(Words& words) {
  std::vector<std::uint8_t> bytes;
  for (std::uint32_t byte; words >> std::hex >> byte;) {
    bytes.push_back(static_cast<std::uint8_t>(byte));
  }
  if (!words.eof()) throw SessionError("directive: not a hexadecimal byte");
  return bytes;
}

void CheckUartOutput(SessionState& state, Words& words) {
  const std::vector<std::uint8_t> wanted = TakeBytes(words);
  const std::vector<std::uint8_t> got = std::exchange(state.uart_output, {});
  if (got == wanted) return;
  std::ostringstream text;
  text << "the UART has sent" << std::hex;
  for (const unsigned byte : got) text << ' ' << byte;
  throw SessionError(text.str());
}

void SetLink(SessionState& state, Words& words) {
  const monitor::PortId port = TakePort(words);
  const std::string link = TakeWord(words);
  if (link != "up" && link != "down") throw SessionError("a link is up or down, not " + link);
  state.chip.mii.SetLink(port, link == "up");
}

void SetPhy(SessionState& state, Words& words) {
  chip::Phy* const phy = state.chip.mii.FindPhy(TakeHex(words));
  if (phy == nullptr) throw SessionError("no PHY at that address");
  const std::uint32_t reg = TakeHex(words) % chip::Phy::kRegisters;
  phy->Set(reg, static_cast<std::uint16_t>(TakeHex(words)));
}

std::string Rest(Words& words) {
  std::string text;
  std::getline(words >> std::ws, text);
  return text;
}

}  // namespace

void RunDirective(SessionState& state, const std::string& text) {
  using Directive = void (*)(SessionState&, Words&);
  static const std::map<std::string, Directive> kDirectives{
      {"w8", [](SessionState& s, Words& w) { Store(s, w, 1); }},
      {"w16", [](SessionState& s, Words& w) { Store(s, w, 2); }},
      {"w32", [](SessionState& s, Words& w) { Store(s, w, 4); }},
      {"r8", [](SessionState& s, Words& w) { CheckLoad(s, w, 1); }},
      {"r16", [](SessionState& s, Words& w) { CheckLoad(s, w, 2); }},
      {"r32", [](SessionState& s, Words& w) { CheckLoad(s, w, 4); }},
      {"fault", SetFault},
      {"clock", AdvanceClock},
      {"gpio-in", SetPins},
      {"uart-in",
       [](SessionState& s, Words& w) {
         for (const std::uint8_t byte : TakeBytes(w)) s.chip.uart.Receive(byte);
       }},
      {"uart-out", CheckUartOutput},
      {"link", SetLink},
      {"phy", SetPhy},
      {"set", ApplySetting},
      {"frame", ArriveFrame},
      {"lost", LoseFrame},
      {"sent", CheckSentFrame},
      {"ctrl-c", [](SessionState& s, Words&) { s.ctrl_c_in_waits = true; }},
      {"complaint", [](SessionState& s, Words& w) { s.complaints.push_back(Rest(w)); }},
      {"ignore", [](SessionState& s, Words&) { s.ignore_complaints = true; }},
  };
  Words words(text);
  const std::string name = TakeWord(words);
  const auto found = kDirectives.find(name);
  if (found == kDirectives.end()) throw SessionError("no directive named " + name);
  found->second(state, words);
}
