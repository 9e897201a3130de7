// Replays a capture file into a port and writes what the port sends to another.
#include <pcap/pcap.h>
#include <sys/stat.h>
#include <sys/timerfd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "host/broken_pipe.h"
#include "host/descriptor.h"
#include "host/message.h"
#include "machine/ports/port.h"

namespace board {
namespace {

/// What fits in a frame buffer of the chip after its header.
constexpr unsigned kLongestFrame = 2016;

constexpr long kNanosecondsPerSecond = 1'000'000'000;
constexpr std::int64_t kMostSeconds = 1LL << 33;

struct CloseCapture {
  void operator()(pcap_t* capture) const { pcap_close(capture); }
  void operator()(pcap_dumper_t* dumper) const { pcap_dump_close(dumper); }
};

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;
using Capture = std::unique_ptr<pcap_t, CloseCapture>;
using Dumper = std::unique_ptr<pcap_dumper_t, CloseCapture>;

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

/// System calls for captures are few with a buffer of this size; the usual one holds two frames.
using FileBuffer = std::array<char, 65536>;

/// The buffer must outlive the file. Throws PortError.
File OpenFile(const std::string& name, const char* mode, FileBuffer& buffer) {
  File file(std::fopen(name.c_str(), mode), std::fclose);
  if (!file) throw PortError(About(name, std::strerror(errno)));
  std::setvbuf(file.get(), buffer.data(), _IOFBF, buffer.size());
  return file;
}

class CapturePort : public Port {
 public:
  CapturePort(const CaptureNames& names, const PortOptions& options) : name_(names.in) {
    if (!names.in.empty()) OpenInput(options.realtime);
    if (!names.out.empty()) OpenOutput(names.out);
    Advance();
  }

  std::optional<Frame> Receive() override {
    if (answered_) Advance();
    if (!pending_ || (timer_.Open() && Now() < due_)) return {};
    answered_ = true;
    return next_;
  }

  void Send(Frame frame) override {
    if (!dumper_) return;
    // It costs two system calls, which are too many for each frame that goes to a file.
    std::optional<BrokenPipeIsError> guard;
    if (out_is_pipe_) guard.emplace();
    const timespec now = WallClock();
    pcap_pkthdr header{};
    // The output counts nanoseconds where the structure says microseconds.
    header.ts = {.tv_sec = now.tv_sec, .tv_usec = now.tv_nsec};
    header.len = header.caplen = static_cast<bpf_u_int32>(frame.size());
    pcap_dump(reinterpret_cast<u_char*>(dumper_.get()), &header, frame.data());
    if (std::ferror(pcap_dump_file(dumper_.get())) != 0) GiveUpOutput();
  }

  void Flush() override {
    const BrokenPipeIsError guard;
    if (dumper_ && pcap_dump_flush(dumper_.get()) != 0) GiveUpOutput();
  }

  [[nodiscard]] int WatchedFd() const override { return timer_.Get(); }
  [[nodiscard]] bool Waits() const override { return !timer_.Open(); }
  [[nodiscard]] bool Pending() const override { return pending_; }
  [[nodiscard]] bool Failed() const override { return failed_; }

 private:
  void OpenInput(bool realtime) {
    char error[PCAP_ERRBUF_SIZE];
    File file = OpenFile(name_, "rbe", in_buffer_);
    input_.reset(
        pcap_fopen_offline_with_tstamp_precision(file.get(), PCAP_TSTAMP_PRECISION_NANO, error));
    if (!input_) throw PortError(About(name_, error));
    (void)file.release();
    if (pcap_datalink(input_.get()) != DLT_EN10MB) {
      throw PortError("pcap:" + name_ + ": frame 1: the link type is not Ethernet");
    }
    if (realtime) timer_ = Descriptor(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC));
  }

  void OpenOutput(const std::string& out) {
    out_name_ = out;
    output_.reset(pcap_open_dead_with_tstamp_precision(DLT_EN10MB, kLongestFrame,
                                                       PCAP_TSTAMP_PRECISION_NANO));
    File file = OpenFile(out, "wbe", out_buffer_);
    struct stat about {};
    out_is_pipe_ = fstat(fileno(file.get()), &about) == 0 && S_ISFIFO(about.st_mode);
    dumper_.reset(pcap_dump_fopen(output_.get(), file.release()));
    if (!dumper_) throw PortError(About(out, pcap_geterr(output_.get())));
    if (pcap_dump_flush(dumper_.get()) != 0) throw PortError(CannotWrite());
  }

  /// Reads the frame that Receive returns next, and sets the timer to its time. What it returned
  /// before is lost, as libpcap reuses the memory.
  void Advance() {
    pending_ = answered_ = false;
    if (!input_) return;
    ++number_;
    pcap_pkthdr* header;
    const u_char* data;
    const int result = pcap_next_ex(input_.get(), &header, &data);
    if (result == PCAP_ERROR_BREAK) return Close();
    if (result != 1) return Fail(pcap_geterr(input_.get()));
    if (header->caplen > kLongestFrame) return Fail("longer than 2016 bytes");
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

  [[nodiscard]] std::string CannotWrite() const {
    return "pcap:" + out_name_ + ": cannot write: " + std::strerror(errno);
  }

  void GiveUpOutput() {
    Report(CannotWrite());
    failed_ = true;
    dumper_.reset();
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
  std::string out_name_;
  bool out_is_pipe_ = false;
  FileBuffer in_buffer_;
  FileBuffer out_buffer_;
  Capture input_;
  Capture output_;
  Dumper dumper_;
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
