// Reading typed values out of JSON, for the document reader: a thin layer over simdjson's On-Demand
// interface whose failures are sentences that say what was expected, and where.
//
// On-Demand is a cursor: values are taken in the order of the text, once each. What the reader has no use for
// is walked all the same (`pass`), so that a file is either valid as a whole or refused.
#pragma once

#include <simdjson.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "documents/sketch_document_io.h"
#include "platform/uuid.h"

namespace ostrelon {

/// A place in the file, as a chain from the value up to the root; made into text only when needed.
struct JsonPlace {
  const JsonPlace* parent = nullptr;
  std::string_view key;
  std::optional<std::size_t> index;

  JsonPlace under(std::string_view name) const { return {this, name, std::nullopt}; }
  JsonPlace at(std::size_t position) const { return {this, {}, position}; }
  /// "ws.items[0].t"; empty for the root.
  std::string text() const;
};

class JsonReading {
 public:
  using Value = simdjson::ondemand::value;

  /// `bytes` must outlive the object. Throws when they are not JSON in UTF-8 with one object around it.
  explicit JsonReading(std::string& bytes);
  JsonReading(const JsonReading&) = delete;
  JsonReading& operator=(const JsonReading&) = delete;

  /// Back to the start, for another pass over the root's fields.
  simdjson::ondemand::object root();
  /// To be called when the root object has been read: nothing may follow it.
  void expectEnd();

  double number(Value& value, const JsonPlace& place) {
    double result = 0;
    if (value.get_double().get(result) != simdjson::SUCCESS) failNumber(value, place);
    return result;
  }
  /// The nearest 32-bit value, widened.
  double number32(Value& value, const JsonPlace& place);
  /// An integer, or a number without a fraction, within 64 bits.
  std::int64_t integer(Value& value, const JsonPlace& place);
  std::optional<std::int64_t> optionalInteger(Value& value, const JsonPlace& place);
  std::string text(Value& value, const JsonPlace& place);
  bool boolean(Value& value, const JsonPlace& place);
  UUID uuid(Value& value, const JsonPlace& place);
  /// A text of one letter, or its whole content in `other` when it is none.
  char letter(Value& value, const JsonPlace& place, std::string& other);
  bool isNull(Value& value);
  simdjson::ondemand::array array(Value& value, const JsonPlace& place);
  simdjson::ondemand::object object(Value& value, const JsonPlace& place);
  /// Walks a value that is not wanted, and checks it.
  void pass(Value& value, const JsonPlace& place, int depth = 0);

  /// Calls `each(key, value)` for every field in order. `each` must read or `pass` the value.
  template <class Each>
  void forEachField(simdjson::ondemand::object fields, Each&& each) {
    for (auto field : fields) {
      std::string_view key;
      Value value;
      if (field.unescaped_key().get(key) != simdjson::SUCCESS) failHere();
      if (field.value().get(value) != simdjson::SUCCESS) failHere();
      each(key, value);
    }
  }

  /// The elements of an array, one at a time.
  class Elements {
   public:
    Elements(JsonReading& reading, simdjson::ondemand::array array)
        : reading_(reading), next_(array.begin().value()), end_(array.end().value()) {}
    /// The next element; false at the end.
    bool next(Value& value) {
      if (isStarted_) ++next_;
      isStarted_ = true;
      if (!(next_ != end_)) return false;
      if ((*next_).get(value) != simdjson::SUCCESS) reading_.failHere();
      return true;
    }

   private:
    JsonReading& reading_;
    simdjson::ondemand::array_iterator next_;
    simdjson::ondemand::array_iterator end_;
    bool isStarted_ = false;
  };

  /// Where the text of a value that has not been read yet begins.
  static const char* start(Value& value) { return value.raw_json_token().data(); }
  /// Where the next token begins.
  const char* here();
  /// The number of bytes from one place of the text to its end.
  std::size_t bytesFrom(const char* place) const { return static_cast<std::size_t>(end() - place); }

  /// The file is JSON, but not what is expected.
  [[noreturn]] static void fail(const JsonPlace& place, std::string_view what);
  [[noreturn]] static void failMissing(const JsonPlace& place, std::string_view key);
  /// The file is not JSON from the cursor on.
  [[noreturn]] void failHere();

 private:
  const char* end() const { return bytes_.data() + bytes_.size(); }
  [[noreturn]] void failAt(const char* place);
  [[noreturn]] void failStart(simdjson::error_code error);
  [[noreturn]] void failNumber(Value& value, const JsonPlace& place);
  /// The value is of another type than `expected`, or no value at all.
  [[noreturn]] void failType(Value& value, const JsonPlace& place, std::string_view expected);

  std::string& bytes_;
  simdjson::ondemand::parser parser_;
  simdjson::ondemand::document document_;
};

}  // namespace ostrelon
