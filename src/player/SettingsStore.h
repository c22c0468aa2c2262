// Where the player's settings are kept between runs: string values addressed by section and key.
// The engine and its tests see only this interface; the desktop and the terminal player keep
// the values in the user's settings file, the tests in memory.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tarve {

class SettingsStore {
 public:
  virtual ~SettingsStore() = default;

  // The value of `key` in `section`; nothing when the key is absent.
  virtual std::optional<std::string> Read(std::string_view section, std::string_view key) const = 0;
  virtual void Write(std::string_view section, std::string_view key, std::string_view value) = 0;
  virtual void Remove(std::string_view section, std::string_view key) = 0;
  // Makes the values written so far last: false when they could not be kept.
  virtual bool Flush() { return true; }
};

// Settings kept in memory only, for tests and for a player that must not touch the user's file.
class MemorySettingsStore : public SettingsStore {
 public:
  std::optional<std::string> Read(std::string_view section, std::string_view key) const override {
    auto it = values_.find({std::string(section), std::string(key)});
    if (it == values_.end()) return std::nullopt;
    return it->second;
  }
  void Write(std::string_view section, std::string_view key, std::string_view value) override {
    values_[{std::string(section), std::string(key)}] = std::string(value);
  }
  void Remove(std::string_view section, std::string_view key) override {
    values_.erase({std::string(section), std::string(key)});
  }
  std::size_t Size() const { return values_.size(); }

 private:
  std::map<std::pair<std::string, std::string>, std::string> values_;
};

}  // namespace tarve
