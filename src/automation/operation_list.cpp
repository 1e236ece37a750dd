#include "automation/operation_list.h"

#include <vector>

#include "automation/automation_session.h"
#include "platform/unicode.h"

namespace ostrelon {

Json operationList() {
  Json list = Json::array();
  for (const auto& [name, call] : callTable()) {
    const OperationText* text = operationText(name);
    const CallSignature signature = call.signature();
    const std::vector<std::string> names =
        splitAtWhiteSpace(text == nullptr ? std::string_view() : text->arguments);
    // Only the last arguments can be left out; one before them is given as null.
    Json arguments = Json::array();
    bool isLast = true;
    for (std::size_t i = signature.arguments.size(); i-- > 0;) {
      const auto& [type, isOptional] = signature.arguments[i];
      isLast = isLast && isOptional;
      Json argument;
      argument["name"] = i < names.size() ? names[i] : "";
      argument["type"] = type;
      argument["optional"] = isLast;
      arguments.insert(arguments.begin(), std::move(argument));
    }
    const bool isTold = text != nullptr && !text->result.empty();
    list.push_back({{"name", name},
                    {"arguments", std::move(arguments)},
                    {"result", isTold ? std::string(text->result) : signature.result},
                    {"sentence", text == nullptr ? "" : std::string(text->sentence)}});
  }
  return list;
}

std::string operationTable() {
  std::string table = "| Name | Arguments | Result | What it does |\n|---|---|---|---|\n";
  for (const Json& operation : operationList()) {
    table += "| `" + operation["name"].get<std::string>() + "` | ";
    std::string parting;
    for (const Json& argument : operation["arguments"]) {
      table += parting + "`" + argument["name"].get<std::string>() +
               "`: " + argument["type"].get<std::string>() +
               (argument["optional"] == true ? ", optional" : "");
      parting = "; ";
    }
    table += " | " + operation["result"].get<std::string>() + " | " +
             operation["sentence"].get<std::string>() + " |\n";
  }
  return table;
}

}  // namespace ostrelon
