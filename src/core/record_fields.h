// The members of a record with their names, listed once: what writes, reads, checks or compares all of them
// goes through the list. A record takes part by a function `fields()`:
//
//   static constexpr auto fields() {
//     return std::tuple(RecordField{"place", &RoomName::place}, RecordField{"name", &RoomName::name});
//   }
#pragma once

#include <array>
#include <string_view>
#include <tuple>
#include <type_traits>

namespace ostrelon {

template <class Record, class Value>
struct RecordField {
  std::string_view name;
  Value Record::*member;
};
template <class Record, class Value>
RecordField(const char*, Value Record::*) -> RecordField<Record, Value>;

template <class Record>
concept HasFields = requires {
  Record::fields();
};

/// Calls `visit(name, record.member…)` for each member, of one record or of several side by side.
template <class Visit, class First, class... Others>
void forEachField(Visit&& visit, First& first, Others&... others) {
  const auto visitOne = [&](const auto& field) {
    visit(field.name, first.*field.member, (others.*field.member)...);
  };
  std::apply([&](const auto&... field) { (visitOne(field), ...); }, std::remove_const_t<First>::fields());
}

/// An enumeration whose cases count up from zero and have names: `caseNamesOf` is found beside it.
template <class Enumeration>
concept HasNamedCases = requires(Enumeration value) {
  caseNamesOf(value);
};

}  // namespace ostrelon
