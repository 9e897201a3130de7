#include "support/scripted_bus.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iomanip>
#include <sstream>
#include <stdexcept>

#include "core/registers.h"

namespace {

ScriptedBus* g_current = nullptr;
std::vector<monitor::IrqState> g_saved;  ///< States that open lock brackets have saved.

constexpr std::uint32_t kJunk = 0xA5A5A5A5;
constexpr std::uint32_t kMapFails = 0;
constexpr std::uint32_t kMapWorks = 1;

bool IsStore(const std::string& kind) { return kind.find('w') != std::string::npos; }
bool IsLockEvent(const std::string& kind) { return kind == "lock" || kind == "unlock"; }

std::string Describe(const std::string& kind, std::uint32_t address, std::uint32_t value) {
  std::ostringstream text;
  text << kind;
  if (IsLockEvent(kind)) return text.str();
  text << ' ' << std::hex << std::setfill('0') << std::setw(4) << address;
  if (IsStore(kind)) {
    const bool wide = kind.find("32") != std::string::npos;
    const bool half = kind.find("16") != std::string::npos;
    text << ' ' << std::setw(wide ? 8 : half ? 4 : 2) << value;
  }
  return text.str();
}

std::uint32_t OnEvent(const char* kind, std::uint32_t address, std::uint32_t stored = 0) {
  if (g_current != nullptr) return g_current->OnEvent(kind, address, stored);
  ADD_FAILURE() << "bus event outside a transcript: " << Describe(kind, address, stored);
  return kJunk;
}

}  // namespace

ScriptedBus::ScriptedBus(const char* transcript) {
  if (g_current != nullptr) throw std::logic_error("two transcripts at once");
  g_current = this;
  g_saved.clear();
  std::istringstream lines(transcript);
  for (std::string line; std::getline(lines, line);) {
    line.resize(std::min(line.find('#'), line.size()));
    if (line.find_first_not_of(" \t") != std::string::npos) events_.push_back(Parse(line));
  }
}

ScriptedBus::~ScriptedBus() {
  g_current = nullptr;
  if (!broken_ && next_ != events_.size()) {
    ADD_FAILURE() << "the transcript goes on, event " << next_ + 1 << ":" << events_[next_].line;
  }
}

ScriptedBus* ScriptedBus::Current() { return g_current; }

ScriptedBus::Event ScriptedBus::Parse(const std::string& line) {
  static const char* const kKinds[] = {"r8",   "r16", "r32",  "w8",  "w16",  "w32",   "mr8",
                                       "mr16", "mw8", "mw16", "map", "lock", "unlock"};
  Event event;
  event.line = line;
  std::istringstream words(line);
  words >> event.kind;
  if (std::find(std::begin(kKinds), std::end(kKinds), event.kind) == std::end(kKinds)) {
    throw std::invalid_argument("unknown event:" + line);
  }
  const bool lock = IsLockEvent(event.kind);
  const bool map = event.kind == "map";
  if (!lock && !(words >> std::hex >> event.address)) {
    throw std::invalid_argument("no address:" + line);
  }
  if (!lock && !map && !(words >> event.value)) throw std::invalid_argument("no value:" + line);
  if (map) event.value = kMapWorks;
  std::string more;
  if (!(words >> more)) return event;
  const bool register_name = more[0] >= 'A' && more[0] <= 'Z';
  if (map && more == "fails") {
    event.value = kMapFails;
  } else if (more[0] == 'x') {
    event.times = static_cast<unsigned>(std::stoul(more.substr(1)));
  } else if (!register_name) {
    throw std::invalid_argument("not a repeat count:" + line);
  }
  return event;
}

void ScriptedBus::Report(const std::string& got) {
  broken_ = true;
  std::ostringstream text;
  text << "bus traffic differs at event " << next_ + 1 << "\n";
  for (std::size_t i = next_ < 3 ? 0 : next_ - 3; i < next_; ++i) {
    text << "         " << events_[i].line << "\n";
  }
  text << "  wanted " << (next_ < events_.size() ? events_[next_].line : " nothing more") << "\n"
       << "  got     " << got << "\n";
  for (std::size_t i = next_ + 1; i < events_.size() && i < next_ + 3; ++i) {
    text << "         " << events_[i].line << "\n";
  }
  ADD_FAILURE() << text.str();
}

std::uint32_t ScriptedBus::OnEvent(const std::string& kind, std::uint32_t address,
                                   std::uint32_t stored) {
  if (look_) std::exchange(look_, nullptr)();
  if (broken_) return kJunk;
  const bool match = next_ < events_.size() && events_[next_].kind == kind &&
                     events_[next_].address == address &&
                     (!IsStore(kind) || events_[next_].value == stored);
  if (!match) {
    Report(Describe(kind, address, stored));
    return kJunk;
  }
  const std::uint32_t answer = events_[next_].value;
  if (++done_ == events_[next_].times) {
    ++next_;
    done_ = 0;
  }
  return answer;
}

namespace monitor {

std::uint8_t WindowLoad8(std::uint32_t offset) {
  return static_cast<std::uint8_t>(OnEvent("r8", offset));
}
std::uint16_t WindowLoad16(std::uint32_t offset) {
  return SwapBigEndian(static_cast<std::uint16_t>(OnEvent("r16", offset)));
}
std::uint32_t WindowLoad32(std::uint32_t offset) { return SwapBigEndian(OnEvent("r32", offset)); }
void WindowStore8(std::uint32_t offset, std::uint8_t value) { OnEvent("w8", offset, value); }
void WindowStore16(std::uint32_t offset, std::uint16_t value) {
  OnEvent("w16", offset, SwapBigEndian(value));
}
void WindowStore32(std::uint32_t offset, std::uint32_t value) {
  OnEvent("w32", offset, SwapBigEndian(value));
}

bool MemoryMap(std::uint16_t base) { return OnEvent("map", base) == kMapWorks; }
std::uint8_t MemoryLoad8(std::uint32_t address) {
  return static_cast<std::uint8_t>(OnEvent("mr8", address));
}
std::uint16_t MemoryLoad16(std::uint32_t address) {
  return static_cast<std::uint16_t>(OnEvent("mr16", address));
}
void MemoryStore8(std::uint32_t address, std::uint8_t value) { OnEvent("mw8", address, value); }
void MemoryStore16(std::uint32_t address, std::uint16_t value) { OnEvent("mw16", address, value); }
void MemoryCopy(std::uint32_t to, std::uint32_t from, std::uint32_t count) {
  for (std::uint32_t i = 0; i < count; ++i) MemoryStore8(to + i, MemoryLoad8(from + i));
}

void IrqLock(IrqState* saved) {
  *saved = kJunk + static_cast<IrqState>(g_saved.size());
  g_saved.push_back(*saved);
  OnEvent("lock", 0);
}

void IrqUnlock(IrqState saved) {
  EXPECT_EQ(saved, g_saved.empty() ? 0 : g_saved.back()) << "not the state that the lock saved";
  if (!g_saved.empty()) g_saved.pop_back();
  OnEvent("unlock", 0);
}

}  // namespace monitor
