// The per-user store of preferences: values under keys, each read by its type. A key that holds
// another type counts as missing.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/date.h"

namespace ostrelon {

using DefaultsMap = std::map<std::string, std::string>;
using DefaultsValue = std::variant<bool, std::int64_t, double, std::string, DefaultsMap>;

/// A key's new value, or absent to remove the key.
using DefaultsChange = std::pair<std::string, std::optional<DefaultsValue>>;

class UserDefaults {
 public:
  UserDefaults() = default;
  UserDefaults(const UserDefaults&) = delete;
  UserDefaults& operator=(const UserDefaults&) = delete;
  virtual ~UserDefaults() = default;

  /// The value under the key, whatever its type.
  virtual std::optional<DefaultsValue> value(std::string_view key) const = 0;
  virtual void set(std::string_view key, DefaultsValue value) = 0;
  virtual void remove(std::string_view key) = 0;
  /// Several keys in one write.
  virtual void change(const std::vector<DefaultsChange>& changes) {
    for (const auto& [key, value] : changes) {
      if (value) {
        set(key, *value);
      } else {
        remove(key);
      }
    }
  }

  bool has(std::string_view key) const { return value(key).has_value(); }
  std::optional<bool> boolean(std::string_view key) const { return typed<bool>(key); }
  std::optional<std::int64_t> integer(std::string_view key) const { return typed<std::int64_t>(key); }
  std::optional<std::string> text(std::string_view key) const { return typed<std::string>(key); }
  std::optional<DefaultsMap> map(std::string_view key) const { return typed<DefaultsMap>(key); }
  /// Dates are stored as seconds since 1970.
  std::optional<Date> date(std::string_view key) const {
    if (const auto seconds = typed<double>(key)) return dateFromSeconds(*seconds);
    if (const auto whole = typed<std::int64_t>(key)) {
      return dateFromSeconds(static_cast<double>(*whole));
    }
    return std::nullopt;
  }
  void setDate(std::string_view key, Date date) { set(key, secondsSince1970(date)); }

 private:
  template <class T>
  std::optional<T> typed(std::string_view key) const {
    const auto found = value(key);
    if (!found || !std::holds_alternative<T>(*found)) return std::nullopt;
    return std::get<T>(*found);
  }
};

/// A store that lives in memory only: for tests, and for runs that must leave no trace.
class MemoryUserDefaults final : public UserDefaults {
 public:
  std::optional<DefaultsValue> value(std::string_view key) const override {
    const auto found = values_.find(std::string(key));
    if (found == values_.end()) return std::nullopt;
    return found->second;
  }
  void set(std::string_view key, DefaultsValue value) override {
    values_.insert_or_assign(std::string(key), std::move(value));
  }
  void remove(std::string_view key) override { values_.erase(std::string(key)); }

 private:
  std::map<std::string, DefaultsValue> values_;
};

}  // namespace ostrelon
