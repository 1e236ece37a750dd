// Binding operations for `call`: the arguments are converted by their C++ types, so that a row of the
// table is one line.
//
//   table["zoomToFit"] = call(&Board::zoomToFit);          // a member of a part of the program
//   table["deleteSelection"] = call(deleteSelection);      // a function over parts: no arguments then
//   table["gridStep"] = call(gridStep);                    // a pure function
//   table["menuTitle"] = call([](Application& application, int row) { … });
//
// A parameter that refers to a part of the running program (`Sketch&`, `Board&`, …) is that part and no
// argument. Trailing optional arguments may be left out.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "automation/automation_session.h"
#include "automation/value_names.h"

namespace ostrelon {

namespace binding {

// The parts of the running program, by their types.
template <class T>
struct Part : std::false_type {};
template <>
struct Part<AutomationSession> : std::true_type {
  static AutomationSession& of(AutomationSession& session) { return session; }
};
template <>
struct Part<Application> : std::true_type {
  static Application& of(AutomationSession& session) { return session.application; }
};
template <>
struct Part<Workspace> : std::true_type {
  static Workspace& of(AutomationSession& session) { return session.workspace(); }
};
template <>
struct Part<AppSettings> : std::true_type {
  static AppSettings& of(AutomationSession& session) { return session.application.settings(); }
};
template <>
struct Part<Messages> : std::true_type {
  static Messages& of(AutomationSession& session) { return session.workspace().messages; }
};
template <>
struct Part<Sketch> : std::true_type {
  static Sketch& of(AutomationSession& session) { return session.workspace().sketch; }
};
template <>
struct Part<Board> : std::true_type {
  static Board& of(AutomationSession& session) { return session.workspace().board; }
};
template <>
struct Part<DocumentSession> : std::true_type {
  static DocumentSession& of(AutomationSession& session) { return session.workspace().document; }
};
template <>
struct Part<Console> : std::true_type {
  static Console& of(AutomationSession& session) { return session.workspace().console; }
};

template <class Parameter>
inline constexpr bool isPart =
    Part<std::remove_cvref_t<Parameter>>::value&& std::is_lvalue_reference_v<Parameter>;

// How an argument is held while the operation runs.
template <class Parameter>
struct Held {
  using Type =
      std::conditional_t<isPart<Parameter>, std::remove_cvref_t<Parameter>&, std::remove_cvref_t<Parameter>>;
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

template <class Parameter>
typename Held<Parameter>::Type hold(AutomationSession& session, const Json& arguments, std::size_t position) {
  if constexpr (isPart<Parameter>) {
    return Part<std::remove_cvref_t<Parameter>>::of(session);
  } else {
    return readArgument<typename Held<Parameter>::Type>(session, arguments, position);
  }
}

// The position of each parameter among the arguments; parts are none.
template <class... Parameters>
constexpr std::array<std::size_t, sizeof...(Parameters) + 1> argumentPositions() {
  std::array<std::size_t, sizeof...(Parameters) + 1> positions{};
  const std::array<bool, sizeof...(Parameters) + 1> parts{isPart<Parameters>..., false};
  for (std::size_t i = 0; i < sizeof...(Parameters); ++i)
    positions[i + 1] = positions[i] + (parts[i] ? 0 : 1);
  return positions;
}

// Reads the arguments in order, then calls with them.
template <class... Parameters, class Function, std::size_t... Indices>
Json callWith(AutomationSession& session, const Json& arguments, const Function& function,
              std::index_sequence<Indices...>) {
  constexpr auto positions = argumentPositions<Parameters...>();
  constexpr std::size_t most = positions[sizeof...(Parameters)];
  if (arguments.size() > most) {
    throw ArgumentError("Too many arguments: " + std::to_string(arguments.size()) + " where at most " +
                        std::to_string(most) + " are expected.");
  }
  std::tuple<typename Held<Parameters>::Type...> held{
      hold<Parameters>(session, arguments, positions[Indices])...};
  using Result = decltype(function(std::get<Indices>(held)...));
  if constexpr (std::is_void_v<Result>) {
    function(std::get<Indices>(held)...);
    return nullptr;
  } else {
    return toJson(function(std::get<Indices>(held)...));
  }
}

template <class Parameter>
void addArgument(CallSignature& signature) {
  if constexpr (!isPart<Parameter>) {
    using Argument = typename Held<Parameter>::Type;
    signature.arguments.push_back({valueName<Argument>(), IsOptional<Argument>::value});
  }
}

template <class Result, class... Parameters>
CallSignature signatureOf() {
  CallSignature signature;
  (addArgument<Parameters>(signature), ...);
  signature.result = valueName<Result>();
  return signature;
}

template <class Result, class... Parameters, class Function>
Call bound(Function function) {
  return {[function](AutomationSession& session, const Json& arguments) {
            return callWith<Parameters...>(session, arguments, function,
                                           std::index_sequence_for<Parameters...>());
          },
          signatureOf<Result, Parameters...>};
}

template <class Function, class Result, class... Parameters>
Call boundLambda(Function function, Result (Function::*)(Parameters...) const) {
  return bound<Result, Parameters...>(function);
}

}  // namespace binding

/// A function.
template <class Result, class... Parameters>
Call call(Result (*function)(Parameters...)) {
  return binding::bound<Result, Parameters...>([function](auto&... values) { return function(values...); });
}

/// A member of one of the parts.
template <class Owner, class Result, class... Parameters>
Call call(Result (Owner::*member)(Parameters...)) {
  return binding::bound<Result, Owner&, Parameters...>(
      [member](Owner& owner, auto&... values) { return (owner.*member)(values...); });
}
template <class Owner, class Result, class... Parameters>
Call call(Result (Owner::*member)(Parameters...) const) {
  return binding::bound<Result, Owner&, Parameters...>(
      [member](const Owner& owner, auto&... values) { return (owner.*member)(values...); });
}

/// A lambda without captures.
template <class Function>
requires requires { &Function::operator(); }
Call call(Function function) { return binding::boundLambda(function, &Function::operator()); }

}  // namespace ostrelon
