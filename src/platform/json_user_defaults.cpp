#include "platform/json_user_defaults.h"

#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <utility>

#include "platform/nul_byte.h"

namespace ostrelon {
namespace {

using nlohmann::json;

// No setting is nested as deep as this. What is would end the process: values are copied and written by
// recursion.
constexpr int kDeepestNesting = 64;

// The values of a settings file; absent when it is damaged.
std::optional<json> parsed(const std::string& bytes) {
  if (nulByteIn(bytes)) return std::nullopt;
  bool isTooDeep = false;
  const auto keepsShallow = [&](int depth, json::parse_event_t, const json&) {
    isTooDeep = isTooDeep || depth > kDeepestNesting;
    return !isTooDeep;
  };
  json values = json::parse(bytes, keepsShallow, false);
  if (isTooDeep || !values.is_object()) return std::nullopt;
  return values;
}

json jsonOf(const DefaultsValue& value) {
  return std::visit([](const auto& held) { return json(held); }, value);
}

std::optional<DefaultsValue> valueOf(const json& held) {
  switch (held.type()) {
    case json::value_t::boolean:
      return held.get<bool>();
    case json::value_t::number_integer:
      return held.get<std::int64_t>();
    case json::value_t::number_unsigned:
      // What is beyond 64 bits with a sign is no integer that a setting could mean.
      if (held.get<std::uint64_t>() > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
        return std::nullopt;
      }
      return held.get<std::int64_t>();
    case json::value_t::number_float:
      return held.get<double>();
    case json::value_t::string:
      return held.get<std::string>();
    case json::value_t::object: {
      DefaultsMap map;
      for (const auto& [key, member] : held.items()) {
        if (!member.is_string()) return std::nullopt;
        map.emplace(key, member.get<std::string>());
      }
      return map;
    }
    case json::value_t::null:
    case json::value_t::array:
    case json::value_t::binary:
    case json::value_t::discarded:
      break;
  }
  return std::nullopt;
}

}  // namespace

struct JsonUserDefaults::Contents {
  json values = json::object();
  json onDisk = json::object();  // what the file held when it was last read or written
  /// What this copy has changed and the file does not hold yet; absent for a removed key.
  std::map<std::string, std::optional<json>, std::less<>> changes;
};

JsonUserDefaults::JsonUserDefaults(FileSystem& files, FilePath path)
    : files_(files), path_(std::move(path)), contents_(std::make_unique<Contents>()) {
  read();
}

JsonUserDefaults::~JsonUserDefaults() = default;

std::optional<DefaultsValue> JsonUserDefaults::value(std::string_view key) const {
  const auto found = contents_->values.find(key);
  if (found == contents_->values.end()) return std::nullopt;
  return valueOf(*found);
}

void JsonUserDefaults::set(std::string_view key, DefaultsValue value) {
  change({{std::string(key), std::move(value)}});
}

void JsonUserDefaults::remove(std::string_view key) { change({{std::string(key), std::nullopt}}); }

void JsonUserDefaults::change(const std::vector<DefaultsChange>& changes) {
  for (const auto& [key, value] : changes) {
    if (value) {
      contents_->values[key] = jsonOf(*value);
      contents_->changes.insert_or_assign(key, contents_->values[key]);
    } else {
      contents_->values.erase(key);
      contents_->changes.insert_or_assign(key, std::nullopt);
    }
  }
  write();
}

std::vector<std::string> JsonUserDefaults::takeNotes() { return std::exchange(notes_, {}); }

// Takes the values from the file, when there is one.
void JsonUserDefaults::read() {
  contents_->onDisk = json::object();
  if (!files_.exists(path_)) return;
  std::string bytes;
  try {
    bytes = files_.readFile(path_);
    isUnreadable_ = false;
  } catch (const FileError& error) {
    if (!isUnreadable_) note(std::string("The settings could not be read. ") + error.what());
    isUnreadable_ = true;
    return;
  }
  if (auto values = parsed(bytes)) {
    contents_->onDisk = *values;
    contents_->values = std::move(*values);
  } else {
    setAside(bytes);
  }
}

void JsonUserDefaults::setAside(const std::string& bytes) {
  FilePath aside;
  int number = 0;
  do {
    ++number;
    aside = path_;
    aside.replace_filename(path_.stem().string() + "-damaged-" + std::to_string(number) +
                           path_.extension().string());
  } while (files_.isTaken(aside));
  try {
    files_.writeFile(aside, bytes);
    files_.removeFile(path_);
    note("The settings file was damaged. It has been set aside as " + quotedName(aside) +
         ", and the settings start afresh.");
  } catch (const FileError& error) {
    isUnreadable_ = true;
    note(std::string("The settings file is damaged and could not be set aside, so that settings last "
                     "only until Ostrelon quits. ") +
         error.what());
  }
}

// Puts this copy's changes over what the file holds by now.
void JsonUserDefaults::write() {
  try {
    files_.createFolders(path_.parent_path());
    const auto lock = files_.lock(path_.parent_path());
    read();
    bool changesFile = false;
    for (const auto& [key, changed] : contents_->changes) {
      const auto held = contents_->onDisk.find(key);
      const bool isHeld = held != contents_->onDisk.end();
      changesFile =
          changesFile || (changed ? !isHeld || held->type() != changed->type() || *held != *changed : isHeld);
      if (changed) {
        contents_->values[key] = *changed;
      } else {
        contents_->values.erase(key);
      }
    }
    if (isUnreadable_) return;
    if (changesFile) {
      files_.writeFile(path_, contents_->values.dump(2, ' ', false, json::error_handler_t::replace) + "\n");
      contents_->onDisk = contents_->values;
    }
    contents_->changes.clear();
    hasToldOfWriting_ = false;
  } catch (const FileError& error) {
    // Reported once, not with every setting; the changes wait for a write that succeeds.
    if (!hasToldOfWriting_) note(std::string("The settings could not be saved. ") + error.what());
    hasToldOfWriting_ = true;
  }
}

void JsonUserDefaults::note(std::string sentence) {
  notes_.push_back(std::move(sentence));
  if (noted_) noted_();
}

}  // namespace ostrelon
