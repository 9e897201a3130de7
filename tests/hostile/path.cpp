#include "hostile/path.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <iomanip>
#include <sstream>
#include <utility>
#include <vector>

#include "hostile/event.h"

namespace hostile {
namespace {

/// Loads of a wait before the operator first looks in.
constexpr unsigned kFirstLook = 100'000;

/// Unready answers to a wait before it is ready.
constexpr unsigned kLatePolls = 3;

/// Events of a path. A wait without a limit counts as one, the longest limit has 20,002.
constexpr std::size_t kMostEvents = 25'000;

/// Events after the driver has left the path; more and it would never return.
constexpr unsigned kHopeless = 10'000'000;

struct Event {
  Kind kind;
  std::uint32_t address;
  std::uint32_t value;
  unsigned times;
};

struct Choice {
  unsigned taken;
  unsigned of;
};

std::vector<Event> g_events;
std::size_t g_next = 0;  ///< Event that the driver has to come to,
unsigned g_done = 0;     ///< and how often it has happened.

std::vector<Choice> g_choices;
std::size_t g_choice = 0;  ///< Next choice of the model.
bool g_quiet = false;      ///< Choices are not made.
unsigned g_parts = kAllParts;
unsigned g_parts_left = 0;
bool g_part_used = false;  ///< This part has answered otherwise than on the first path.

std::uint64_t g_junk = 0;
unsigned g_astray = 0;  ///< Events since the driver left the path.
std::string g_trouble;

unsigned long long g_paths = 0;  ///< Paths and accesses compared, of all tests.
unsigned long long g_accesses = 0;

/// A kind of event in transcripts: its name, and the digits of its value.
struct Notation {
  const char* name;
  int digits;
};

constexpr Notation kNotations[] = {{"r8", 2},     {"r16", 4},   {"r32", 8}, {"w8", 2},
                                   {"w16", 4},    {"w32", 8},   {"mr8", 2}, {"mr16", 4},
                                   {"mw8", 2},    {"mw16", 4},  {"map", 1}, {"lock", 0},
                                   {"unlock", 0}, {"flush", 0}, {"look", 1}};

/// True for what the chip or the operator answers.
bool Answers(Kind kind) {
  return kind <= Kind::kLoad32 || kind == Kind::kMemoryLoad8 || kind == Kind::kMemoryLoad16 ||
         kind == Kind::kMap || kind == Kind::kLook;
}

std::string Describe(const Event& event, bool with_value) {
  const Notation& notation = kNotations[static_cast<unsigned>(event.kind)];
  std::ostringstream text;
  text << notation.name;
  if (event.kind == Kind::kUnlock && event.value != 0) text << " with another lock's state";
  if (notation.digits == 0) return text.str();
  text << std::hex << std::setfill('0') << ' ' << std::setw(4) << event.address;
  if (with_value) text << ' ' << std::setw(notation.digits) << event.value;
  if (event.times != 1) text << std::dec << " x" << event.times;
  return text.str();
}

std::string Scripted(std::size_t index) {
  return index < g_events.size() ? Describe(g_events[index], true) : "nothing more";
}

void GoAstray(const std::string& got) {
  std::ostringstream text;
  text << "at event " << g_next + 1 << "\n";
  for (std::size_t i = g_next < 4 ? 0 : g_next - 4; i < g_next; ++i) {
    text << "           " << Scripted(i) << "\n";
  }
  text << "    wanted " << Scripted(g_next) << "\n    got    " << got << "\n";
  g_trouble = text.str();
  g_astray = 1;
}

void Add(Kind kind, std::uint32_t address, std::uint32_t value, unsigned times = 1) {
  if (g_events.size() == kMostEvents) {
    std::fputs("a model does not end\n", stderr);
    std::abort();
  }
  g_events.push_back({kind, address, value, times});
}

/// The c-th value that `bits` can take, counted from the one with all bits set down.
std::uint32_t Spread(unsigned c, std::uint32_t bits) {
  std::uint32_t value = bits;
  for (std::uint32_t bit = 1; c != 0 && bit != 0; bit <<= 1) {
    if ((bits & bit) == 0) continue;
    if ((c & 1) != 0) value ^= bit;
    c >>= 1;
  }
  return value;
}

std::uint32_t Load(Kind kind, std::uint32_t address, std::uint32_t width, std::uint32_t branch,
                   std::uint32_t first) {
  const unsigned values = 1U << static_cast<unsigned>(__builtin_popcount(branch));
  const std::uint32_t bits = Spread(branch == 0 ? 0 : Choose(values), branch) ^ branch ^ first;
  const std::uint32_t answer = ((Random() & ~branch) | bits) & width;
  Add(kind, address, answer);
  return answer;
}

/// True for an answer that is `value`.
bool Compare(Kind kind, std::uint32_t offset, std::uint32_t value, unsigned width,
             bool first_equal) {
  const unsigned choice = Choose(3);
  std::uint32_t difference = 1U << Random() % width;
  if (choice == 0) difference = first_equal ? 0 : difference | (Random() >> (32 - width));
  if (choice == 1) difference = first_equal ? difference | (Random() >> (32 - width)) : 0;
  Add(kind, offset, value ^ difference);
  return difference == 0;
}

/// True while the path is as the first one; waits end late or never only there.
bool NothingUnusualYet() {
  for (std::size_t i = 0; i < g_choice; ++i) {
    if (g_choices[i].taken != 0) return false;
  }
  return true;
}

}  // namespace

std::uint32_t Random() {
  g_junk += 0x9E3779B97F4A7C15;
  std::uint64_t mixed = (g_junk ^ g_junk >> 30) * 0xBF58476D1CE4E5B9;
  mixed = (mixed ^ mixed >> 27) * 0x94D049BB133111EB;
  return static_cast<std::uint32_t>(mixed >> 32);
}

void Quiet(bool quiet) { g_quiet = quiet; }

unsigned Choose(unsigned n) {
  if (g_quiet) return 0;
  if (g_parts_left == 0 && !g_part_used) n = 1;
  if (g_choice == g_choices.size()) g_choices.push_back({0, n});
  if (g_choices[g_choice].of != n) {
    std::fputs("a model branches on junk: its next path would not be this one\n", stderr);
    std::abort();
  }
  const unsigned taken = g_choices[g_choice++].taken;
  if (taken != 0 && !g_part_used) {
    g_part_used = true;
    --g_parts_left;
  }
  return taken;
}

void Part() { g_part_used = false; }

std::uint8_t R8(std::uint32_t offset, std::uint8_t branch, std::uint8_t first) {
  return static_cast<std::uint8_t>(Load(Kind::kLoad8, offset, 0xFF, branch, first));
}
std::uint8_t R8(std::uint32_t offset, std::uint8_t branch) { return R8(offset, branch, branch); }
std::uint16_t R16(std::uint32_t offset, std::uint16_t branch) {
  return static_cast<std::uint16_t>(Load(Kind::kLoad16, offset, 0xFFFF, branch, branch));
}
std::uint32_t R32(std::uint32_t offset) { return Load(Kind::kLoad32, offset, ~0U, 0, 0); }

void W8(std::uint32_t offset, std::uint32_t value) { Add(Kind::kStore8, offset, value & 0xFF); }
void W16(std::uint32_t offset, std::uint32_t value) { Add(Kind::kStore16, offset, value & 0xFFFF); }
void W32(std::uint32_t offset, std::uint32_t value) { Add(Kind::kStore32, offset, value); }

bool Map(std::uint16_t base) {
  const bool works = Choose(2) == 0;
  Add(Kind::kMap, base, works ? 1 : 0);
  return works;
}

std::uint8_t M8(std::uint32_t address) {
  return M8Is(address, static_cast<std::uint8_t>(Random()));
}
std::uint16_t M16(std::uint32_t address) {
  return M16Is(address, static_cast<std::uint16_t>(Random()));
}
std::uint8_t R8Is(std::uint32_t offset, std::uint8_t value) {
  Add(Kind::kLoad8, offset, value);
  return value;
}
std::uint16_t R16Is(std::uint32_t offset, std::uint16_t value) {
  Add(Kind::kLoad16, offset, value);
  return value;
}
std::uint8_t M8Is(std::uint32_t address, std::uint8_t value) {
  Add(Kind::kMemoryLoad8, address, value);
  return value;
}
std::uint16_t M16Is(std::uint32_t address, std::uint16_t value) {
  Add(Kind::kMemoryLoad16, address, value);
  return value;
}
void MW8(std::uint32_t address, std::uint32_t value) {
  Add(Kind::kMemoryStore8, address, value & 0xFF);
}
void MW16(std::uint32_t address, std::uint32_t value) {
  Add(Kind::kMemoryStore16, address, value & 0xFFFF);
}

bool Equals16(std::uint32_t offset, std::uint16_t value, bool first_equal) {
  return Compare(Kind::kLoad16, offset, value, 16, first_equal);
}
bool Equals32(std::uint32_t offset, std::uint32_t value, bool first_equal) {
  return Compare(Kind::kLoad32, offset, value, 32, first_equal);
}

void Lock() { Add(Kind::kLock, 0, 0); }
void Unlock() { Add(Kind::kUnlock, 0, 0); }
void Flush() { Add(Kind::kFlush, 0, 0); }

void Delay(std::uint32_t offset, unsigned loads) {
  Add(Kind::kLoad8, offset, Random() & 0xFF, loads);
}

bool Await(std::uint32_t offset, std::uint8_t done, std::uint8_t status) {
  if (NothingUnusualYet() && Choose(2) == 1) {
    Add(Kind::kLoad8, offset, 0xFFU & ~done, kFirstLook);
    const bool gives_up = Choose(2) == 0;
    Add(Kind::kLook, 0, gives_up ? 1 : 0);
    if (gives_up) return false;
    Add(Kind::kLoad8, offset, done);
    return true;
  }
  for (unsigned poll = 0; poll < kLatePolls; ++poll) {
    if ((R8(offset, status) & done) != 0) return true;
  }
  Add(Kind::kLoad8, offset, (Random() & 0xFF) | done);
  return true;
}

bool AwaitLimited(std::uint32_t offset, std::uint8_t done, unsigned loads) {
  const unsigned late = NothingUnusualYet() ? Choose(3) : 0;
  if (late != 0) {
    Add(Kind::kLoad8, offset, 0xFFU & ~done, loads - 1);
    const bool in_time = late == 1;
    Add(Kind::kLoad8, offset, in_time ? done : 0xFFU & ~done);
    return in_time;
  }
  for (unsigned poll = 0; poll < kLatePolls; ++poll) {
    if ((R8(offset, done) & done) == done) return true;
  }
  Add(Kind::kLoad8, offset, done);
  return true;
}

bool Await16Twice(std::uint32_t offset, std::uint16_t done, unsigned looks) {
  const unsigned late = NothingUnusualYet() ? Choose(3) : 0;
  if (late != 0) {
    for (unsigned look = 1; look <= looks; ++look) {
      const bool in_time = late == 1 && look == looks;
      Add(Kind::kLoad16, offset, in_time ? done : 0xFFFFU & ~done);
      Add(Kind::kLoad16, offset, in_time ? 0 : 0xFFFF);
    }
    return late == 1;
  }
  for (unsigned poll = 0; poll < kLatePolls; ++poll) {
    const bool ready = (R16(offset, done) & done) == done;
    R16(offset);
    if (ready) return true;
  }
  Add(Kind::kLoad16, offset, done);
  R16(offset);
  return true;
}

std::uint32_t OnEvent(Kind kind, std::uint32_t address, std::uint32_t value) {
  ++g_accesses;
  if (g_astray != 0) {
    if (++g_astray == kHopeless) {
      std::fprintf(stderr, "a driver does not end after it left the path\n%s\n", g_trouble.c_str());
      std::abort();
    }
    return Random();
  }
  const bool match = g_next < g_events.size() && g_events[g_next].kind == kind &&
                     g_events[g_next].address == address &&
                     (Answers(kind) || g_events[g_next].value == value);
  if (!match) {
    GoAstray(Describe({kind, address, value, 1}, !Answers(kind)));
    return Random();
  }
  const Event& event = g_events[g_next];
  if (++g_done == event.times) {
    ++g_next;
    g_done = 0;
  }
  return event.value;
}

void BeginExploration(unsigned parts) {
  static const testing::TestInfo* last = nullptr;
  const testing::TestInfo* const test = testing::UnitTest::GetInstance()->current_test_info();
  if (std::exchange(last, test) != test) g_junk = 0;
  g_choices.clear();
  g_parts = parts;
}

void BeginPath() {
  g_events.clear();
  g_choice = 0;
  g_parts_left = g_parts;
  g_part_used = false;
  g_next = 0;
  g_done = 0;
  g_astray = 0;
  g_trouble.clear();
}

std::string EndPath() {
  ++g_paths;
  if (g_astray == 0 && g_next != g_events.size()) GoAstray("nothing more");
  return g_trouble;
}

bool NextPath() {
  while (!g_choices.empty() && g_choices.back().taken + 1 == g_choices.back().of) {
    g_choices.pop_back();
  }
  if (g_choices.empty()) return false;
  ++g_choices.back().taken;
  return true;
}

std::string Choices() {
  std::string text;
  for (const Choice& choice : g_choices) text += std::to_string(choice.taken) + ' ';
  return text;
}

namespace {

/// Says at the end what was compared.
class Report : public testing::Environment {
 public:
  void TearDown() override {
    std::printf("compared: %d operations, %llu paths, %llu accesses\n",
                testing::UnitTest::GetInstance()->test_to_run_count(), g_paths, g_accesses);
  }
};

[[maybe_unused]] const testing::Environment* const kReport =
    testing::AddGlobalTestEnvironment(new Report);

}  // namespace
}  // namespace hostile
