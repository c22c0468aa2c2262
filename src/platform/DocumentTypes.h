// The player's document types on the desktop: games, compiled games and saved games open with
// the player when the user opens them in a file manager.
#pragma once

#include <string>

namespace tarve {

// Associates the files ending in `extension` (with its dot, ".gwl") with the player under
// `description`: a freedesktop MIME type in the user's MIME package
// (DATA/mime/packages/tarve.xml) and the player's desktop entry
// (DATA/applications/tarve.desktop), where DATA is $XDG_DATA_HOME or
// ~/.local/share; then the desktop's caches are refreshed when their tools are installed. The
// player works without the association, so callers may ignore the result: false when a file
// could not be written.
bool AssociateFileType(const std::string& description, const std::string& extension);

// The MIME type the player gives files ending in `extension`.
std::string MimeTypeOfExtension(const std::string& extension);

}  // namespace tarve
