#include "automation/automation_host.h"

#include <istream>
#include <ostream>

#include "app/key_handling.h"
#include "app/menu.h"
#include "app/settings_notes.h"
#include "automation/automation_session.h"
#include "automation/import_request.h"
#include "automation/operation_list.h"
#include "build_information.h"
#include "documents/document_store.h"
#include "platform/disk_file_system.h"
#include "platform/json_user_defaults.h"
#include "platform/near_names.h"
#include "platform/unicode.h"
#include "updates/base64.h"
#include "updates/update_configuration.h"

namespace ostrelon {
namespace {

/// Some three years, seconds: a slip of the unit must not keep the timers running for hours.
constexpr double kLongestAdvance = 1e8;

SketchPoint viewPointOf(const AutomationSession& session, const Json& request) {
  return {requestMember<double>(session, request, "x"), requestMember<double>(session, request, "y")};
}

bool flag(const AutomationSession& session, const Json& request, const char* key, bool otherwise = false) {
  return request.contains(key) ? requestMember<bool>(session, request, key) : otherwise;
}

KeyEvent keyEventOf(const AutomationSession& session, const Json& request) {
  KeyEvent event;
  const auto key = requestMember<std::string>(session, request, "key");
  static const std::map<std::string, KeyName, std::less<>> names{{"escape", KeyName::escape},
                                                                 {"space", KeyName::space},
                                                                 {"delete", KeyName::deleteBackward},
                                                                 {"forwardDelete", KeyName::forwardDelete},
                                                                 {"return", KeyName::returnKey}};
  const auto named = names.find(key);
  if (named != names.end()) {
    event.key = named->second;
  } else if (characterCount(key) == 1) {
    event.characters = key;
    if (key == " ") event.key = KeyName::space;
  } else {
    throw ArgumentError(
        "\"key\": expected escape, space, delete, forwardDelete, return or a single character.");
  }
  if (request.contains("modifiers")) {
    for (const std::string& name : requestMember<std::vector<std::string>>(session, request, "modifiers")) {
      bool* held = name == "shift"     ? &event.modifiers.shift
                   : name == "control" ? &event.modifiers.control
                   : name == "option"  ? &event.modifiers.option
                   : name == "command" ? &event.modifiers.command
                                       : nullptr;
      if (held == nullptr) {
        throw ArgumentError("\"modifiers\": expected a list of shift, control, option and command.");
      }
      *held = true;
    }
  }
  event.consoleFocus = flag(session, request, "consoleFocus");
  event.textFocus = flag(session, request, "textFocus", event.consoleFocus);
  event.documentWindow = flag(session, request, "documentWindow", true);
  return event;
}

std::optional<std::string> optionalText(const AutomationSession& session, const Json& request,
                                        const char* key) {
  return request.contains(key) ? requestMember<std::optional<std::string>>(session, request, key)
                               : std::nullopt;
}

Json serve(AutomationSession& session, const Json& request) {
  std::optional<std::string> manifest;
  const Json& text = memberOf(request, "manifest");
  if (text.is_object() || text.is_array()) {
    manifest = jsonText(text);
  } else {
    manifest = optionalText(session, request, "manifest");
  }
  std::optional<std::string> installer;
  if (const auto encoded = optionalText(session, request, "installer")) {
    installer = decodeBase64(*encoded);
    if (!installer) throw ArgumentError("\"installer\": expected bytes in base64.");
  }
  session.updateClient.serve(std::move(manifest), std::move(installer));
  return nullptr;
}

template <class Table>
[[noreturn]] void refuseUnknown(const std::string& name, const Table& table) {
  std::vector<std::string_view> known;
  known.reserve(table.size());
  for (const auto& [knownName, operation] : table) known.emplace_back(knownName);
  throw ArgumentError("Unknown operation \"" + name + "\"." + didYouMean(name, known));
}

Json callByName(AutomationSession& session, const Json& request) {
  const auto name = requestMember<std::string>(session, request, "name");
  const Json& arguments = memberOf(request, "args");
  if (!arguments.is_null() && !arguments.is_array()) throw ArgumentError("\"args\": expected a list.");
  const auto found = callTable().find(name);
  if (found == callTable().end()) refuseUnknown(name, callTable());
  static const Json none = Json::array();
  return found->second.run(session, arguments.is_null() ? none : arguments);
}

Json closeWindow(AutomationSession& session) {
  // With no answer yet the window stays open.
  auto reply = std::make_shared<std::string>("refused");
  session.application.windowShouldClose(
      [reply](CloseQuestion::Reply answer) {
        *reply = answer == CloseQuestion::Reply::allowed ? "closed" : "refused";
      },
      [] {});
  return *reply;
}

using Operation = Json (*)(AutomationSession& session, const Json& request);

const std::map<std::string, Operation, std::less<>>& operations() {
  static const std::map<std::string, Operation, std::less<>> table{
      {"submit",
       [](AutomationSession& session, const Json& request) -> Json {
         Console& console = session.workspace().console;
         console.setInput(requestMember<std::string>(session, request, "text"));
         console.submit();
         return nullptr;
       }},
      {"state",
       [](AutomationSession& session, const Json& request) {
         using Names = std::optional<std::vector<std::string>>;
         return stateOf(session.workspace(), request.contains("fields")
                                                 ? requestMember<Names>(session, request, "fields")
                                                 : Names());
       }},
      {"settings",
       [](AutomationSession& session, const Json&) { return settingsOf(session.application.settings()); }},
      {"update",
       [](AutomationSession& session, const Json&) { return updateOf(session.application.updates()); }},
      {"call", callByName},
      {"operations", [](AutomationSession&, const Json&) { return operationList(); }},
      {"canvas.resize",
       [](AutomationSession& session, const Json& request) -> Json {
         session.workspace().board.resizeCanvas({requestMember<double>(session, request, "width"),
                                                 requestMember<double>(session, request, "height")});
         return nullptr;
       }},
      {"canvas.press",
       [](AutomationSession& session, const Json& request) -> Json {
         session.gestures.press(viewPointOf(session, request));
         return nullptr;
       }},
      {"canvas.drag",
       [](AutomationSession& session, const Json& request) -> Json {
         session.gestures.drag(viewPointOf(session, request));
         return nullptr;
       }},
      {"canvas.release",
       [](AutomationSession& session, const Json& request) -> Json {
         const SketchPoint point = viewPointOf(session, request);
         session.gestures.release(point, flag(session, request, "shift"));
         return nullptr;
       }},
      {"canvas.doubleClick",
       [](AutomationSession& session, const Json&) -> Json {
         session.gestures.doubleClick();
         return nullptr;
       }},
      {"canvas.hover",
       [](AutomationSession& session, const Json& request) -> Json {
         session.gestures.hover(viewPointOf(session, request));
         return nullptr;
       }},
      {"canvas.leave",
       [](AutomationSession& session, const Json&) -> Json {
         session.gestures.leave();
         return nullptr;
       }},
      {"canvas.contextMenu",
       [](AutomationSession& session, const Json& request) -> Json {
         const auto menu = session.gestures.contextMenu(viewPointOf(session, request));
         if (!menu) return nullptr;
         return toJson(contextMenuTitles(*menu));
       }},
      {"canvas.scroll",
       [](AutomationSession& session, const Json& request) -> Json {
         const auto dx = requestMember<double>(session, request, "dx");
         session.gestures.scroll(dx, requestMember<double>(session, request, "dy"));
         return nullptr;
       }},
      {"canvas.magnify",
       [](AutomationSession& session, const Json& request) -> Json {
         const SketchPoint point = viewPointOf(session, request);
         session.gestures.magnify(point, requestMember<double>(session, request, "magnification"));
         return nullptr;
       }},
      {"key",
       [](AutomationSession& session, const Json& request) -> Json {
         const KeyEvent event = keyEventOf(session, request);
         const KeyOutcome outcome = handleKey(event, session.application);
         handleKeyReleased(event, session.application);
         return outcome == KeyOutcome::consumed ? "consumed" : "passed";
       }},
      {"answer",
       [](AutomationSession& session, const Json& request) -> Json {
         if (!request.contains("value")) throw ArgumentError("\"value\": expected a text or null.");
         session.dialogs.queue(requestMember<std::optional<std::string>>(session, request, "value"));
         return nullptr;
       }},
      {"window.close", [](AutomationSession& session, const Json&) { return closeWindow(session); }},
      {"update.serve", serve},
      {"export",
       [](AutomationSession& session, const Json& request) -> Json {
         ExportOptions exportOptions;
         const Json& told = memberOf(request, "options");
         if (!told.is_null() && !told.is_object()) throw ArgumentError("\"options\": expected an object.");
         for (const auto& [name, value] : told.items()) {
           setExportOption(exportOptions, name,
                           value.is_string() ? value.get<std::string>() : jsonText(value));
         }
         const std::string leftOut = exportDrawing(
             session.workspace(), standardizedPath(requestMember<std::string>(session, request, "path")),
             exportOptions, session.application.makePicture());
         if (!leftOut.empty()) session.workspace().messages.appendSystem(leftOut);
         return nullptr;
       }},
      {"import", importRequest},
      {"menu",
       [](AutomationSession& session, const Json& request) -> Json {
         const auto refusal =
             runMenuCommand(session.application, requestMember<std::string>(session, request, "title"));
         if (refusal) throw ArgumentError(*refusal);
         return nullptr;
       }},
      {"time.advance",
       [](AutomationSession& session, const Json& request) -> Json {
         const auto seconds = requestMember<double>(session, request, "seconds");
         if (!(seconds >= 0) || seconds > kLongestAdvance) {
           throw ArgumentError("\"seconds\": expected a number from 0 to 1e8.");
         }
         session.scheduler.advance(Seconds(seconds));
         return nullptr;
       }},
  };
  return table;
}

}  // namespace

const CallTable& callTable() {
  static const CallTable table = [] {
    CallTable rows;
    addSketchCalls(rows);
    addEditCalls(rows);
    addChainCalls(rows);
    addGeometryCalls(rows);
    addInteractionCalls(rows);
    addDocumentCalls(rows);
    addUpdateCalls(rows);
    return rows;
  }();
  return table;
}

class AutomationHost::Program {
 public:
  explicit Program(const AutomationOptions& options)
      : scheduler_(options.clock),
        files_(options.files != nullptr ? *options.files : disk_),
        defaults_(files_, options.paths.settingsFile),
        updateClient_(scheduler_, options.paths.temporaryFolder),
        application_({{scheduler_, dialogs_, files_},
                      defaults_,
                      updateClient_,
                      [](const FilePath&) { return true; },
                      options.makePicture},
                     {options.paths.documentsFolder,
                      updateConfiguration(kBuildVersion, kBuildNumber, options.updateFeed, options.updateKey),
                      options.isUITesting, false, false, options.paths.stateFolder}),
        gestures_(application_.workspace().board),
        session_{application_, scheduler_, dialogs_, gestures_, updateClient_} {
    application_.mainViewAppeared();
    tellSettingsNotes(defaults_, application_.workspace());
  }

  Json reply(std::string_view line) {
    const std::size_t linesBefore = messages().lines->size();
    Json reply = Json::object();
    std::optional<Json> id;
    try {
      std::string error;
      const auto request = parseJson(line, error);
      if (!request) throw ArgumentError(error);
      if (!request->is_object()) throw ArgumentError("The request is not an object.");
      if (request->contains("id")) id = (*request)["id"];
      const auto op = requestMember<std::string>(session_, *request, "op");
      const auto operation = operations().find(op);
      if (operation == operations().end()) refuseUnknown(op, operations());
      Json result = operation->second(session_, *request);
      reply["ok"] = true;
      reply["result"] = std::move(result);
    } catch (const std::exception& error) {
      reply = {{"ok", false}, {"error", error.what()}};
    }
    tellSettingsNotes(defaults_, application_.workspace());
    const auto& lines = *messages().lines;
    Json console = Json::array();
    for (std::size_t i = linesBefore; i < lines.size(); ++i) {
      console.push_back(
          {{"text", lines[i].text}, {"isError", lines[i].isError}, {"isSystem", lines[i].isSystem}});
    }
    reply["console"] = std::move(console);
    if (id) reply["id"] = std::move(*id);
    return reply;
  }

  void terminate() { application_.willTerminate(); }

 private:
  Messages& messages() { return application_.workspace().messages; }

  VirtualScheduler scheduler_;
  QueuedDialogs dialogs_;
  DiskFileSystem disk_;
  FileSystem& files_;
  JsonUserDefaults defaults_;
  ServedUpdateClient updateClient_;
  Application application_;
  CanvasGestures gestures_;
  AutomationSession session_;
};

AutomationHost::AutomationHost(const AutomationOptions& options)
    : program_(std::make_unique<Program>(options)) {}

AutomationHost::~AutomationHost() = default;

std::string AutomationHost::answer(std::string_view line) { return jsonText(program_->reply(line)); }

void AutomationHost::terminate() { program_->terminate(); }

int runAutomation(const AutomationOptions& options, std::istream& input, std::ostream& output) {
  AutomationHost host(options);
  for (std::string line; std::getline(input, line);) output << host.answer(line) << std::endl;
  host.terminate();
  return 0;
}

}  // namespace ostrelon
