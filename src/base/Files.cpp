#include "base/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <random>
#include <system_error>

#include "base/Text.h"

namespace tarve {

namespace fs = std::filesystem;

std::string NativePath(std::string_view path) {
  std::string result(path);
  for (char& c : result) {
    if (c == '\\') c = '/';
  }
  return result;
}

std::string FindFileNoCase(const std::string& path) {
  std::error_code ec;
  if (path.empty() || fs::exists(path, ec)) return path;
  const fs::path wanted(path);
  fs::path found = wanted.root_path();
  for (const fs::path& part : wanted.relative_path()) {
    fs::path exact = found / part;
    if (fs::exists(exact, ec)) {
      found = exact;
      continue;
    }
    const fs::path folder = found.empty() ? fs::path(".") : found;
    bool matched = false;
    for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
      if (EqualsNoCase(it->path().filename().string(), part.string())) {
        found = found / it->path().filename();
        matched = true;
        break;
      }
    }
    if (!matched) return path;
  }
  return found.string();
}

std::string FolderOf(std::string_view path) {
  const std::size_t slash = path.find_last_of('/');
  if (slash == std::string_view::npos) return std::string();
  return std::string(path.substr(0, slash + 1));
}

std::string FindProgramFileFolder(const std::string& name, const std::string& subfolder,
                                  const std::string& installed_folder) {
  std::error_code ec;
  const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
  if (ec) return installed_folder;
  const fs::path programs = exe.parent_path();
  if (fs::exists(programs / name, ec)) return programs.string();
  // An install keeps the programs in PREFIX/bin and their files in PREFIX/SUBFOLDER, wherever it
  // was put (`cmake --install --prefix`, a package unpacked elsewhere).
  const fs::path beside = programs.parent_path() / subfolder;
  if (fs::exists(beside / name, ec)) return beside.string();
  return installed_folder;
}

std::string FindDataFolder(const std::string& installed_folder) {
  return FindProgramFileFolder("tarve.dat", "share/tarve", installed_folder);
}

namespace {

// A file descriptor closed when it goes out of scope.
class FileDescriptor {
 public:
  explicit FileDescriptor(int fd) : fd_(fd) {}
  ~FileDescriptor() {
    if (fd_ >= 0) close(fd_);
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  int get() const { return fd_; }
  // Closes now, telling whether the last writes reached the file.
  bool Close() {
    const int fd = fd_;
    fd_ = -1;
    return close(fd) == 0;
  }

 private:
  int fd_;
};

bool WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

// The file a path stands for once symbolic links at its end are followed, so that a save over
// a linked file writes the file the link leads to and the link stays a link.
std::string FollowLinks(const std::string& path) {
  fs::path target = path;
  std::error_code ec;
  for (int hops = 0; hops < 40 && fs::is_symlink(target, ec); ++hops) {
    const fs::path next = fs::read_symlink(target, ec);
    if (ec) break;
    target = next.is_absolute() ? next : target.parent_path() / next;
  }
  return target.string();
}

}  // namespace

bool ReadWholeFile(const std::string& path, std::string& bytes, std::size_t max_bytes) {
  bytes.clear();
  // Opened without waiting, so that a FIFO named as a file never blocks the player, and checked
  // on the opened file itself: only a regular file is read, never a folder, a pipe or a device
  // (a terminal, /dev/stdin) that would take the player's own input or never end.
  FileDescriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (file.get() < 0) return false;
  struct stat info {};
  if (fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode)) return false;
  const auto size = static_cast<std::uintmax_t>(info.st_size);
  if (size > max_bytes) return false;
  bytes.resize(static_cast<std::size_t>(size));
  std::size_t filled = 0;
  // The size is what the file held when it was opened; one that grows meanwhile is read on up
  // to the bound.
  for (;;) {
    if (filled == bytes.size()) {
      if (bytes.size() > max_bytes) return false;
      bytes.resize(std::min(max_bytes + 1, bytes.size() + 65536));
      if (filled == bytes.size()) return false;
    }
    const ssize_t got = read(file.get(), bytes.data() + filled, bytes.size() - filled);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return false;
    if (got == 0) break;
    filled += static_cast<std::size_t>(got);
  }
  bytes.resize(filled);
  return filled <= max_bytes;
}

bool WriteFileAtomically(const std::string& path, std::string_view bytes) {
  const std::string target = FollowLinks(path);
  struct stat old {};
  const bool replacing = stat(target.c_str(), &old) == 0;
  // A fresh name, created exclusively and never through a link: a file or a link planted
  // beside the target under a guessed name is never written.
  // The names need not be secret (O_EXCL refuses anything already there), only differ from
  // one try to the next.
  std::minstd_rand names(static_cast<std::uint_fast32_t>(
      std::chrono::steady_clock::now().time_since_epoch().count() ^ getpid()));
  std::string temporary;
  int fd = -1;
  for (int attempt = 0; attempt < 100 && fd < 0; ++attempt) {
    char suffix[16];
    std::snprintf(suffix, sizeof suffix, ".%08x.tmp~", static_cast<unsigned>(names()));
    temporary = target + suffix;
    fd = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (fd < 0 && errno != EEXIST) return false;
  }
  if (fd < 0) return false;
  FileDescriptor file(fd);
  // The new file keeps the old one's permissions and, where the system allows, its owner.
  if (replacing) {
    if (fchown(file.get(), old.st_uid, old.st_gid) != 0) {
      // Only the superuser can give a file away; for anyone else the new file is their own.
    }
    fchmod(file.get(), old.st_mode & 0777);
  }
  const bool written = WriteAll(file.get(), bytes) && fsync(file.get()) == 0;
  if (!file.Close() || !written || std::rename(temporary.c_str(), target.c_str()) != 0) {
    unlink(temporary.c_str());
    return false;
  }
  // The rename itself is made lasting too.
  const std::string folder = FolderOf(target);
  FileDescriptor directory(
      open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (directory.get() >= 0) fsync(directory.get());
  return true;
}

}  // namespace tarve
