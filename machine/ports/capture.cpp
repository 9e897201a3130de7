// Replays a capture file into a port and writes what the port sends to another.
#include <pcap/pcap.h>
#include <sys/timerfd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string_view>

#include "chip/mac/frame_limits.h"
#include "host/descriptor.h"
#include "host/end_signals.h"
#include "host/message.h"
#include "host/output_file.h"
#include "machine/ports/port.h"

namespace board {
namespace {

constexpr long kNanosecondsPerSecond = 1'000'000'000;
constexpr std::int64_t kMostSeconds = 1LL << 33;

struct CloseCapture {
  void operator()(pcap_t* capture) const { pcap_close(capture); }
};

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;
using Capture = std::unique_ptr<pcap_t, CloseCapture>;

/// Impossible times, as in a damaged capture, become the nearest that is representable.
std::int64_t Nanoseconds(const timespec& time) {
  const std::int64_t seconds = std::clamp<std::int64_t>(time.tv_sec, 0, kMostSeconds);
  return seconds * kNanosecondsPerSecond + time.tv_nsec;
}

std::int64_t Now() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return Nanoseconds(now);
}

timespec WallClock() {
  timespec now;
  clock_gettime(CLOCK_REALTIME, &now);
  return now;
}

/// What libpcap says about a file; it names some of them itself.
std::string About(const std::string& file, const std::string& reason) {
  return "pcap:" + (reason.starts_with(file + ": ") ? reason : file + ": " + reason);
}

/// The beginning of a pcap file. Numbers are in the host's byte order, times in nanoseconds; the
/// magic number shows both.
struct PcapHeader {
  std::uint32_t magic = 0xA1B23C4D;
  std::uint16_t major_version = 2;
  std::uint16_t minor_version = 4;
  std::uint32_t zone = 0;
  std::uint32_t accuracy = 0;
  std::uint32_t longest = chip::kLongestBufferedFrame;
  std::uint32_t link_type = 1;  ///< Ethernet
};
constexpr PcapHeader kPcapHeader;

/// What comes before each frame.
struct PcapFrame {
  std::uint32_t seconds;
  std::uint32_t nanoseconds;
  std::uint32_t captured;
  std::uint32_t length;
};

template <typename T>
std::string_view BytesOf(const T& record) {
  return {reinterpret_cast<const char*>(&record), sizeof(record)};
}

class CapturePort : public Port {
 public:
  CapturePort(const CaptureNames& names, const PortOptions& options) : name_(names.in) {
    if (!names.in.empty()) OpenInput(options.realtime);
    if (!names.out.empty()) output_.emplace(names.out, "the capture", BytesOf(kPcapHeader));
    Advance();
  }

  void Start() override {
    if (output_) output_->Start();
  }

  std::optional<Frame> Receive() override {
    if (answered_) Advance();
    if (!pending_ || (timer_.Open() && Now() < due_)) return {};
    answered_ = true;
    return next_;
  }

  void Send(Frame frame) override {
    if (!output_) return;
    const timespec now = WallClock();
    const auto length = static_cast<std::uint32_t>(frame.size());
    const PcapFrame header{.seconds = static_cast<std::uint32_t>(now.tv_sec),
                           .nanoseconds = static_cast<std::uint32_t>(now.tv_nsec),
                           .captured = length,
                           .length = length};
    output_->Add(BytesOf(header));
    output_->Add({reinterpret_cast<const char*>(frame.data()), frame.size()});
  }

  void Flush() override {
    if (output_) output_->Flush();
  }

  [[nodiscard]] int WatchedFd() const override { return timer_.Get(); }
  [[nodiscard]] bool Waits() const override { return !timer_.Open(); }
  [[nodiscard]] bool Pending() const override { return pending_; }
  [[nodiscard]] bool Failed() const override { return failed_ || (output_ && output_->Failed()); }

 private:
  void OpenInput(bool realtime) {
    char error[PCAP_ERRBUF_SIZE];
    File file(std::fopen(name_.c_str(), "rbe"), std::fclose);
    if (!file) throw PortError(About(name_, std::strerror(errno)));
    std::setvbuf(file.get(), in_buffer_.data(), _IOFBF, in_buffer_.size());
    input_.reset(
        pcap_fopen_offline_with_tstamp_precision(file.get(), PCAP_TSTAMP_PRECISION_NANO, error));
    if (!input_) throw PortError(About(name_, error));
    (void)file.release();
    if (pcap_datalink(input_.get()) != DLT_EN10MB) {
      throw PortError("pcap:" + name_ + ": frame 1: the link type is not Ethernet");
    }
    if (realtime) timer_ = Descriptor(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC));
  }

  /// Reads the frame that Receive answers next, and sets the timer to its time. What it answered
  /// before is lost, as libpcap reuses the memory.
  void Advance() {
    pending_ = answered_ = false;
    if (!input_) return;
    ++number_;
    pcap_pkthdr* header;
    const u_char* data;
    const int result = pcap_next_ex(input_.get(), &header, &data);
    if (result == PCAP_ERROR_BREAK) return Close();
    // A signal that ends the board also ends the wait for a pipe's writer.
    if (result != 1 && EndSignal() != 0) return Close();
    if (result != 1) return Fail(pcap_geterr(input_.get()));
    if (header->caplen > chip::kLongestBufferedFrame) {
      return Fail("longer than " + std::to_string(chip::kLongestBufferedFrame) + " bytes");
    }
    if (header->caplen < header->len) return Fail("not captured whole");
    next_ = Frame(data, header->caplen);
    pending_ = true;
    if (timer_.Open()) Schedule(Nanoseconds({header->ts.tv_sec, header->ts.tv_usec}));
  }

  void Schedule(std::int64_t stamp) {
    if (number_ == 1) shift_ = Now() - stamp;
    // A time before the first frame's is now; a timer set to 0 would never expire.
    due_ = std::max(stamp + shift_, std::int64_t{1});
    itimerspec when{};
    when.it_value = {.tv_sec = due_ / kNanosecondsPerSecond,
                     .tv_nsec = due_ % kNanosecondsPerSecond};
    timerfd_settime(timer_.Get(), TFD_TIMER_ABSTIME, &when, nullptr);
  }

  void Fail(const std::string& reason) {
    Report("pcap:" + name_ + ": frame " + std::to_string(number_) + ": " + reason);
    failed_ = true;
    Close();
  }

  void Close() {
    input_.reset();
    timer_.Close();
  }

  std::string name_;
  /// Large enough to make system calls rare; the usual buffer holds two frames.
  std::array<char, 65536> in_buffer_;
  Capture input_;
  std::optional<OutputFile> output_;
  Descriptor timer_;
  Frame next_;             ///< What Receive returns next, or returned last.
  bool pending_ = false;   ///< There is such a frame, or it is not known whether one follows.
  bool answered_ = false;  ///< Receive has returned it.
  unsigned number_ = 0;
  std::int64_t shift_ = 0;  ///< Monotonic time minus capture time.
  std::int64_t due_ = 0;    ///< When the next frame arrives, monotonic.
  bool failed_ = false;
};

}  // namespace

std::unique_ptr<Port> OpenCapturePort(const CaptureNames& names, const PortOptions& options) {
  return std::make_unique<CapturePort>(names, options);
}

}  // namespace board
