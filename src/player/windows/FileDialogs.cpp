#include "player/windows/FileDialogs.h"

#include <QFileDialog>
#include <QRegularExpression>
#include <QStringList>

namespace tarve {

QString DialogFilter(std::string_view filter) {
  const QStringList parts = QString::fromUtf8(filter.data(), static_cast<qsizetype>(filter.size()))
                                .split(QLatin1Char('|'));
  const QRegularExpression trailing_patterns(QStringLiteral("\\s*\\([^()]*\\)\\s*$"));
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    QString description = parts[i];
    description.remove(trailing_patterns);
    QStringList patterns = parts[i + 1].split(QLatin1Char(';'), Qt::SkipEmptyParts);
    for (QString& pattern : patterns) {
      pattern = pattern.trimmed();
      if (pattern == QLatin1String("*.*")) pattern = QStringLiteral("*");
    }
    filters << description + QStringLiteral(" (") + patterns.join(QLatin1Char(' ')) +
                   QLatin1Char(')');
  }
  return filters.join(QStringLiteral(";;"));
}

std::optional<std::string> ChooseFileWithDialog(QWidget* parent, const QString& caption,
                                                const QString& filter) {
  const QString path = QFileDialog::getOpenFileName(parent, caption, QString(), filter);
  if (path.isEmpty()) return std::nullopt;
  return path.toStdString();
}

}  // namespace tarve
