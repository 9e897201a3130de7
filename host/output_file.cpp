#include "host/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include "host/broken_pipe.h"
#include "host/end_signals.h"
#include "host/message.h"

namespace board {
namespace {

constexpr int kFlags = O_WRONLY | O_CREAT | O_NOCTTY | O_CLOEXEC;
constexpr mode_t kReadableByAll = 0666;

bool IsRegular(int fd) {
  struct stat about {};
  return fstat(fd, &about) == 0 && S_ISREG(about.st_mode);
}

}  // namespace

OutputFile::OutputFile(const std::string& path, const std::string& kind, std::string_view header)
    : path_(path),
      name_(kind + " '" + path + "'"),
      file_(open(path.c_str(), kFlags | O_EXCL, kReadableByAll)),
      made_(file_.Open()) {
  if (!made_) file_ = Descriptor(open(path.c_str(), kFlags, kReadableByAll));
  if (!file_.Open()) {
    throw std::system_error(errno, std::generic_category(), "cannot open " + name_);
  }
  Add(header);
  if (!IsRegular(file_.Get())) Start();
}

OutputFile::~OutputFile() {
  Flush();
  if (made_ && !started_) Remove();
}

void OutputFile::Start() {
  if (started_) return;
  started_ = true;
  if (IsRegular(file_.Get()) && ftruncate(file_.Get(), 0) < 0) error_ = errno;
  WriteOut();
  if (error_ == 0) return;
  throw std::system_error(error_, std::generic_category(), "cannot write " + name_);
}

void OutputFile::Add(std::string_view text) {
  while (!text.empty() && error_ == 0) {
    if (end_ == text_.size()) Flush();
    const std::string_view piece = text.substr(0, text_.size() - end_);
    std::memcpy(text_.data() + end_, piece.data(), piece.size());
    end_ += piece.size();
    text.remove_prefix(piece.size());
  }
}

void OutputFile::Flush() {
  if (!started_) return;
  WriteOut();
  if (error_ == 0 || reported_) return;
  reported_ = true;
  Report("cannot write " + name_ + ": " + std::strerror(error_) + "; the file ends here");
}

void OutputFile::FlushAtOnce() {
  if (!started_ || error_ != 0) return;
  fcntl(file_.Get(), F_SETFL, O_NONBLOCK);
  const BrokenPipeIsError guard;
  const ssize_t done = write(file_.Get(), text_.data() + begin_, end_ - begin_);
  // Nothing may follow a gap.
  if (std::cmp_not_equal(done, end_ - begin_)) error_ = EAGAIN;
  begin_ = end_ = 0;
}

bool OutputFile::Failed() const { return error_ != 0 && error_ != EINTR; }

void OutputFile::WriteOut() {
  if (begin_ == end_) return;
  const BrokenPipeIsError guard;
  while (begin_ != end_ && error_ == 0) {
    const ssize_t done = write(file_.Get(), text_.data() + begin_, end_ - begin_);
    if (done >= 0) {
      begin_ += static_cast<std::size_t>(done);
    } else {
      error_ = RetryWrite(file_.Get());
    }
  }
  begin_ = end_ = 0;
}

void OutputFile::Remove() const {
  struct stat made {};
  struct stat there {};
  if (fstat(file_.Get(), &made) != 0 || lstat(path_.c_str(), &there) != 0) return;
  // Another program may have put its own file in its place.
  if (there.st_dev == made.st_dev && there.st_ino == made.st_ino) unlink(path_.c_str());
}

}  // namespace board
