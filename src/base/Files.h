// Files as games name them: paths written on Windows ("\" separators, any letter case) are
// found on Linux, and whole files are read and written safely.
#pragma once

#include <string>
#include <string_view>

namespace tarve {

// A path written in a game or saved game, with "\" turned into "/".
std::string NativePath(std::string_view path);

// The path of an existing file that matches `path`, comparing each name in it without regard
// to case when the exact spelling does not exist. `path` itself when nothing matches.
std::string FindFileNoCase(const std::string& path);

// The folder of a file path, with a trailing "/" ("" for a bare file name).
std::string FolderOf(std::string_view path);

// The folder of one of the program's own files, `name`: the running executable's own folder when
// it holds the file, as in a build tree; else `subfolder` (such as "share/tarve") of the folder
// above the executable's bin folder when it holds the file, as in an install into any prefix;
// else `installed_folder`.
std::string FindProgramFileFolder(const std::string& name, const std::string& subfolder,
                                  const std::string& installed_folder);

// The program's data folder (tarve.dat, libraries shared by games), found as above in
// share/tarve.
std::string FindDataFolder(const std::string& installed_folder);

// Reads a whole regular file. False when it cannot be opened or read, is larger than
// `max_bytes`, or is no regular file (a folder, a FIFO, a device such as a terminal): those are
// refused at once, never waited on.
bool ReadWholeFile(const std::string& path, std::string& bytes,
                   std::size_t max_bytes = std::size_t{256} << 20);

// Writes a whole file through a temporary file in the same folder that is then flushed to disk
// and renamed into place, so a crash or a full disk never leaves a half-written file behind.
// The temporary file is created exclusively under a fresh name; a `path` that is a symbolic
// link is written at the file the link leads to, and a file replaced keeps its permissions.
bool WriteFileAtomically(const std::string& path, std::string_view bytes);

}  // namespace tarve
