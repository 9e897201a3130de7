// Plays session files against the whole monitor on the model. The notation is in session_steps.h.
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <utility>

#include "console/console_port.h"
#include "core/long_wait.h"
#include "shell/shell.h"
#include "support/session.h"
#include "support/session_steps.h"

namespace {

constexpr char kStart[] = "\n\rDebug Monitor v0.9995.6.0(07-17-2002)\n\rDebug>> ";

/// Text with every control character visible and a line end after "\n\r".
std::string Visible(const std::string& text) {
  std::string visible = "    ";
  for (std::size_t i = 0; i < text.size(); ++i) {
    char escape[5];
    std::snprintf(escape, sizeof(escape), "\\x%02x", static_cast<unsigned char>(text[i]));
    if (text[i] == '\t') {
      visible += "\\t";
    } else if (text.compare(i, 2, "\n\r") == 0) {
      visible += "\\n\\r\n    ";
      ++i;
    } else {
      visible += text[i] >= ' ' && text[i] <= '~' ? std::string(1, text[i]) : escape;
    }
  }
  return visible;
}

/// Feeds the steps to the monitor and compares what it prints. The monitor's own frames cannot
/// be unwound, so the end of the session ends the program.
class Session {
 public:
  explicit Session(const char* path) : path_(path) {}

  void Open() { steps_ = ReadSession(path_); }

  /// The next key, or -1 for a pass without input. A step's output is compared when it is over.
  int NextKey() {
    for (;;) {
      if (at_ != keys_.size()) return static_cast<unsigned char>(keys_[at_++]);
      if (passes_left_ != 0) {
        --passes_left_;
        return -1;
      }
      CompareOutput();
      if (next_ == steps_.size()) Pass();
      BeginStep();
    }
  }

  void Print(const char* text, std::size_t count) { output_.append(text, count); }

  /// The monitor has returned: its last output must be as written, with no line left to type.
  [[noreturn]] void End() {
    returned_ = true;
    CompareOutput();
    if (next_ != steps_.size()) throw SessionError("the monitor has ended before the session");
    Pass();
  }

  [[noreturn]] void Fail(const std::exception& error) const {
    const unsigned line = next_ == 0 ? 0 : steps_[next_ - 1].line_number;
    std::cerr << path_ << ":" << line << ": " << error.what() << "\n";
    std::exit(1);
  }

  SessionState state;

 private:
  [[noreturn]] static void Pass() {
    std::cout << "1 passed, 0 failed\n";
    std::exit(0);
  }

  [[nodiscard]] std::string Wanted() const {
    if (next_ == 0) return kStart;
    const Step& step = steps_[next_ - 1];
    std::string wanted = step.echo;
    for (const std::string& line : step.output) wanted += line + "\n\r";
    return step.to_prompt && !returned_ ? wanted + kPrompt : wanted;
  }

  void CompareOutput() {
    const std::string wanted = Wanted();
    const std::string got = std::exchange(output_, "");
    if (got != wanted) {
      throw SessionError("output differs\n  wanted:\n" + Visible(wanted) + "\n  got:\n" +
                         Visible(got));
    }
    CheckComplaints();
  }

  void BeginStep() {
    const Step& step = steps_[next_++];
    for (const std::string& directive : step.directives) RunDirective(state, directive);
    BeforeKeys(state);
    keys_ = step.keys;
    at_ = 0;
    passes_left_ = step.passes;
  }

  void CheckComplaints() {
    auto unexpected = state.chip.registers.Complaints();
    for (const std::string& wanted : std::exchange(state.complaints, {})) {
      if (unexpected.erase(wanted) == 0) {
        throw SessionError("the model did not complain: " + wanted);
      }
    }
    if (!std::exchange(state.ignore_complaints, false) && !unexpected.empty()) {
      throw SessionError("the model complains: " + unexpected.begin()->first);
    }
    state.chip.registers.ForgetComplaints();
    state.ctrl_c_in_waits = false;
  }

  const char* path_;
  std::vector<Step> steps_;
  std::size_t next_ = 0;
  std::string keys_;
  std::size_t at_ = 0;
  unsigned passes_left_ = 0;
  std::string output_;
  bool returned_ = false;
};

Session* g_session = nullptr;

}  // namespace

namespace monitor {

int ConsoleReadChar() {
  try {
    return g_session->NextKey();
  } catch (const std::exception& error) {
    g_session->Fail(error);
  }
}
bool ConsoleEnded() { return false; }
void ConsoleSend(const char* text, std::size_t count) { g_session->Print(text, count); }
void ConsoleFlush() {}
void ConsoleWait(long /*microseconds*/) {}
void ConsoleIdle(long /*microseconds*/) {}
bool WaitInterrupted(const Awaited& /*awaited*/) { return g_session->state.ctrl_c_in_waits; }

}  // namespace monitor

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: session_runner FILE\n";
    return 2;
  }
  static Session session(argv[1]);
  g_session = &session;
  try {
    session.Open();
    chip::Attach(session.state.chip);
    monitor::RunShell();
    session.End();
  } catch (const std::exception& error) {
    session.Fail(error);
  }
}
