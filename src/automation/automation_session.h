// What the operations of the automation interface act on, and how a request's arguments are read.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "app/application.h"
#include "automation/json_values.h"
#include "interaction/canvas_gestures.h"
#include "platform/dialogs.h"
#include "platform/scheduler.h"
#include "updates/served_update_client.h"

namespace ostrelon {

/// The parts of the running program.
struct AutomationSession {
  Application& application;
  VirtualScheduler& scheduler;
  QueuedDialogs& dialogs;
  CanvasGestures& gestures;
  ServedUpdateClient& updateClient;

  Workspace& workspace() const { return application.workspace(); }
  ReadContext readContext() const { return {workspace().sketch}; }
};

/// A member of a request by its type; an error names the member.
template <class T>
T requestMember(const AutomationSession& session, const Json& request, const char* key) {
  try {
    return Reader<T>::read(memberOf(request, key), session.readContext());
  } catch (const ArgumentError& error) {
    throw ArgumentError("\"" + std::string(key) + "\": " + error.what() + ".");
  }
}

// --- Operations called by name: {"op":"call","name":"zoomViewport","args":[1.25,[0,0]]}

/// What a call takes and gives, in words (value_names.h).
struct CallSignature {
  struct Argument {
    std::string type;
    /// May be null, and left out where it is among the last.
    bool isOptional = false;
  };
  std::vector<Argument> arguments;
  std::string result;
};

struct Call {
  std::function<Json(AutomationSession& session, const Json& arguments)> run;
  CallSignature (*signature)() = nullptr;
};
using CallTable = std::map<std::string, Call, std::less<>>;

/// All operations that `call` reaches, by the names that they have in the code.
const CallTable& callTable();

// Each adds the rows of one part of the program.
void addSketchCalls(CallTable& table);
void addEditCalls(CallTable& table);
void addChainCalls(CallTable& table);
void addGeometryCalls(CallTable& table);
void addInteractionCalls(CallTable& table);
void addDocumentCalls(CallTable& table);
void addUpdateCalls(CallTable& table);

// --- State

/// The observable fields of the workspace by the names of the protocol; all but the console lines unless
/// named.
Json stateOf(const Workspace& workspace, const std::optional<std::vector<std::string>>& names);
Json settingsOf(const AppSettings& settings);
Json updateOf(const AppUpdateManager& updates);

}  // namespace ostrelon
