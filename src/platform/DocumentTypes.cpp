#include "platform/DocumentTypes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QSaveFile>
#include <QStandardPaths>
#include <QString>
#include <QStringList>

namespace tarve {

namespace {

// A desktop tool that does not answer in this time is given up on: set-up must not hang.
constexpr int kToolTimeoutMs = 10000;

QString DataFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
}

QString XmlEscaped(const QString& text) { return text.toHtmlEscaped(); }

bool WriteAtomically(const QString& path, const QByteArray& bytes) {
  if (!QDir().mkpath(QFileInfo(path).absolutePath())) return false;
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly)) return false;
  if (file.write(bytes) != bytes.size()) {
    file.cancelWriting();
    return false;
  }
  return file.commit();
}

struct MimeEntry {
  QString type;
  QString body;  // everything between the opening and the closing tag
};

// The types already in the player's package, which we wrote ourselves: each association adds
// or replaces its own type and keeps the others.
QList<MimeEntry> ReadPackage(const QString& path) {
  QList<MimeEntry> entries;
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return entries;
  const QString text = QString::fromUtf8(file.read(1 << 20));
  const QRegularExpression entry_pattern(
      QStringLiteral("<mime-type type=\"([^\"]*)\">(.*?)</mime-type>"),
      QRegularExpression::DotMatchesEverythingOption);
  for (auto it = entry_pattern.globalMatch(text); it.hasNext();) {
    const QRegularExpressionMatch match = it.next();
    entries.append({match.captured(1), match.captured(2)});
  }
  return entries;
}

QByteArray PackageText(const QList<MimeEntry>& entries) {
  QString text = QStringLiteral(
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<mime-info xmlns=\"http://www.freedesktop.org/standards/shared-mime-info\">\n");
  for (const MimeEntry& entry : entries) {
    text += QStringLiteral("  <mime-type type=\"") + entry.type + QStringLiteral("\">") +
            entry.body + QStringLiteral("</mime-type>\n");
  }
  text += QStringLiteral("</mime-info>\n");
  return text.toUtf8();
}

// The entry has the name of the one installed with the program (data/), so that it takes the
// installed entry's place instead of listing Tarve twice, and says the same.
QByteArray DesktopEntryText(const QList<MimeEntry>& entries) {
  QString types;
  for (const MimeEntry& entry : entries) types += entry.type + QLatin1Char(';');
  return QStringLiteral(
             "[Desktop Entry]\n"
             "Type=Application\n"
             "Name=Tarve\n"
             "GenericName=Text adventure player\n"
             "Comment=Play GWL text adventures\n"
             "Exec=tarve %f\n"
             "Icon=io.github.tarve.Tarve\n"
             "Terminal=false\n"
             "Categories=Game;AdventureGame;\n"
             "Keywords=interactive fiction;text adventure;adventure;game;\n"
             "MimeType=")
             .toUtf8() +
         types.toUtf8() + "\n";
}

// Runs a desktop tool when it is installed; whatever it answers, set-up goes on.
void RunToolIfPresent(const QString& tool, const QString& folder) {
  const QString program = QStandardPaths::findExecutable(tool);
  if (program.isEmpty()) return;
  QProcess process;
  process.setStandardOutputFile(QProcess::nullDevice());
  process.setStandardErrorFile(QProcess::nullDevice());
  process.start(program, {folder});
  if (!process.waitForStarted(kToolTimeoutMs)) return;
  if (!process.waitForFinished(kToolTimeoutMs)) {
    process.kill();
    process.waitForFinished(kToolTimeoutMs);
  }
}

}  // namespace

std::string MimeTypeOfExtension(const std::string& extension) {
  const QString type = QString::fromStdString(extension).right(3).toLower();
  if (type == QLatin1String("gwl")) return "application/x-tarve-game";
  if (type == QLatin1String("cgw")) return "application/x-tarve-compiled-game";
  if (type == QLatin1String("tsg")) return "application/x-tarve-saved-game";
  return "application/x-tarve-" + type.toStdString();
}

bool AssociateFileType(const std::string& description, const std::string& extension) {
  const QString data = DataFolder();
  if (data.isEmpty()) return false;
  const QString mime_folder = data + QStringLiteral("/mime");
  const QString package = mime_folder + QStringLiteral("/packages/tarve.xml");
  const QString applications = data + QStringLiteral("/applications");

  const QString type = QString::fromStdString(MimeTypeOfExtension(extension));
  QString glob = QString::fromStdString(extension).toLower();
  if (!glob.startsWith(QLatin1Char('.'))) glob.prepend(QLatin1Char('.'));
  // Games are text that their authors edit: text editors are offered for them too.
  const QString parent = glob == QLatin1String(".gwl")
                             ? QStringLiteral("\n    <sub-class-of type=\"text/plain\"/>")
                             : QString();
  const QString body =
      QStringLiteral("\n    <comment>") + XmlEscaped(QString::fromStdString(description)) +
      QStringLiteral("</comment>") + parent + QStringLiteral("\n    <glob pattern=\"*") +
      XmlEscaped(glob) + QStringLiteral("\"/>\n  ");

  QList<MimeEntry> entries = ReadPackage(package);
  bool replaced = false;
  for (MimeEntry& entry : entries) {
    if (entry.type == type) {
      entry.body = body;
      replaced = true;
    }
  }
  if (!replaced) entries.append({type, body});

  bool ok = WriteAtomically(package, PackageText(entries));
  ok = WriteAtomically(applications + QStringLiteral("/tarve.desktop"),
                       DesktopEntryText(entries)) &&
       ok;
  RunToolIfPresent(QStringLiteral("update-mime-database"), mime_folder);
  RunToolIfPresent(QStringLiteral("update-desktop-database"), applications);
  return ok;
}

}  // namespace tarve
