// The player's settings file: the user's own settings kept with QSettings in INI format, one
// group per section. The desktop and the terminal player read and write their settings here.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "player/SettingsStore.h"

class QSettings;

namespace tarve {

class QtSettingsStore : public SettingsStore {
 public:
  // The user's settings: Tarve/Tarve.conf in the user's configuration folder
  // ($XDG_CONFIG_HOME, else ~/.config).
  QtSettingsStore();
  // The settings in `folder`/Tarve.conf instead (tarve-cli --settings, tests).
  explicit QtSettingsStore(const std::string& folder);
  ~QtSettingsStore() override;
  QtSettingsStore(const QtSettingsStore&) = delete;
  QtSettingsStore& operator=(const QtSettingsStore&) = delete;

  std::optional<std::string> Read(std::string_view section, std::string_view key) const override;
  void Write(std::string_view section, std::string_view key, std::string_view value) override;
  void Remove(std::string_view section, std::string_view key) override;
  // Writes the changes to the file, through a temporary file that replaces it, so a crash or a
  // full disk leaves the previous file whole.
  bool Flush() override;

  // The settings file's full path.
  std::string FilePath() const;

 private:
  std::unique_ptr<QSettings> settings_;
};

}  // namespace tarve
