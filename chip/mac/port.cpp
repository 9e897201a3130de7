#include "chip/mac/port.h"

#include "chip/mac/frame_limits.h"

namespace chip {

bool Port::Queue(Transmission transmission) {
  if (queue_.size() >= kLongestQueue) return false;
  queue_.push_back(transmission);
  return true;
}

std::optional<Transmission> Port::NextDeparture() {
  if (queue_.empty() || !LinkUp()) return {};
  const Transmission next = queue_.front();
  queue_.pop_front();
  return next;
}

void Port::State(StateArchive& archive) {
  std::size_t size = queue_.size();
  archive.EnterList(monitor::NameOf(id_), size, kLongestQueue);
  queue_.resize(size);
  for (Transmission& transmission : queue_) {
    archive.EnterElement();
    archive.Hex("handle", transmission.handle);
    archive.Count("length", transmission.length, static_cast<std::uint16_t>(kLongestFrame));
    archive.Require(transmission.length != 0, "length", "empty frames are not sent");
    archive.Leave();
  }
  archive.Leave();
}

}  // namespace chip
