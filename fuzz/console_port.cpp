// The console on a scripted kernel: reads that are split, fail or are interrupted, writes that are
// short, and an operator who types ahead during waits, including Ctrl-C, more than is kept. What
// the console passes on is compared with a model of what it promises.
//
// An input begins with a byte of settings, the number of the kernel's answers in a byte, and these,
// which repeat. It continues with steps, each a byte that says what happens and its operands.
#include "console/console_port.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "console/posix_console.h"
#include "core/long_wait.h"
#include "fuzz/input.h"
#include "fuzz/scripted_kernel.h"

namespace {

using fuzz::g_kernel;

constexpr std::size_t kKept = 3072;
constexpr char kCtrlC = 3;
constexpr char kCtrlD = 4;

void Check(bool holds) {
  if (!holds) std::abort();
}

/// Makes the console's calls, knowing for each typed character whether it has to arrive or may be
/// missing.
class Session {
 public:
  explicit Session(fuzz::Input input) : steps_(input) {
    const std::uint8_t settings = steps_.Byte();
    g_kernel = {};
    g_kernel.terminal = (settings & 1) != 0;
    g_kernel.answers = steps_.Bytes(steps_.Byte());
    setup_.input = fuzz::kInput;
    setup_.output = fuzz::kOutput;
    setup_.return_is_line_feed = (settings & 2) != 0;
    setup_.delete_is_backspace = (settings & 4) != 0;
    monitor::ConsoleOpen(setup_);
  }

  void Run() {
    while (!steps_.Empty()) Step();
    g_kernel.answers = {};
    CtrlCIsFound();
    EverythingComes();
  }

 private:
  void Step() {
    const std::uint8_t what = steps_.Byte();
    switch (what & 7) {
      case 0:
        return Type(1);
      case 1:
        return Type(steps_.Byte());
      case 2:
        g_kernel.ended = (what & 8) != 0;
        return;
      case 3:
        return Wait(steps_.Half());
      case 4:
        return Send();
      case 5:
        return (void)Look();
      default:
        for (unsigned count = steps_.Byte(); count != 0; --count) Read();
    }
  }

  /// A text, repeated. Only the void line that stands for what is lost has a Ctrl-D.
  void Type(unsigned times) {
    const auto bytes = steps_.Bytes(steps_.Byte() % 64U);
    std::string text(bytes.begin(), bytes.end());
    std::replace(text.begin(), text.end(), kCtrlD, 'd');
    for (; times != 0; --times) g_kernel.typed += text;
  }

  void Send() {
    const auto bytes = steps_.Bytes(steps_.Byte());
    const std::string text(bytes.begin(), bytes.end());
    for (unsigned times = 1U + steps_.Byte(); times != 0; --times) {
      monitor::ConsoleSend(text.data(), text.size());
      sent_ += text;
    }
    Check(sent_.starts_with(g_kernel.written));
  }

  void Wait(std::uint16_t microseconds) {
    monitor::ConsoleWait(microseconds == 0 && !g_kernel.ended ? -1 : microseconds);
    Check(g_kernel.written == sent_);
  }

  /// The next character comes, as the setup translates it, or none.
  void Read() {
    g_kernel.looked = false;
    const int c = monitor::ConsoleReadChar();
    if (lost_ && void_left_ == 0 && g_kernel.looked) EndLoss();
    if (c < 0) return;
    if (lost_ && next_ == kept_) {
      Check(void_left_ != 0 && c == (void_left_ == 2 ? kCtrlD : '\n'));
      --void_left_;
      return;
    }
    Check(next_ < g_kernel.read);
    Check(c == Translated(g_kernel.typed[next_++]));
  }

  /// In a long wait; true when the console has found a Ctrl-C.
  bool Look() {
    const bool found = monitor::WaitInterrupted({});
    Check(g_kernel.written == sent_);
    if (!g_kernel.terminal) {
      Check(!found);
      return false;
    }
    const std::size_t ctrl_c = g_kernel.typed.find(kCtrlC, lost_ ? lost_to_ : next_);
    Check(found == (ctrl_c < g_kernel.read));
    if (found) {
      next_ = ctrl_c + 1;
      lost_ = false;
    } else {
      NoteLoss();
    }
    return found;
  }

  void NoteLoss() {
    if (!lost_ && g_kernel.read - next_ > kKept) {
      lost_ = true;
      void_left_ = 2;
      kept_ = next_ + kKept;
      while (kept_ != next_ && !EndsLine(g_kernel.typed[kept_ - 1])) --kept_;
    }
    lost_to_ = g_kernel.read;
  }

  /// The monitor reads again, from the next whole line on.
  void EndLoss() {
    while (lost_to_ != g_kernel.read && !EndsLine(g_kernel.typed[lost_to_ - 1])) ++lost_to_;
    lost_ = !EndsLine(g_kernel.typed[lost_to_ - 1]);
    if (!lost_) next_ = lost_to_;
  }

  /// However much has been typed.
  void CtrlCIsFound() {
    if (!g_kernel.terminal) return;
    g_kernel.typed += kCtrlC;
    while (next_ != g_kernel.typed.size()) {
      const std::size_t before = g_kernel.read;
      Check(Look() || g_kernel.read != before);
    }
  }

  void EverythingComes() {
    g_kernel.typed += "x\n";
    for (std::size_t left = g_kernel.typed.size() - next_ + 4; left != 0; --left) {
      // Printing makes a look due.
      monitor::ConsoleSend("", 0);
      Read();
    }
    Check(!lost_ && next_ == g_kernel.typed.size());
    monitor::ConsoleFlush();
    Check(g_kernel.written == sent_);
  }

  [[nodiscard]] bool EndsLine(char c) const {
    return c == '\n' || (c == '\r' && setup_.return_is_line_feed);
  }

  [[nodiscard]] int Translated(char c) const {
    if (c == 127 && setup_.delete_is_backspace) return 8;
    if (c == '\r' && setup_.return_is_line_feed) return '\n';
    return static_cast<unsigned char>(c);
  }

  fuzz::Input steps_;
  monitor::ConsoleSetup setup_;
  std::string sent_;
  std::size_t next_ = 0;     ///< Typed characters come from here on,
  bool lost_ = false;        ///< or some are lost: those from
  std::size_t kept_ = 0;     ///< here
  std::size_t lost_to_ = 0;  ///< to here or to the next line end.
  unsigned void_left_ = 0;   ///< Characters to come of the line that stands for it.
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Session(fuzz::Input(data, size)).Run();
  return 0;
}
