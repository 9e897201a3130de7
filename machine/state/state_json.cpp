#include "machine/state/state_json.h"

#include <algorithm>
#include <set>

namespace board {
namespace {

using nlohmann::json;

/// Objects and lists inside one another; a state has five.
constexpr unsigned kDeepest = 16;

/// Values of all kinds; the fullest chip has fewer than 40,000.
constexpr unsigned kMostValues = 100'000;

/// Finds duplicate members, of which a JSON parser keeps one.
class RepetitionCheck {
 public:
  bool operator()(int /*depth*/, json::parse_event_t event, const json& parsed) {
    if (event == json::parse_event_t::object_start) open_.emplace_back();
    if (event == json::parse_event_t::object_end) open_.pop_back();
    if (event == json::parse_event_t::key) Note(parsed.get<std::string>());
    return true;
  }

 private:
  struct Object {
    std::set<std::string> names;
    std::string latest;
  };

  void Note(const std::string& name) {
    open_.back().latest = name;
    if (open_.back().names.insert(name).second) return;
    json::json_pointer pointer;
    for (const Object& object : open_) pointer /= object.latest;
    throw StateError(pointer.to_string() + ": is a duplicate");
  }

  std::vector<Object> open_;
};

/// The parser's message without the name of its exception.
std::string ReasonOf(const json::exception& error) {
  const std::string text = error.what();
  const std::size_t end_of_name = text.find("] ");
  return end_of_name == std::string::npos ? text : text.substr(end_of_name + 2);
}

[[noreturn]] void Refuse(const std::string& text, std::size_t at, const std::string& reason) {
  const std::string_view before = std::string_view(text).substr(0, at);
  const auto lines = std::count(before.begin(), before.end(), '\n');
  const std::size_t column = at - (before.rfind('\n') + 1) + 1;
  throw StateError("parse error at line " + std::to_string(lines + 1) + ", column " +
                   std::to_string(column) + ": " + reason);
}

/// Looks at what opens, ends and separates values, which costs no memory. Whether these match is
/// left to the parser.
void CheckShape(const std::string& text) {
  if (text.size() > kLongestStateText) throw StateError("it is longer than any state");
  // The parser takes it for the end of the text.
  const std::size_t nul = text.find('\0');
  if (nul != std::string::npos) Refuse(text, nul, "a NUL byte");
  unsigned depth = 0;
  unsigned values = 0;
  bool in_string = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"') in_string = !in_string;
    if (in_string) {
      if (c == '\\') ++i;
      continue;
    }
    const bool opens = c == '{' || c == '[';
    if (opens && ++depth > kDeepest) Refuse(text, i, "nested deeper than any state");
    if ((opens || c == ',') && ++values > kMostValues) {
      Refuse(text, i, "more values than any state has");
    }
    if ((c == '}' || c == ']') && depth != 0) --depth;
  }
}

}  // namespace

json ParseStateJson(const std::string& text) {
  CheckShape(text);
  json state;
  try {
    state = json::parse(text, RepetitionCheck());
  } catch (const json::exception& error) {
    throw StateError(ReasonOf(error));
  }
  if (!state.is_object()) throw StateError("it is not a JSON object");
  return state;
}

}  // namespace board
