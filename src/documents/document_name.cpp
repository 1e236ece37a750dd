#include "documents/document_name.h"

#include <nlohmann/json.hpp>
#include <utility>

namespace ostrelon {
namespace {

using nlohmann::json;

// Looks at the keys of the outermost object until one of them is the name's; each event says whether to go
// on.
class NameReader final : public nlohmann::json_sax<json> {
 public:
  std::optional<std::string> take() { return std::move(name_); }

  bool key(string_t& key) override {
    isName_ = depth_ == 1 && (key == "name" || key == "documentName");
    return true;
  }
  bool string(string_t& text) override {
    if (isName_) name_ = std::move(text);
    return !isName_;
  }
  bool start_object(std::size_t /*elements*/) override { return enter(); }
  bool start_array(std::size_t /*elements*/) override { return enter(); }
  bool end_object() override { return leave(); }
  bool end_array() override { return leave(); }
  bool null() override { return !isName_; }
  bool boolean(bool /*value*/) override { return !isName_; }
  bool number_integer(number_integer_t /*value*/) override { return !isName_; }
  bool number_unsigned(number_unsigned_t /*value*/) override { return !isName_; }
  bool number_float(number_float_t /*value*/, const string_t& /*text*/) override { return !isName_; }
  bool binary(binary_t& /*value*/) override { return false; }
  bool parse_error(std::size_t /*place*/, const std::string& /*token*/,
                   const json::exception& /*error*/) override {
    return false;
  }

 private:
  bool enter() {
    if (isName_) return false;
    ++depth_;
    return true;
  }
  bool leave() {
    --depth_;
    return true;
  }

  std::optional<std::string> name_;
  int depth_ = 0;
  bool isName_ = false;
};

}  // namespace

std::optional<std::string> documentNameIn(std::string_view bytes) {
  NameReader reader;
  json::sax_parse(bytes, &reader);
  return reader.take();
}

}  // namespace ostrelon
