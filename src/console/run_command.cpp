#include "console/run_command.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <numbers>
#include <unordered_set>
#include <utility>

#include "console/command_words.h"
#include "core/adding.h"
#include "core/length_text.h"
#include "platform/unicode.h"

namespace ostrelon::CommandInterpreter {
namespace {

// A path that ends this near to its beginning is closed.
constexpr double kSamePoint = 1e-6;

// Unit vectors, north being up.
std::optional<SketchPoint> directionNamed(std::string_view name) {
  constexpr double kHalf = std::numbers::sqrt2 / 2;
  constexpr std::array<std::pair<std::string_view, SketchPoint>, 8> directions{
      std::pair{"e", SketchPoint{1, 0}},  std::pair{"ne", SketchPoint{kHalf, kHalf}},
      std::pair{"n", SketchPoint{0, 1}},  std::pair{"nw", SketchPoint{-kHalf, kHalf}},
      std::pair{"w", SketchPoint{-1, 0}}, std::pair{"sw", SketchPoint{-kHalf, -kHalf}},
      std::pair{"s", SketchPoint{0, -1}}, std::pair{"se", SketchPoint{kHalf, -kHalf}}};
  for (const auto& [word, direction] : directions) {
    if (word == name) return direction;
  }
  return std::nullopt;
}

// Degrees counter-clockwise from +x; right angles give exact directions.
SketchPoint directionOf(double degrees) {
  const double turned = std::remainder(degrees, 360);
  if (turned == 0) return {1, 0};
  if (turned == 90) return {0, 1};
  if (turned == -90) return {0, -1};
  if (std::fabs(turned) == 180) return {-1, 0};
  const double radians = turned * std::numbers::pi / 180;
  return {std::cos(radians), std::sin(radians)};
}

std::optional<RunFace> faceNamed(std::string_view name) {
  if (name == "mid") return RunFace::middle;
  if (name == "out") return RunFace::outer;
  if (name == "in") return RunFace::inner;
  return std::nullopt;
}

// Commas as words of their own: `0,0` as `0`, `,`, `0`.
Words withCommasApart(const Words& words) {
  Words apart;
  for (const std::string& word : words) {
    std::string_view rest = word;
    for (auto comma = rest.find(','); comma != std::string_view::npos; comma = rest.find(',')) {
      if (comma > 0) apart.emplace_back(rest.substr(0, comma));
      apart.emplace_back(",");
      rest.remove_prefix(comma + 1);
    }
    if (!rest.empty()) apart.emplace_back(rest);
  }
  return apart;
}

// What the words of a run say.
struct TypedRun {
  RunPath path;
  RunFace face = RunFace::middle;
};

// Reads the words in order; stops at the first that says nothing.
class RunReader {
 public:
  explicit RunReader(const Words& words) : words_(withCommasApart(words)) {}

  std::variant<TypedRun, WrongUse, Reply> read() {
    if (auto failure = readStart()) return fail(*failure);
    while (place_ < words_.size()) {
      if (auto failure = readWord()) return fail(*failure);
    }
    if (run_.path.points.size() < 2) return WrongUse{};
    return std::move(run_);
  }

 private:
  using Failure = std::optional<std::variant<WrongUse, Reply>>;

  static std::variant<TypedRun, WrongUse, Reply> fail(const std::variant<WrongUse, Reply>& failure) {
    if (const auto* reply = std::get_if<Reply>(&failure)) return *reply;
    return std::get<WrongUse>(failure);
  }

  bool isAtComma() const { return place_ < words_.size() && words_[place_] == ","; }

  Failure readLengthInto(double& length) {
    if (place_ >= words_.size() || isAtComma()) return WrongUse{};
    auto read = readLengthAt(words_, place_);
    if (auto* reply = std::get_if<Reply>(&read)) return std::move(*reply);
    length = std::get<LengthInWords>(read).value;
    place_ = std::get<LengthInWords>(read).next;
    return std::nullopt;
  }

  Failure readStart() {
    SketchPoint start;
    if (auto failure = readLengthInto(start.x)) return failure;
    if (isAtComma()) ++place_;
    if (auto failure = readLengthInto(start.y)) return failure;
    run_.path.points.push_back(start);
    return std::nullopt;
  }

  Failure readWord() {
    const std::string word = lowerCased(words_[place_]);
    if (const auto face = faceNamed(word)) {
      if (std::exchange(hasFace_, true)) return WrongUse{};
      run_.face = *face;
      ++place_;
      return std::nullopt;
    }
    if (run_.path.isClosed) return Reply::refused("Behind c of a run stands nothing but out, in or mid.");
    if (word == "c") return close();
    return readWall(word);
  }

  Failure close() {
    RunPath& path = run_.path;
    if (path.points.size() < 3)
      return Reply::refused("There is nothing to close: c needs two walls before it.");
    path.isClosed = true;
    if (isBackAtStart()) path.points.pop_back();
    ++place_;
    return std::nullopt;
  }

  Failure readWall(const std::string& word) {
    const auto letters = std::min(word.find_first_not_of("nesw"), word.size());
    auto direction = directionNamed(std::string_view(word).substr(0, letters));
    if (word.starts_with('<')) {
      const auto degrees = parseDegrees(std::string_view(word).substr(1));
      if (!degrees || !std::isfinite(*degrees)) {
        return Reply::error("Unknown angle \"" + words_[place_] +
                            "\". Write degrees behind the sign: <30 12'.");
      }
      direction = directionOf(*degrees);
      ++place_;
    } else if (!direction) {
      return Reply::error(
          "Unknown direction \"" + words_[place_] +
          "\". Write e, n, w, s, ne, nw, se or sw, or an angle as <30, and a length behind it.");
    } else if (letters < word.size()) {
      words_[place_].erase(0, letters);  // the length stands in the same word
    } else {
      ++place_;
    }
    double length = 0;
    if (auto failure = readLengthInto(length)) return failure;
    if (!(length > 0)) return Reply::refused("A wall of a run has to be longer than 0.");
    const SketchPoint end = run_.path.points.back() + *direction * length;
    if (!isFinite(end) || end == run_.path.points.back()) {
      return Reply::refused("A wall of a run is too large or too far away to be drawn.");
    }
    run_.path.points.push_back(end);
    return std::nullopt;
  }

  bool isBackAtStart() const {
    const auto& points = run_.path.points;
    return distanceBetween(points.front(), points.back()) <= kSamePoint;
  }

  Words words_;
  std::size_t place_ = 1;
  TypedRun run_;
  bool hasFace_ = false;
};

std::string refusalText(const RunRefusal& refusal, const WallSystemSpec& spec) {
  switch (refusal.problem) {
    case RunProblem::noArea:
      return "The run encloses no area, so it has no outer face; write mid.";
    case RunProblem::turnsBack:
      return fmt::format("The run turns straight back behind wall {}, where faces do not meet; write mid.",
                         refusal.wall);
    case RunProblem::wallTooShort:
      return fmt::format("Wall {} of the run is too short for its corners at a thickness of {}.",
                         refusal.wall, formatLength(spec.thickness));
  }
  return {};
}

}  // namespace

ParseResult parseRun(const Words& words, const ParseState& state, Place /*place*/) {
  auto read = RunReader(words).read();
  if (const auto* wrong = std::get_if<WrongUse>(&read)) return *wrong;
  if (auto* reply = std::get_if<Reply>(&read)) return std::move(*reply);
  auto& typed = std::get<TypedRun>(read);
  // A run that is led back to its start is as closed as one that ends in c.
  auto& points = typed.path.points;
  if (!typed.path.isClosed && points.size() > 3 &&
      distanceBetween(points.front(), points.back()) <= kSamePoint) {
    points.pop_back();
    typed.path.isClosed = true;
  }
  const WallSystemSpec* spec = state.drawing().wallSystem(state.activeWallSystemSpecID);
  if (spec == nullptr) spec = state.drawing().activeWallSystem();
  if (spec == nullptr) return Reply::error("Unknown wall system \"\". Use spec list.");
  auto axes = runAxes(typed.path, spec->thickness, typed.face);
  if (const auto* refusal = std::get_if<RunRefusal>(&axes))
    return Reply::refused(refusalText(*refusal, *spec));
  double length = 0;
  for (std::size_t i = 0; i < typed.path.wallCount(); ++i) {
    length += distanceBetween(points[i], points[(i + 1) % points.size()]);
  }
  return DrawRun{std::get<std::vector<WallAxis>>(std::move(axes)), spec->id, length};
}

Reply run(const DrawRun& walls, const CommandContext& context) {
  Sketch& sketch = context.sketch;
  const auto change = sketch.change();
  std::vector<SketchEntity> added;
  std::unordered_set<UUID> ids;
  std::optional<UUID> last;
  for (const auto& [from, to] : walls.axes) {
    const UUID id = UUID::random();
    added.emplace_back(WallEntity{id, from, to, walls.systemSpecID});
    ids.insert(id);
    last = id;
  }
  addEntities(sketch, std::move(added));
  sketch.select({std::move(ids), last, sketch.selection->isInspected, {}});
  const WallSystemSpec* spec = sketch.drawing->wallSystem(walls.systemSpecID);
  const std::size_t count = walls.axes.size();
  return Reply::done(fmt::format("Run added ({}): {} wall{}, {}.", spec != nullptr ? spec->name : "", count,
                                 count == 1 ? "" : "s", formatLength(walls.typedLength)));
}

}  // namespace ostrelon::CommandInterpreter
