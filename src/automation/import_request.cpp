#include "automation/import_request.h"

#include "app/drawing_exchange.h"
#include "automation/case_names.h"

namespace ostrelon {
namespace {

template <class Value>
std::optional<Value> optionalMember(const AutomationSession& session, const Json& request, const char* key) {
  if (!request.contains(key) || request.at(key).is_null()) return std::nullopt;
  return requestMember<Value>(session, request, key);
}

DxfImportOptions optionsOf(const AutomationSession& session, const Json& request) {
  DxfImportOptions options;
  // Told not to convert, the numbers are feet.
  if (!optionalMember<bool>(session, request, "toFeet").value_or(true)) options.unit = kDxfFeet;
  if (const auto word = optionalMember<std::string>(session, request, "unit")) {
    options.unit = dxfUnitNamed(*word);
    if (!options.unit) throw ArgumentError("\"unit\": expected mm, cm, m, in or ft.");
  }
  options.layers = optionalMember<std::vector<std::string>>(session, request, "layers");
  options.toOrigin = optionalMember<bool>(session, request, "toOrigin").value_or(false);
  if (optionalMember<bool>(session, request, "salvage").value_or(false)) options.damage = DxfDamage::salvage;
  return options;
}

Json answerOf(const PreparedDxf& imported) {
  Json counts = Json::object();
  std::size_t sum = 0;
  for (const auto& [kind, count] : imported.counts) {
    counts[std::string(kind)] = count;
    sum += count;
  }
  Json layers = Json::array();
  for (const PreparedDxf::Layer& layer : imported.layers) {
    layers.push_back({{"name", layer.name},
                      {"objects", layer.objects},
                      {"isHidden", layer.isHidden},
                      {"isTaken", layer.isTaken}});
  }
  Json leftOut = Json::array();
  for (const auto& [why, count] : imported.drawing.leftOut) {
    leftOut.push_back({{"reason", toJson(why.first)}, {"kind", why.second}, {"count", count}});
  }
  return {{"entities", sum},
          {"counts", counts},
          {"unit", imported.unit.name},
          {"unitSource", toJson(imported.unitSource)},
          {"moved", toJson(imported.moved)},
          {"bounds", toJson(imported.bounds)},
          {"layers", layers},
          {"leftOut", leftOut},
          {"lostPlaces", imported.lostPlaces},
          {"losses", imported.losses}};
}

}  // namespace

Json importRequest(AutomationSession& session, const Json& request) {
  const DxfImportOptions options = optionsOf(session, request);
  return answerOf(importDrawing(
      session.workspace(), standardizedPath(requestMember<std::string>(session, request, "path")), options));
}

}  // namespace ostrelon
