#include "support/session_steps.h"

#include <fstream>
#include <utility>

#include "support/session.h"

namespace {

/// Typed text as the editor echoes it after `before` characters of the same line.
std::string Echo(const std::string& typed, std::size_t before) {
  std::string echo;
  for (std::size_t i = 0; i < typed.size(); ++i) {
    echo += typed[i];
    const std::size_t count = before + i + 1;
    if (count == 71 || count == 151) echo += "\n\r";
  }
  return echo;
}

std::string Unescape(const std::string& text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      plain += text[i];
      continue;
    }
    if (++i == text.size()) throw SessionError("escape without a letter: " + text);
    switch (text[i]) {
      case 't':
        plain += '\t';
        break;
      case 'r':
        plain += '\r';
        break;
      case 'n':
        plain += '\n';
        break;
      case '\\':
        plain += '\\';
        break;
      case 'x':
        plain += static_cast<char>(std::stoul(text.substr(i + 1, 2), nullptr, 16));
        i += 2;
        break;
      default:
        throw SessionError("unknown escape: " + text);
    }
  }
  return plain;
}

/// Turns the lines of a session file into steps, one line after the other.
class StepReader {
 public:
  void Add(unsigned number, const std::string& line) {
    line_number_ = number;
    if (line.starts_with('#')) return;
    if (line.starts_with(kServe)) {
      AddStep().passes = ParsePasses(line.substr(sizeof(kServe) - 1));
    } else if (line.starts_with(kType)) {
      Type(Unescape(line.substr(sizeof(kType) - 1)));
    } else if (line.starts_with('@')) {
      directives_.push_back(line.substr(1));
    } else if (line.starts_with(kPrompt)) {
      Step& step = Type(Unescape(line.substr(sizeof(kPrompt) - 1)));
      step.keys += '\n';
      step.echo += "\r\n";
      step.to_prompt = true;
      typed_ = 0;
    } else if (!steps_.empty()) {
      steps_.back().output.push_back(Unescape(line));
    } else if (!line.empty()) {
      throw SessionError("output before the first prompt");
    }
  }

  std::vector<Step> Take() {
    if (steps_.empty()) throw SessionError("no typed line");
    if (!directives_.empty()) throw SessionError("a directive that no line follows");
    return std::move(steps_);
  }

 private:
  static constexpr char kServe[] = "@serve ";
  static constexpr char kType[] = "@type ";

  static unsigned ParsePasses(const std::string& text) {
    std::size_t used = 0;
    const unsigned long passes = std::stoul(text, &used);
    if (used != text.size()) throw SessionError("not a number of passes: " + text);
    return static_cast<unsigned>(passes);
  }

  Step& AddStep() {
    Step& step = steps_.emplace_back();
    step.line_number = line_number_;
    step.directives = std::exchange(directives_, {});
    return step;
  }

  Step& Type(const std::string& text) {
    Step& step = AddStep();
    step.keys = text;
    step.echo = Echo(text, typed_);
    typed_ += text.size();
    return step;
  }

  std::vector<Step> steps_;
  std::vector<std::string> directives_;  ///< Of the next step.
  std::size_t typed_ = 0;                ///< Characters of the line so far.
  unsigned line_number_ = 0;
};

}  // namespace

std::vector<Step> ReadSession(const char* path) {
  std::ifstream file(path);
  if (!file) throw SessionError("cannot read the file");
  StepReader reader;
  std::string line;
  for (unsigned number = 1; std::getline(file, line); ++number) reader.Add(number, line);
  return reader.Take();
}
