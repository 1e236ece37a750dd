// Binding operations for `call`: the arguments are converted by their C++ types, so that a row of the
// table is one line.
//
//   table["zoomToFit"] = sketchCall(&SketchViewModel::zoomToFit);
//   table["gridStep"] = functionCall(gridStep);
//   table["menuTitle"] = functionCall([](AutomationSession& session, int row) { … });
//
// Trailing optional arguments may be left out. A parameter of the type `AutomationSession&` is the
// session itself and no argument.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "automation/automation_session.h"

namespace ostrelon {

namespace binding {

// How an argument is held while the operation runs.
template <class T>
struct Held {
  using Type = std::remove_cvref_t<T>;
};
template <>
struct Held<std::string_view> {
  using Type = std::string;
};
template <>
struct Held<const EntitySource&> {
  using Type = EntityList;
};

template <class T>
struct IsOptional : std::false_type {};
template <class T>
struct IsOptional<std::optional<T>> : std::true_type {};

template <class T>
T readArgument(AutomationSession& session, const Json& arguments, std::size_t position) {
  static const Json missing;
  const bool isThere = position < arguments.size();
  if (!isThere && !IsOptional<T>::value) {
    throw ArgumentError("Argument " + std::to_string(position + 1) + " is missing.");
  }
  try {
    return Reader<T>::read(isThere ? arguments[position] : missing, session.readContext());
  } catch (const ArgumentError& error) {
    throw ArgumentError("Argument " + std::to_string(position + 1) + ": " + error.what() + ".");
  }
}

// Reads the arguments in order, then calls with them.
template <class... Parameters, class Function, std::size_t... Positions>
Json callWith(AutomationSession& session, const Json& arguments, const Function& function,
              std::index_sequence<Positions...>) {
  if (arguments.size() > sizeof...(Parameters)) {
    throw ArgumentError("Too many arguments: " + std::to_string(arguments.size()) + " where at most " +
                        std::to_string(sizeof...(Parameters)) + " are expected.");
  }
  std::tuple<typename Held<Parameters>::Type...> held{
      readArgument<typename Held<Parameters>::Type>(session, arguments, Positions)...};
  using Result =
      decltype(function(static_cast<typename Held<Parameters>::Type&>(std::get<Positions>(held))...));
  if constexpr (std::is_void_v<Result>) {
    function(static_cast<typename Held<Parameters>::Type&>(std::get<Positions>(held))...);
    return nullptr;
  } else {
    return toJson(function(static_cast<typename Held<Parameters>::Type&>(std::get<Positions>(held))...));
  }
}

template <class Function, class Result, class... Parameters>
Call boundLambda(Function function, Result (Function::*)(AutomationSession&, Parameters...) const) {
  return [function](AutomationSession& session, const Json& arguments) {
    return callWith<Parameters...>(
        session, arguments, [&](auto&... values) { return function(session, values...); },
        std::index_sequence_for<Parameters...>());
  };
}

}  // namespace binding

template <class Result, class... Parameters>
Call sketchCall(Result (SketchViewModel::*member)(Parameters...)) {
  return [member](AutomationSession& session, const Json& arguments) {
    return binding::callWith<Parameters...>(
        session, arguments, [&](auto&... values) { return (session.sketch().*member)(values...); },
        std::index_sequence_for<Parameters...>());
  };
}

template <class Result, class... Parameters>
Call sketchCall(Result (SketchViewModel::*member)(Parameters...) const) {
  return [member](AutomationSession& session, const Json& arguments) {
    return binding::callWith<Parameters...>(
        session, arguments, [&](auto&... values) { return (session.sketch().*member)(values...); },
        std::index_sequence_for<Parameters...>());
  };
}

/// A pure function.
template <class Result, class... Parameters>
Call functionCall(Result (*function)(Parameters...)) {
  return [function](AutomationSession& session, const Json& arguments) {
    return binding::callWith<Parameters...>(
        session, arguments, [&](auto&... values) { return function(values...); },
        std::index_sequence_for<Parameters...>());
  };
}

/// A lambda whose first parameter is the session.
template <class Function>
Call sessionCall(Function function) {
  return binding::boundLambda(function, &Function::operator());
}

}  // namespace ostrelon
