#include "app/application.h"

namespace ostrelon {
namespace {

constexpr const char* kLastSessionEndedCleanly = "ostrel.lastSessionEndedCleanly";

}  // namespace

Application::Application(Host host, UserDefaults& defaults, ApplicationOptions options)
    : host_(host), defaults_(defaults), options_(options), sketch_(host) {}

void Application::mainViewAppeared() { defaults_.set(kLastSessionEndedCleanly, false); }

void Application::willTerminate() { defaults_.set(kLastSessionEndedCleanly, true); }

}  // namespace ostrelon
