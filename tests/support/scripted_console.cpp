#include "support/scripted_console.h"

#include <cstdio>
#include <cstdlib>
#include <deque>
#include <utility>

#include "console/console.h"
#include "console/console_port.h"
#include "support/scripted_bus.h"

namespace {

constexpr int kNothing = -1;
constexpr unsigned kHopeless = 100'000;

std::deque<int> g_input;  ///< Characters, and kNothing for reads that find none.
std::string g_output;
std::size_t g_unflushed = 0;
std::vector<long> g_sleeps;
unsigned g_idle_sleeps = 0;  ///< With nothing left to type.
bool g_ended = false;        ///< Once everything is read.
bool g_ctrl_c = false;
unsigned g_looks = 0;
monitor::Awaited g_awaited;
unsigned g_flushes = 0;

}  // namespace

void Type(const std::string& keys) {
  for (const char key : keys) g_input.push_back(static_cast<unsigned char>(key));
}

void TypeNothing(unsigned reads) { g_input.insert(g_input.end(), reads, kNothing); }

void EndInput() { g_ended = true; }

std::size_t UnreadKeys() {
  std::size_t keys = 0;
  for (const int item : g_input) keys += item != kNothing ? 1 : 0;
  return keys;
}

void ClearConsole() {
  g_input.clear();
  monitor::ConsolePuts("\n\r");
  g_output.clear();
  g_unflushed = 0;
  g_sleeps.clear();
  g_ended = false;
  g_ctrl_c = false;
  g_looks = 0;
}

std::string TakeOutput() { return std::exchange(g_output, ""); }

std::size_t UnflushedOutput() { return g_unflushed; }

std::vector<long> TakeSleeps() { return std::exchange(g_sleeps, {}); }

void PressCtrlCInWaits(bool pressed) { g_ctrl_c = pressed; }

unsigned TakeLooks() { return std::exchange(g_looks, 0); }

const monitor::Awaited& LastAwaited() { return g_awaited; }

unsigned TakeFlushes() { return std::exchange(g_flushes, 0); }

namespace monitor {

int ConsoleReadChar() {
  if (g_input.empty()) return kNothing;
  const int item = g_input.front();
  g_input.pop_front();
  return item;
}

bool ConsoleEnded() { return g_ended && g_input.empty(); }

void ConsoleSend(const char* text, std::size_t count) {
  g_output.append(text, count);
  g_unflushed += count;
}

void ConsoleFlush() {
  g_unflushed = 0;
  ++g_flushes;
}

void ConsoleWait(long microseconds) {
  ConsoleFlush();
  g_sleeps.push_back(microseconds);
  if (!g_input.empty()) {
    g_idle_sleeps = 0;
    return;
  }
  if (microseconds >= 0 && ++g_idle_sleeps != kHopeless) return;
  std::fputs("the monitor waits for keys that the test does not type\n", stderr);
  std::abort();
}

void ConsoleIdle(long microseconds) { ConsoleWait(microseconds); }

bool WaitInterrupted(const Awaited& awaited) {
  g_awaited = awaited;
  ConsoleFlush();
  ++g_looks;
  // A broken transcript answers junk forever.
  const ScriptedBus* const bus = ScriptedBus::Current();
  return g_ctrl_c || (bus != nullptr && bus->Broken());
}

}  // namespace monitor
