// A bus that knows in advance every access of a test and answers the loads.
//
// A transcript has one event per line, in total order; "#" and what follows is commentary:
//   w8 060e 05          a store of 8, 16 or 32 bits: offset, register value (big-endian reading)
//   r8 060d a7          a load and its answer
//   r8 060d a5 x10000   the same event many times; each kind can have a count
//   r8 060c 32  L3_FLAGS port=2    a register's name, as traces have it, is commentary as well
//   mw16 12340000 0040  a store to frame buffer memory by bus address; loads are mr8 and mr16
//   map 1234            MemoryMap of that base; "map 1234 fails" answers false
//   lock                IrqLock
//   unlock              IrqUnlock, with the state that the lock saved (0 without a lock)
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

/// While it lives, the register and memory socket answers from its transcript. Any difference,
/// and events left over at the end, are test failures.
class ScriptedBus {
 public:
  explicit ScriptedBus(const char* transcript);
  ~ScriptedBus();
  ScriptedBus(const ScriptedBus&) = delete;
  ScriptedBus& operator=(const ScriptedBus&) = delete;

  /// Compares an event with the next one of the transcript. The answer of a load; junk when it
  /// was not expected.
  std::uint32_t OnEvent(const std::string& kind, std::uint32_t address, std::uint32_t stored);

  /// Calls `look` once, just before the next event.
  void BeforeNextEvent(std::function<void()> look) { look_ = std::move(look); }

  /// True when the test has failed and waits may as well be given up.
  [[nodiscard]] bool Broken() const { return broken_; }

  [[nodiscard]] static ScriptedBus* Current();

 private:
  struct Event {
    std::string kind;
    std::uint32_t address = 0;
    std::uint32_t value = 0;
    unsigned times = 1;
    std::string line;
  };

  static Event Parse(const std::string& line);
  void Report(const std::string& got);

  std::vector<Event> events_;
  std::size_t next_ = 0;
  unsigned done_ = 0;  ///< Times that the next event has happened.
  bool broken_ = false;
  std::function<void()> look_;
};
