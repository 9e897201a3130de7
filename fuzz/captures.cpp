// Any bytes as a capture file. The frames read from it fit the chip's buffers, and the captures
// that the board writes return them unchanged.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

#include "host/descriptor.h"
#include "host/message.h"
#include "machine/ports/port.h"
#include "machine/ports/port_recorder.h"

namespace board {

void Report(const std::string& /*text*/) {}

}  // namespace board

namespace {

constexpr std::size_t kLongestFrame = 2016;

/// A file that has a path but is not on a disk.
class MemoryFile {
 public:
  MemoryFile() : fd_(memfd_create("capture", MFD_CLOEXEC)) {}

  void Fill(const std::uint8_t* data, std::size_t size) {
    if (write(fd_.Get(), data, size) != static_cast<ssize_t>(size)) std::abort();
  }

  [[nodiscard]] std::string Path() const { return "/proc/self/fd/" + std::to_string(fd_.Get()); }

 private:
  board::Descriptor fd_;
};

std::unique_ptr<board::Port> Open(const std::string& files, bool realtime = false) {
  return board::OpenCapturePort(board::CapturesOf("pcap:" + files), {.realtime = realtime});
}

/// Copies of all frames, which the port itself keeps only until the next.
using Frames = std::vector<std::vector<std::uint8_t>>;

Frames ReadAll(board::Port& port) {
  Frames frames;
  while (const auto frame = port.Receive()) frames.emplace_back(frame->begin(), frame->end());
  return frames;
}

void Check(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  MemoryFile in;
  in.Fill(data, size);
  const MemoryFile out;
  const MemoryFile record;
  Frames frames;
  try {
    (void)ReadAll(*Open(in.Path(), true));
    const auto port = Open(in.Path() + "," + out.Path());
    board::PortRecorder recorder(record.Path(), {"wan"});
    port->Start();
    recorder.Start();
    frames = ReadAll(*port);
    for (const auto& frame : frames) {
      Check(frame.size() <= kLongestFrame);
      port->Send(frame);
      recorder.Record(0, board::Direction::kInbound, frame);
    }
    port->Flush();
    Check(!port->Pending());
  } catch (const board::PortError&) {
    return 0;
  }
  for (const MemoryFile* copy : {&out, &record}) {
    const auto port = Open(copy->Path());
    Check(ReadAll(*port) == frames && !port->Failed());
  }
  return 0;
}
