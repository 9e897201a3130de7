#include "machine/state/state_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "host/descriptor.h"
#include "machine/state/state_text.h"

namespace board {
namespace {

/// The fullest chip takes a tenth of it.
constexpr std::size_t kLongestText = 16U << 20;

/// Pieces of a damaged file in a message stay readable and short.
constexpr std::size_t kLongestReason = 300;

constexpr mode_t kReadableByAll = 0666;

[[noreturn]] void Fail(const std::string& doing, const std::string& path) {
  throw std::system_error(errno, std::generic_category(), doing + " '" + path + "'");
}

std::string ReadAll(const std::string& path) {
  const std::string doing = "cannot load the state";
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.Open()) Fail(doing, path);
  std::string text;
  std::array<char, 65536> piece;
  for (;;) {
    const ssize_t got = read(file.Get(), piece.data(), piece.size());
    if (got == 0) return text;
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) Fail(doing, path);
    text.append(piece.data(), static_cast<std::size_t>(got));
    if (text.size() > kLongestText) {
      throw StateError("cannot load the state '" + path + "': it is longer than any state");
    }
  }
}

std::string Printable(std::string reason) {
  if (reason.size() > kLongestReason) reason = reason.substr(0, kLongestReason) + "...";
  std::replace_if(
      reason.begin(), reason.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
  return reason;
}

std::filesystem::path FolderOf(const std::string& path) {
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  return folder.empty() ? "." : folder;
}

/// Where the path leads, even when nothing is there yet.
std::filesystem::path Followed(std::filesystem::path path) {
  // The kernel follows as many.
  constexpr int kMostLinks = 40;
  std::error_code not_there;
  for (int i = 0; i < kMostLinks && std::filesystem::is_symlink(path, not_there); ++i) {
    path = path.parent_path() / std::filesystem::read_symlink(path);
  }
  return std::filesystem::weakly_canonical(path);
}

/// The permissions of the file that is replaced, or those of any new file.
mode_t ModeFor(const std::string& path) {
  struct stat old {};
  if (stat(path.c_str(), &old) == 0) return old.st_mode & 07777;
  const mode_t mask = umask(0);
  umask(mask);
  return kReadableByAll & ~mask;
}

bool WriteAll(int fd, const std::string& text) {
  std::size_t done = 0;
  while (done != text.size()) {
    const ssize_t count = write(fd, text.data() + done, text.size() - done);
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) done += static_cast<std::size_t>(count);
  }
  return true;
}

/// Makes the new name survive a loss of power, where the file system can do that.
void SyncFolder(const std::filesystem::path& folder) {
  const Descriptor file(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (file.Open()) (void)fsync(file.Get());
}

}  // namespace

void LoadStateFile(const std::string& path, chip::RouterChip& chip) {
  const std::string text = ReadAll(path);
  try {
    ReplaceState(text, chip);
  } catch (const StateError& error) {
    throw StateError("cannot load the state '" + path + "': " + Printable(error.what()));
  }
}

StateFile::StateFile(const std::string& path) : path_(path), target_(Followed(path)) {
  const std::string doing = "cannot save the state in";
  if (path.empty()) throw std::runtime_error(doing + " '': a file needs a name");
  if (access(FolderOf(target_).c_str(), W_OK | X_OK) != 0) Fail(doing, path);
  if (std::filesystem::exists(target_) && !std::filesystem::is_regular_file(target_)) {
    throw std::runtime_error(doing + " '" + path + "': it is no regular file");
  }
}

void StateFile::Save(chip::RouterChip& chip) const {
  const std::string text = StateText(chip);
  std::string temporary = target_ + ".XXXXXX";
  const Descriptor file(mkostemp(temporary.data(), O_CLOEXEC));
  const bool written = file.Open() && WriteAll(file.Get(), text) &&
                       fchmod(file.Get(), ModeFor(target_)) == 0 && fsync(file.Get()) == 0 &&
                       rename(temporary.c_str(), target_.c_str()) == 0;
  if (!written) {
    const int error = errno;
    if (file.Open()) unlink(temporary.c_str());
    errno = error;
    Fail("cannot save the state in", path_);
  }
  SyncFolder(FolderOf(target_));
}

}  // namespace board
