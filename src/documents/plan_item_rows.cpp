#include "documents/plan_item_rows.h"

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <utility>
#include <vector>

#include "documents/number_text.h"

namespace ostrelon {
namespace {

using Value = JsonReading::Value;

std::string_view keyOf(SharedList<Opening> Plan::*) { return "openings"; }
std::string_view keyOf(SharedList<RoomName> Plan::*) { return "rooms"; }
std::string_view keyOf(SharedList<RoomDivider> Plan::*) { return "dividers"; }
std::string_view keyOf(SharedList<Dimension> Plan::*) { return "dimensions"; }
std::string_view keyOf(SharedList<Note> Plan::*) { return "notes"; }

// --- Reading

// One of these letters, as its position among them.
std::size_t letterAmong(JsonReading& reading, Value& value, const JsonPlace& place, std::string_view letters,
                        std::string_view what) {
  std::string other;
  const char letter = reading.letter(value, place, other);
  const std::size_t found = letter == '\0' ? std::string_view::npos : letters.find(letter);
  if (found == std::string_view::npos) {
    throw DocumentFormatError("Unknown " + std::string(what) + ": " +
                              (letter == '\0' ? other : std::string(1, letter)));
  }
  return found;
}

// A row, element by element.
class Row {
 public:
  Row(JsonReading& reading, Value& row, const JsonPlace& place)
      : reading_(reading), place_(place), elements_(reading, reading.array(row, place)) {
    advance();
  }

  bool isAtEnd() const { return !hasElement_; }
  /// Reads the element by `read(value, place)` and goes on to the next.
  template <class Read>
  auto next(Read read) {
    if (!hasElement_) JsonReading::fail(place_, "the row is too short");
    auto result = read(element_, place_.at(position_++));
    advance();
    return result;
  }
  double number() {
    return next([&](Value& value, const JsonPlace& place) { return reading_.number(value, place); });
  }
  UUID uuid() {
    return next([&](Value& value, const JsonPlace& place) { return reading_.uuid(value, place); });
  }
  void passRest() {
    while (hasElement_) {
      next([&](Value& value, const JsonPlace& place) {
        reading_.pass(value, place);
        return 0;
      });
    }
  }

 private:
  // A row must not be asked for more once it has ended.
  void advance() { hasElement_ = elements_.next(element_); }

  JsonReading& reading_;
  const JsonPlace& place_;
  JsonReading::Elements elements_;
  Value element_;
  std::size_t position_ = 0;
  bool hasElement_ = false;
};

template <HasNamedCases Enumeration>
Enumeration caseNamed(const std::string& name, const JsonPlace& place) {
  const auto names = caseNamesOf(Enumeration());
  const auto found = std::find(names.begin(), names.end(), name);
  if (found == names.end()) JsonReading::fail(place, "unknown name: " + name);
  return static_cast<Enumeration>(found - names.begin());
}

template <HasFields Record>
void readRow(JsonReading& reading, Value& value, const JsonPlace& place, Record& record);

// A member that is one element of its row, or the value of a key.
void readValue(JsonReading& reading, Value& value, const JsonPlace& place, double& member) {
  member = reading.number(value, place);
}
void readValue(JsonReading& reading, Value& value, const JsonPlace& place, UUID& member) {
  member = reading.uuid(value, place);
}
void readValue(JsonReading& reading, Value& value, const JsonPlace& place, bool& member) {
  member = reading.boolean(value, place);
}
void readValue(JsonReading& reading, Value& value, const JsonPlace& place, std::string& member) {
  member = reading.text(value, place);
}
void readValue(JsonReading& reading, Value& value, const JsonPlace& place, std::uint32_t& member) {
  const std::int64_t whole = reading.integer(value, place);
  if (whole < 0 || whole > UINT32_MAX) JsonReading::fail(place, "expected a small whole number");
  member = static_cast<std::uint32_t>(whole);
}
void readValue(JsonReading& reading, Value& value, const JsonPlace& place, SketchPoint& member) {
  Row row(reading, value, place);
  member.x = row.number();
  member.y = row.number();
  row.passRest();
}
template <HasNamedCases Enumeration>
void readValue(JsonReading& reading, Value& value, const JsonPlace& place, Enumeration& member) {
  member = caseNamed<Enumeration>(reading.text(value, place), place);
}
template <class T>
void readValue(JsonReading& reading, Value& value, const JsonPlace& place, std::optional<T>& member) {
  if (!reading.isNull(value)) readValue(reading, value, place, member.emplace());
}
template <HasFields Record>
void readValue(JsonReading& reading, Value& value, const JsonPlace& place, Record& member) {
  readRow(reading, value, place, member);
}

// What every row has; what else is missing at its end is as in an empty record.
template <class T>
bool isRequired(std::string_view name) {
  return std::is_same_v<T, SketchPoint> || HasFields<T> || name == "id";
}

template <HasFields Record>
void readRow(JsonReading& reading, Value& value, const JsonPlace& place, Record& record) {
  Row row(reading, value, place);
  forEachField(
      [&]<class T>(std::string_view name, T& member) {
        if (row.isAtEnd() && !isRequired<T>(name)) return;
        if constexpr (std::is_same_v<T, SketchPoint>) {
          member.x = row.number();
          member.y = row.number();
        } else {
          row.next([&](Value& element, const JsonPlace& here) {
            readValue(reading, element, here, member);
            return 0;
          });
        }
      },
      record);
  row.passRest();
}

void readRow(JsonReading& reading, Value& value, const JsonPlace& place, Opening& opening) {
  Row row(reading, value, place);
  const auto letter = [&](std::string_view letters, std::string_view what) {
    return row.next([&](Value& element, const JsonPlace& here) {
      return letterAmong(reading, element, here, letters, what);
    });
  };
  opening.kind = static_cast<OpeningKind>(letter("DWO", "kind of opening"));
  opening.id = row.uuid();
  opening.wallID = row.uuid();
  opening.distance = row.number();
  opening.width = row.number();
  if (opening.kind == OpeningKind::door && !row.isAtEnd()) {
    opening.hinge = static_cast<DoorHinge>(letter("LR", "hinge"));
    opening.swing = static_cast<DoorSwing>(letter("IO", "swing"));
  }
  row.passRest();
}

// --- Writing

std::string valueText(double value) { return number64Text(value); }
std::string valueText(const UUID& value) { return "\"" + value.text() + "\""; }
std::string valueText(bool value) { return value ? "true" : "false"; }
std::string valueText(const std::string& value) { return quotedText(value); }
std::string valueText(std::uint32_t value) { return std::to_string(value); }
std::string valueText(SketchPoint value) {
  return "[" + number64Text(value.x) + "," + number64Text(value.y) + "]";
}
template <HasNamedCases Enumeration>
std::string valueText(Enumeration value) {
  return "\"" + std::string(caseNamesOf(value)[static_cast<std::size_t>(value)]) + "\"";
}
template <class T>
std::string valueText(const std::optional<T>& value) {
  return value ? valueText(*value) : "null";
}

template <HasFields Record>
std::string valueText(const Record& record) {
  JoinedJson row;
  static const Record kEmpty;
  JoinedJson unsure;  // what is left out where nothing else follows
  forEachField(
      [&]<class T>(std::string_view name, const T& member, const T& usual) {
        if constexpr (std::is_same_v<T, SketchPoint>) {
          unsure.add(number64Text(member.x) + "," + number64Text(member.y));
        } else {
          unsure.add(valueText(member));
        }
        if (member == usual && !isRequired<T>(name)) return;
        row.add(std::exchange(unsure, {}).inner());
      },
      record, kEmpty);
  return row.in('[', ']');
}

std::string valueText(const Opening& opening) {
  constexpr std::string_view kinds = "DWO";
  std::string text = "[\"";
  text += kinds[static_cast<std::size_t>(opening.kind)];
  text += "\",\"" + opening.id.text() + "\",\"" + opening.wallID.text() + "\"," +
          number64Text(opening.distance) + "," + number64Text(opening.width);
  const bool isUsual = opening.hinge == DoorHinge::left && opening.swing == DoorSwing::in;
  if (opening.kind == OpeningKind::door && !isUsual) {
    text += opening.hinge == DoorHinge::left ? ",\"L\"" : ",\"R\"";
    text += opening.swing == DoorSwing::in ? ",\"I\"" : ",\"O\"";
  }
  return text + "]";
}

// --- Whether there is a text for all numbers

template <class T>
bool isWritableValue(const T&) {
  return true;
}
bool isWritableValue(double value) { return std::isfinite(value); }
bool isWritableValue(SketchPoint value) { return isFinite(value); }
bool isWritableValue(const Opening& opening) {
  return std::isfinite(opening.distance) && std::isfinite(opening.width);
}
template <class T>
bool isWritableValue(const std::optional<T>& value) {
  return !value || isWritableValue(*value);
}
template <HasFields Record>
bool isWritableValue(const Record& record) {
  bool isWritable = true;
  forEachField(
      [&](std::string_view, const auto& member) { isWritable = isWritable && isWritableValue(member); },
      record);
  return isWritable;
}

}  // namespace

bool readPlanItems(JsonReading& reading, std::string_view key, Value& value, const JsonPlace& place,
                   Plan& plan) {
  bool isKnown = false;
  forEachPlanList([&]<class Item>(SharedList<Item> Plan::*list) {
    if (key != keyOf(list)) return;
    isKnown = true;
    std::vector<Item> items;
    JsonReading::Elements rows(reading, reading.array(value, place));
    Value row;
    while (rows.next(row)) {
      const JsonPlace here = place.at(items.size());
      readRow(reading, row, here, items.emplace_back());
    }
    plan.*list = std::move(items);
  });
  return isKnown;
}

void writePlanItems(const Plan& plan, const std::function<void(std::string_view, const std::string&)>& put) {
  forEachPlanList([&](auto list) {
    JoinedJson rows;
    for (const auto& item : plan.*list) rows.add(valueText(item));
    if (!rows.empty()) put(keyOf(list), rows.in('[', ']'));
  });
}

bool arePlanItemsWritable(const Plan& plan) {
  bool areWritable = true;
  forEachPlanList([&](auto list) {
    for (const auto& item : plan.*list) areWritable = areWritable && isWritableValue(item);
  });
  return areWritable;
}

PlanSheet readPlanSheet(JsonReading& reading, Value& value, const JsonPlace& place) {
  PlanSheet sheet;
  reading.forEachField(reading.object(value, place), [&](std::string_view key, Value& field) {
    const JsonPlace here = place.under(key);
    bool isKnown = false;
    forEachField(
        [&](std::string_view name, auto& member) {
          if (name != key) return;
          isKnown = true;
          readValue(reading, field, here, member);
        },
        sheet);
    if (!isKnown) reading.pass(field, here);
  });
  return sheet;
}

std::string planSheetText(const PlanSheet& sheet) {
  static const PlanSheet kEmpty;
  JoinedJson members;
  forEachField(
      [&](std::string_view name, const auto& member, const auto& usual) {
        if (!(member == usual)) members.add(quotedText(std::string(name)) + ":" + valueText(member));
      },
      sheet, kEmpty);
  return members.in('{', '}');
}

bool isWritable(const PlanSheet& sheet) { return isWritableValue(sheet); }

}  // namespace ostrelon
