#include "platform/QtSettingsStore.h"

#include <QDir>
#include <QSettings>
#include <QStandardPaths>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace tarve {

namespace {

QString FromUtf8(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString KeyOf(std::string_view section, std::string_view key) {
  return FromUtf8(section) + QLatin1Char('/') + FromUtf8(key);
}

std::unique_ptr<QSettings> OpenSettings(const QString& file) {
  auto settings = std::make_unique<QSettings>(file, QSettings::IniFormat);
  // Only a save through a temporary file that then replaces the old file: a crash or a full
  // disk must never leave half a settings file behind.
  settings->setAtomicSyncRequired(true);
  settings->setFallbacksEnabled(false);
  return settings;
}

}  // namespace

QtSettingsStore::QtSettingsStore()
    : settings_(
          OpenSettings(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                       QStringLiteral("/Tarve/Tarve.conf"))) {}

QtSettingsStore::QtSettingsStore(const std::string& folder)
    : settings_(OpenSettings(QDir(QString::fromStdString(folder)).filePath("Tarve.conf"))) {}

QtSettingsStore::~QtSettingsStore() = default;

std::optional<std::string> QtSettingsStore::Read(std::string_view section,
                                                 std::string_view key) const {
  const QVariant value = settings_->value(KeyOf(section, key));
  if (!value.isValid()) return std::nullopt;
  // A value edited by hand with an unquoted comma reads back as a list in this file format;
  // the player takes it as the one text it was meant to be.
  if (value.typeId() == QMetaType::QStringList) {
    return value.toStringList().join(QStringLiteral(", ")).toStdString();
  }
  return value.toString().toStdString();
}

void QtSettingsStore::Write(std::string_view section, std::string_view key,
                            std::string_view value) {
  settings_->setValue(KeyOf(section, key), FromUtf8(value));
}

void QtSettingsStore::Remove(std::string_view section, std::string_view key) {
  settings_->remove(KeyOf(section, key));
}

bool QtSettingsStore::Flush() {
  settings_->sync();
  // A damaged file that was read as far as it made sense is still written over; only a file
  // that could not be written loses the changes.
  return settings_->status() != QSettings::AccessError;
}

std::string QtSettingsStore::FilePath() const { return settings_->fileName().toStdString(); }

}  // namespace tarve
