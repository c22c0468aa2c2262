#include "base/Files.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
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

std::string FindDataFolder(const std::string& installed_folder) {
  std::error_code ec;
  const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
  if (ec) return installed_folder;
  const fs::path programs = exe.parent_path();
  if (fs::exists(programs / "tarve.dat", ec)) return programs.string();
  // An install keeps the programs in PREFIX/bin and their data in PREFIX/share/tarve, wherever
  // it was put (`cmake --install --prefix`, a package unpacked elsewhere).
  const fs::path beside = programs.parent_path() / "share" / "tarve";
  if (fs::exists(beside / "tarve.dat", ec)) return beside.string();
  return installed_folder;
}

bool ReadWholeFile(const std::string& path, std::string& bytes, std::size_t max_bytes) {
  std::error_code ec;
  if (fs::is_directory(path, ec)) return false;
  std::ifstream file(path, std::ios::binary);
  if (!file) return false;
  bytes.clear();
  // Read straight into the string when the size is known; files whose size the system cannot
  // tell (pipes) are read piece by piece.
  const auto size = fs::file_size(path, ec);
  if (!ec) {
    if (size > max_bytes) return false;
    bytes.resize(static_cast<std::size_t>(size));
    file.read(bytes.data(), static_cast<std::streamsize>(size));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    if (file.bad()) return false;
  }
  char buffer[65536];
  while (file) {
    file.read(buffer, sizeof buffer);
    bytes.append(buffer, static_cast<std::size_t>(file.gcount()));
    if (bytes.size() > max_bytes) return false;
  }
  return !file.bad();
}

bool WriteFileAtomically(const std::string& path, std::string_view bytes) {
  const std::string temporary = path + ".tmp~";
  {
    std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
    if (!file) return false;
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.flush();
    if (!file) {
      file.close();
      std::remove(temporary.c_str());
      return false;
    }
  }
  std::error_code ec;
  fs::rename(temporary, path, ec);
  if (ec) {
    std::remove(temporary.c_str());
    return false;
  }
  return true;
}

}  // namespace tarve
