#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <unordered_map>
#include <utility>

#include "exchange/dxf_file.h"
#include "exchange/dxf_objects.h"
#include "exchange/dxf_own_data.h"
#include "exchange/dxf_polyline.h"
#include "exchange/dxf_text.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

// The losses of a damaged file that are told one by one.
constexpr std::size_t kMostToldLosses = 20;
// A block within a block's array is bounded where it is drawn; these only keep its counts readable.
constexpr int kMostRows = 1'000'000;

constexpr unsigned kLayerFrozen = 1;
constexpr unsigned kBlockOfAnotherFile = 4 | 8;
constexpr std::string_view kOtherKinds = "other kinds";

class Reader {
 public:
  Reader(std::string_view text, bool isUtf8, DxfDamage damage)
      : groups_(text), damage_(damage), isUtf8_(isUtf8), decoder_("", "", isUtf8) {
    file_.layers.push_back({"0"});
    layerOfName_.emplace("0", kDxfLayerZero);
  }

  DxfFile read() {
    bool sawSection = false;
    while (const auto group = nextBetweenSections()) {
      if (group->is(0, "EOF")) break;
      if (!group->is(0, "SECTION")) {
        // Comments may come between the sections.
        if (group->code != 999 && !sawSection) throw DxfError("This is not a DXF file.");
        if (group->code == 999) readComment(group->value);
        continue;
      }
      sawSection = true;
      sectionLine_ = group->line;
      try {
        readSection();
      } catch (const DxfError& error) {
        lose(error);
        if (!groups_.skipToObject()) break;
      }
    }
    if (!sawSection) throw DxfError("This is not a DXF file.");
    for (std::size_t i = 0; i < file_.blocks.size(); ++i) {
      if (isForeign_[i]) file_.blocks[i] = {};
    }
    return std::move(file_);
  }

 private:
  bool salvages() const { return damage_ == DxfDamage::salvage; }

  // What is damaged is an error, or is lost and told.
  void lose(const DxfError& error) {
    if (!salvages()) throw error;
    if (file_.lostPlaces++ < kMostToldLosses) file_.losses.emplace_back(error.what());
  }

  std::optional<DxfGroup> nextBetweenSections() {
    while (true) {
      try {
        return groups_.next();
      } catch (const DxfError& error) {
        if (groups_.line() < 2) throw;
        lose(error);
        if (!groups_.skipToObject()) return std::nullopt;
      }
    }
  }

  // Inside a section the file must go on.
  DxfGroup required() {
    auto group = groups_.next();
    if (!group) throw DxfError("The file ends in the middle of a section; it may have been cut off.");
    return *group;
  }

  void readSection() {
    const auto name = groups_.next();
    if (!name || name->code != 2)
      throw DxfError(fmt::format("Line {}: a section has no name.", sectionLine_));
    if (name->value == "HEADER") {
      readHeader();
    } else if (name->value == "TABLES") {
      readObjects([this](const DxfObject& object) { readTableRow(object); });
    } else if (name->value == "BLOCKS") {
      readObjects([this](const DxfObject& object) { readBlockObject(object); });
      finishPolyline();
      block_.reset();
    } else if (name->value == "ENTITIES") {
      readObjects([this](const DxfObject& object) { readEntity(object); });
      finishPolyline();
    } else {
      while (!required().is(0, "ENDSEC")) {
      }
    }
  }

  // Files of the oldest form that Ostrelon writes have no other place for it.
  void readComment(std::string_view comment) {
    if (comment == "Units: inches") file_.unitNumber = 1;
    if (comment == "Units: feet") file_.unitNumber = 2;
    if (comment == "Units: millimeters") file_.unitNumber = 4;
  }

  void readHeader() {
    std::string_view variable;
    std::string codePage;
    std::string version;
    for (DxfGroup group = required(); !group.is(0, "ENDSEC"); group = required()) {
      if (group.code == 9) variable = group.value;
      if (variable == "$INSUNITS" && group.code == 70) file_.unitNumber = group.integer();
      if (variable == "$MEASUREMENT" && group.code == 70) file_.isMetric = group.integer() == 1;
      if (variable == "$DWGCODEPAGE" && group.code == 3) codePage = group.value;
      if (variable == "$ACADVER" && group.code == 1) version = group.value;
    }
    decoder_ = DxfTextDecoder(codePage, version, isUtf8_);
  }

  // Hands on every object up to the end of the section. A damaged one is lost alone.
  template <class Visit>
  void readObjects(Visit visit) {
    DxfObject object({}, 0);
    const auto finish = [&] {
      if (object.kind().empty()) return;
      try {
        visit(object);
      } catch (const DxfError& error) {
        lose(error);
      }
    };
    while (true) {
      DxfGroup group;
      try {
        group = required();
      } catch (const DxfError& error) {
        if (!salvages()) throw;
        // Of the object in which the damage is nothing is drawn.
        object.restart({}, 0);
        lose(error);
        if (!groups_.skipToObject()) break;
        continue;
      }
      if (group.code != 0) {
        object.add(group);
        continue;
      }
      finish();
      if (group.value == "ENDSEC") return;
      object.restart(group.value, group.line);
    }
  }

  // --- Names

  std::uint32_t layerNamed(std::string_view raw) {
    if (raw.empty()) return kDxfLayerZero;
    if (raw == lastLayerName_) return lastLayer_;
    std::string name = decoder_.decoded(raw);
    const auto [found, isNew] =
        layerOfName_.emplace(lowerCased(name), static_cast<std::uint32_t>(file_.layers.size()));
    if (isNew) file_.layers.push_back({std::move(name)});
    lastLayerName_ = raw;
    lastLayer_ = found->second;
    return lastLayer_;
  }

  std::uint32_t blockNamed(std::string_view raw) {
    const auto [found, isNew] = blockOfName_.emplace(lowerCased(decoder_.decoded(raw)),
                                                     static_cast<std::uint32_t>(file_.blocks.size()));
    if (isNew) {
      file_.blocks.emplace_back();
      isForeign_.push_back(false);
    }
    return found->second;
  }

  std::uint16_t kindNamed(std::string_view name) {
    if (!isDxfKind(name)) name = kOtherKinds;
    if (!file_.kinds.empty() && file_.kinds[lastKind_] == name) return lastKind_;
    const auto found = std::find(file_.kinds.begin(), file_.kinds.end(), name);
    lastKind_ = static_cast<std::uint16_t>(found - file_.kinds.begin());
    if (found != file_.kinds.end()) return lastKind_;
    // A file full of invented kinds is counted as others from some number on.
    constexpr std::size_t kMostKinds = 1000;
    if (file_.kinds.size() >= kMostKinds && name != kOtherKinds) return kindNamed(kOtherKinds);
    file_.kinds.emplace_back(name);
    return lastKind_;
  }

  // --- Tables and blocks

  void readTableRow(const DxfObject& object) {
    if (object.kind() != "LAYER" || object.find(2) == nullptr) return;
    DxfLayer& layer = file_.layers[layerNamed(object.text(2))];
    layer.isFrozen = (object.flags(70) & kLayerFrozen) != 0;
    layer.isOff = object.integer(62, 7) < 0;
  }

  void readBlockObject(const DxfObject& object) {
    if (object.kind() == "BLOCK") {
      finishPolyline();
      const std::uint32_t place = blockNamed(object.text(2));
      block_ = place;
      file_.blocks[place] = {true, {object.number(10, 0), object.number(20, 0)}, {}};
      isForeign_[place] = (object.flags(70) & kBlockOfAnotherFile) != 0;
    } else if (object.kind() == "ENDBLK") {
      finishPolyline();
      block_.reset();
    } else if (block_) {
      readEntity(object);
    }
  }

  std::vector<DxfItem>& items() { return block_ ? file_.blocks[*block_].items : file_.items; }

  // --- Entities

  static DxfReason hiddenReason(const DxfObject& object) {
    if (object.isOnPaper()) return DxfReason::onPaper;
    return object.integer(60, 0) != 0 ? DxfReason::invisible : DxfReason::drawn;
  }

  void addItems(DxfItem like) {
    for (DxfShape& shape : shapes_) {
      like.shape = std::move(shape);
      items().push_back(like);
      like.continues = true;
    }
    shapes_.clear();
  }

  void readEntity(const DxfObject& object) {
    if (object.kind() == "VERTEX") {
      // A vertex on its own belongs to nothing.
      if (polyline_.isOpen()) polyline_.add(object);
      return;
    }
    finishPolyline();
    if (object.kind() == "SEQEND") return;
    const DxfOwnRole role = dxfOwnRole(object);
    if (role == DxfOwnRole::part && object.kind() != "POLYLINE") return;
    if (role == DxfOwnRole::wall && addWall(object)) return;
    const DxfItem item{{}, layerNamed(object.text(8)), kindNamed(object.kind()), hiddenReason(object)};
    if (object.kind() == "POLYLINE") {
      polyline_.begin(object);
      polylineItem_ = item;
      isPolylinePart_ = role == DxfOwnRole::part;
      return;
    }
    shapes_.clear();
    if (item.hidden != DxfReason::drawn) {
      shapes_.emplace_back(DxfNothing{item.hidden});
    } else if (object.kind() == "INSERT") {
      addInsert(object);
    } else if (object.kind() == "DIMENSION" && object.find(2) != nullptr) {
      shapes_.emplace_back(
          std::make_shared<const DxfInsert>(DxfInsert{blockNamed(object.text(2)), {}, 1, 1, {}, {}}));
    } else {
      addDxfShapes(object, shapes_);
    }
    addItems(item);
  }

  // The wall whose centre line this is; false where what it carries does not read.
  bool addWall(const DxfObject& object) {
    const auto data = dxfWallData(object, decoder_);
    if (!data) return false;
    shapes_.clear();
    shapes_.emplace_back(DxfWall{object.point(10, "start point"), object.point(11, "end point"),
                                 std::make_shared<const DxfWallContent>(data->content)});
    addItems({{}, layerNamed(data->layer), kindNamed("WALL"), hiddenReason(object)});
    return true;
  }

  void addInsert(const DxfObject& object) {
    const auto plane = object.plane();
    if (plane == DxfObject::Plane::other) {
      shapes_.emplace_back(DxfNothing{DxfReason::tilted});
      return;
    }
    DxfInsert insert;
    insert.block = blockNamed(object.text(2));
    const double angle = radiansOf(object.number(50, 0));
    const SketchPoint along{std::cos(angle), std::sin(angle)};
    const AffineMap toPlan = planeMap(plane);
    insert.map = toPlan.after({along * object.number(41, 1),
                               perpendicular(along) * object.number(42, 1),
                               {object.number(10, 0), object.number(20, 0)}});
    insert.columns = static_cast<std::uint32_t>(std::clamp(object.integer(70, 1), 1, kMostRows));
    insert.rows = static_cast<std::uint32_t>(std::clamp(object.integer(71, 1), 1, kMostRows));
    insert.columnStep = toPlan.vector(along * object.number(44, 0));
    insert.rowStep = toPlan.vector(perpendicular(along) * object.number(45, 0));
    shapes_.emplace_back(std::make_shared<const DxfInsert>(insert));
  }

  void finishPolyline() {
    if (!polyline_.isOpen()) return;
    shapes_.clear();
    polyline_.finish(shapes_);
    if (isPolylinePart_) shapes_.clear();
    addItems(polylineItem_);
  }

  DxfGroupReader groups_;
  DxfDamage damage_;
  bool isUtf8_;
  DxfTextDecoder decoder_;
  DxfFile file_;
  std::size_t sectionLine_ = 0;
  std::unordered_map<std::string, std::uint32_t> layerOfName_;  // by the name in lower case
  std::unordered_map<std::string, std::uint32_t> blockOfName_;
  std::vector<bool> isForeign_;  // which blocks are those of other files
  std::string_view lastLayerName_;
  std::uint32_t lastLayer_ = kDxfLayerZero;
  std::uint16_t lastKind_ = 0;
  std::optional<std::uint32_t> block_;  // the one that is being read
  DxfPolylineReader polyline_;
  DxfItem polylineItem_;
  bool isPolylinePart_ = false;  // of a wall, which draws it
  std::vector<DxfShape> shapes_;
};

}  // namespace

DxfFile parseDxf(std::string bytes, DxfDamage damage) {
  if (bytes.empty()) throw DxfError("The file is empty.");
  const DxfText text = plainDxfText(std::move(bytes));
  try {
    return Reader(text.text, text.isUtf8, damage).read();
  } catch (const DxfError& error) {
    if (!text.isBinary) throw;
    throw DxfError(fmt::format("{} (Lines are counted as in the text form of the file.)", error.what()));
  }
}

}  // namespace ostrelon
