#include "machine/state/state_json.h"

#include <set>

namespace board {
namespace {

using nlohmann::json;

/// Finds members that come twice, of which a JSON parser keeps one.
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

}  // namespace

json ParseStateJson(const std::string& text) {
  if (text.size() > kLongestStateText) throw StateError("it is longer than any state");
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
