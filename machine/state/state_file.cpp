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
#include "machine/state/state_json.h"
#include "machine/state/state_text.h"

namespace board {
namespace {

/// Pieces of a damaged file in a message stay readable and short.
constexpr std::size_t kLongestReason = 300;

constexpr mode_t kReadableByAll = 0666;
constexpr auto kSameOwner = static_cast<uid_t>(-1);

[[noreturn]] void Fail(const std::string& doing, const std::string& path) {
  throw std::system_error(errno, std::generic_category(), doing + " '" + path + "'");
}

/// The content, cut off where it is longer than any state.
std::string ReadAll(const std::string& path) {
  const std::string doing = "cannot load the state";
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.Open()) Fail(doing, path);
  std::string text;
  std::array<char, 4096> piece;
  for (;;) {
    const ssize_t got = read(file.Get(), piece.data(), piece.size());
    if (got == 0) return text;
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) Fail(doing, path);
    text.append(piece.data(), static_cast<std::size_t>(got));
    if (text.size() > kLongestStateText) return text;
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

/// Gives the new file the permissions of the one that it replaces, and its owner and group where
/// this process may. Those of any new file, if it replaces none. False, with errno, when it fails.
bool TakeOver(int fd, const std::string& path) {
  struct stat old {};
  if (stat(path.c_str(), &old) != 0) {
    const mode_t mask = umask(0);
    umask(mask);
    return fchmod(fd, kReadableByAll & ~mask) == 0;
  }
  // Without the right to give the file away, the group alone may still be possible.
  if (fchown(fd, old.st_uid, old.st_gid) != 0) (void)!fchown(fd, kSameOwner, old.st_gid);
  // A state is not a program: it never gets the bits that would run it with its owner's rights.
  return fchmod(fd, old.st_mode & 0777) == 0;
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

std::string LoadStateFile(const std::string& path, chip::RouterChip& chip) {
  const std::string text = ReadAll(path);
  try {
    return ReplaceState(text, chip);
  } catch (const StateError& error) {
    throw StateError("cannot load the state '" + path + "': " + Printable(error.what()));
  }
}

StateFile::StateFile(const std::string& path) : path_(path), target_(Followed(path)) {
  const std::string doing = "cannot save the state in";
  if (path.empty()) throw std::runtime_error(doing + " '': a file needs a name");
  if (access(FolderOf(target_).c_str(), W_OK | X_OK) != 0) Fail(doing, path);
  if (std::filesystem::exists(target_) && !std::filesystem::is_regular_file(target_)) {
    throw std::runtime_error(doing + " '" + path + "': it is not a regular file");
  }
}

void StateFile::Save(chip::RouterChip& chip, const std::string& note) const {
  const std::string text = StateText(chip, note);
  std::string temporary = target_ + ".XXXXXX";
  const Descriptor file(mkostemp(temporary.data(), O_CLOEXEC));
  const bool written = file.Open() && WriteAll(file.Get(), text) && TakeOver(file.Get(), target_) &&
                       fsync(file.Get()) == 0 && rename(temporary.c_str(), target_.c_str()) == 0;
  if (!written) {
    const int error = errno;
    if (file.Open()) unlink(temporary.c_str());
    errno = error;
    Fail("cannot save the state in", path_);
  }
  SyncFolder(FolderOf(target_));
}

}  // namespace board
