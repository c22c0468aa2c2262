// Naming a window's controls: the object name that tests and tools find a control by, and the
// name a screen reader says, which is the control's caption without the "&" of its shortcut.
#pragma once

#include <QLatin1Char>
#include <QString>

namespace tarve {

template <typename Control>
Control* Named(Control* control, const char* name) {
  control->setObjectName(QString::fromLatin1(name));
  QString spoken = control->text();
  control->setAccessibleName(spoken.remove(QLatin1Char('&')));
  return control;
}

}  // namespace tarve
