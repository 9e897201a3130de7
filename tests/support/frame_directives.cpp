#include "support/frame_directives.h"

#include <algorithm>
#include <iomanip>

namespace {

std::uint8_t ParseByte(const std::string& digits) {
  std::size_t used = 0;
  const unsigned long byte = std::stoul(digits, &used, 16);
  if (used != 2) throw SessionError("not a byte: " + digits);
  return static_cast<std::uint8_t>(byte);
}

/// The rest of the line: pairs of hexadecimal digits, and "xN" after a byte that occurs N
/// times.
std::vector<std::uint8_t> TakeBytes(Words& words) {
  std::vector<std::uint8_t> bytes;
  for (std::string word; words >> word;) {
    if (word[0] == 'x' && !bytes.empty()) {
      bytes.insert(bytes.end(), std::stoul(word.substr(1)) - 1, bytes.back());
      continue;
    }
    for (std::size_t i = 0; i < word.size(); i += 2) bytes.push_back(ParseByte(word.substr(i, 2)));
  }
  return bytes;
}

bool Arrive(SessionState& state, Words& words) {
  const monitor::PortId port = TakePort(words);
  return state.chip.frames.Receive(port, TakeBytes(words));
}

std::string Describe(const SentFrame& frame) {
  std::ostringstream text;
  text << monitor::NameOf(frame.port) << std::hex << std::setfill('0');
  for (const unsigned byte : frame.bytes) text << ' ' << std::setw(2) << byte;
  return text.str();
}

}  // namespace

void ArriveFrame(SessionState& state, Words& words) {
  if (!Arrive(state, words)) throw SessionError("the chip has lost the frame");
}

void LoseFrame(SessionState& state, Words& words) {
  if (Arrive(state, words)) throw SessionError("the chip has taken the frame");
}

void CheckSentFrame(SessionState& state, Words& words) {
  const std::streampos port = words.tellg();
  if (TakeWord(words) == "nothing") {
    if (!state.sent.empty()) throw SessionError("sent: " + Describe(state.sent.front()));
    return;
  }
  words.seekg(port);
  const SentFrame wanted{.port = TakePort(words), .bytes = TakeBytes(words)};
  if (state.sent.empty()) throw SessionError("nothing has been sent");
  const SentFrame got = std::move(state.sent.front());
  state.sent.pop_front();
  if (got.port == wanted.port && got.bytes == wanted.bytes) return;
  throw SessionError("sent\n  wanted " + Describe(wanted) + "\n  got    " + Describe(got));
}

void SetBuffer(SessionState& state, Words& words) {
  const std::uint32_t handle = TakeHex(words);
  const std::vector<std::uint8_t> bytes = TakeBytes(words);
  std::copy(bytes.begin(), bytes.end(),
            state.chip.frames.memory.Frame(handle, bytes.size()).begin());
}

void SetMemory(SessionState& state, Words& words) {
  const std::string how = TakeWord(words);
  if (how != "absent" && how != "present") throw SessionError("memory is not " + how);
  state.chip.frames.memory.mappable = how == "present";
}
