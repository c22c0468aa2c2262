// Text from the engine as the windows show it: the engine ends lines with CR LF, which Qt's text
// controls would show as an extra character, so lines end with LF alone on screen.
#pragma once

#include <QString>
#include <string>

namespace tarve {

inline QString ToDisplayText(const std::string& text) {
  QString shown = QString::fromStdString(text);
  shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  shown.replace(QChar(u'\r'), QChar(u'\n'));
  return shown;
}

}  // namespace tarve
