// What a document file may hold, and what is said about one that holds something else.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <unordered_set>

#include "documents/sketch_document_io.h"
#include "support/random_drawing.h"

namespace ostrelon {
namespace {

using SketchDocumentIO::decodeDocument;
using SketchDocumentIO::encodeDocument;
using SketchDocumentIO::FileLimits;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kID = "5D7A1C3E-0B1F-4E6A-9C55-0F1E2D3C4B5A";
constexpr const char* kSystemA = "8E110000-0000-4000-8000-00000000000A";
constexpr const char* kSystemB = "8E110000-0000-4000-8000-00000000000B";

UUID id(const char* text) { return *UUID::parse(text); }

std::string systemsText() {
  return std::string(R"({"active":1,"items":[{"i":")") + kSystemA +
         R"(","n":"A","t":4.5,"h":96,"a":""},{"i":")" + kSystemB + R"(","n":"B","t":0.1,"h":96,"a":"x"}]})";
}

// A whole file around the text of `e`, with more members at its end.
std::string fileWith(const std::string& entities, const std::string& more = "") {
  return R"({"v":2,"name":"Plan","grid":true,"vp":[1,2,3],"ws":)" + systemsText() + R"(,"e":)" + entities +
         more + "}";
}

SketchDocumentV2 readV2(const std::string& text) {
  return std::get<SketchDocumentV2>(decodeDocument(text).document);
}

SketchEntity readRow(const std::string& row) { return readV2(fileWith("[" + row + "]")).e.front(); }

std::string failure(const std::string& text) {
  try {
    (void)decodeDocument(text);
  } catch (const DocumentFormatError& error) {
    return error.what();
  }
  return "(no failure)";
}

std::string rowFailure(const std::string& row) { return failure(fileWith("[" + row + "]")); }

std::string row(const std::string& tag, const std::string& rest) {
  return "[\"" + tag + "\",\"" + kID + "\"" + rest + "]";
}

TEST(DocumentFormat, ReadsBackEveryRandomDocumentAsItWasWritten) {
  for (int round = 0; round < testing::rounds(60); ++round) {
    const unsigned seed = testing::seed() + static_cast<unsigned>(round);
    SCOPED_TRACE(seed);
    const SketchDocumentV2 document = testing::RandomDrawing(seed, testing::Spread::floats).document();
    EXPECT_EQ(readV2(encodeDocument(document)), document);
  }
}

TEST(DocumentFormat, WritesTheKeysInOrderOnOneLine) {
  SketchDocumentV2 document;
  document.name = "Plan \"A\"";
  document.vp = {400, 300.5, 4};
  document.ws.items = {{id(kSystemA), "W2", 0.1F, 96, "2×4"}};
  document.e = {LineEntity{id(kID), {0, -0.0}, {120.5, 100000}},
                WallEntity{id(kID), {0, 0}, {1, 1}, id(kSystemB)},
                PolygonEntity{id(kID), {{1, 2}, {3, 4}, {5, 6}}}, PolygonEntity{id(kID), {}}};
  const std::string i = kID;
  EXPECT_EQ(encodeDocument(document),
            R"({"v":2,"name":"Plan \"A\"","grid":true,"vp":[400,300.5,4],"ws":{"active":0,"items":[{"i":")" +
                std::string(kSystemA) + R"(","n":"W2","t":0.1,"h":96,"a":"2×4"}]},"e":[["L",")" + i +
                R"(",0,-0,120.5,100000],["W",")" + i + R"(",0,0,1,1,0],["P",")" + i +
                R"(",[1,2,3,4,5,6]],["P",")" + i + R"(",[]]]})");
}

TEST(DocumentFormat, WritesTheShortestTextThatReadsBackToThe32BitValue) {
  std::mt19937 random(7);
  for (int round = 0; round < 20'000; ++round) {
    const float value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    if (!std::isfinite(value)) continue;
    SketchDocumentV2 document;
    document.e = {CircleEntity{id(kID), {value, 0.1}, value}};
    const auto circle = std::get<CircleEntity>(readV2(encodeDocument(document)).e.front());
    ASSERT_EQ(std::bit_cast<std::uint64_t>(circle.radius), std::bit_cast<std::uint64_t>(double{value}));
    ASSERT_EQ(circle.center.y, double{0.1F});
  }
}

TEST(DocumentFormat, ReadsATieBetweenTwoValuesOnce) {
  // Just above the middle between 1 and the next 32-bit value; rounded to 64 bits it is the middle,
  // which alone would round to the even 1.
  const auto circle = std::get<CircleEntity>(readRow(row("C", ",0,0,1.00000005960464477540")));
  EXPECT_EQ(circle.radius, double{std::nextafter(1.0F, 2.0F)});
}

TEST(DocumentFormat, FailsToWriteWhatIsNotANumberOf32Bits) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double bad : {infinity, -infinity, std::nan(""), 1e39}) {
    SketchDocumentV2 document;
    document.e = {LineEntity{id(kID), {0, 0}, {1, 1}}, PolygonEntity{id(kID), {{0, 0}, {1, bad}, {2, 2}}}};
    EXPECT_THAT([&] { encodeDocument(document); },
                ::testing::ThrowsMessage<DocumentFormatError>(HasSubstr("Polygon 2")));
    document.e = {};
    document.ws.items = {{id(kSystemA), "Thick", bad, 1, ""}};
    EXPECT_THAT([&] { encodeDocument(document); },
                ::testing::ThrowsMessage<DocumentFormatError>(HasSubstr("Thick")));
    document.ws.items = {};
    document.vp = {0, 0, bad == 1e39 ? infinity : bad};
    EXPECT_THROW(encodeDocument(document), DocumentFormatError);
  }
}

TEST(DocumentFormat, LeavesOutUndoSnapshotsFromOneThatCannotBeWrittenBackwards) {
  const auto circle = [](double radius) { return EntityList{CircleEntity{id(kID), {0, 0}, radius}}; };
  SketchDocumentV2 document;
  document.e = circle(4);
  document.undo = {circle(1), circle(std::numeric_limits<double>::infinity()), circle(2), circle(3)};
  EXPECT_EQ(readV2(encodeDocument(document)).undo, (std::vector<EntityList>{circle(2), circle(3)}));
  document.undo = {circle(1), circle(1e300)};
  EXPECT_EQ(readV2(encodeDocument(document)).undo, std::nullopt);
  EXPECT_THAT(encodeDocument(document), Not(HasSubstr("undo")));
}

EntityList manyLines(std::uint64_t count) {
  EntityList list;
  for (std::uint64_t i = 0; i < count; ++i) {
    const double at = static_cast<double>(i);
    list.append(LineEntity{UUID{1, i}, {at, 0}, {at, 1}});
  }
  return list;
}

TEST(DocumentFormat, LeavesOutTheOldestUndoSnapshotsOfAFileThatWouldBecomeTooLarge) {
  const auto text = [](const SketchDocumentV2& document, const FileLimits& limits) {
    std::string whole;
    encodeDocument(
        document, [&](std::string_view piece) { whole += piece; }, limits);
    return whole;
  };
  SketchDocumentV2 document;
  document.e = manyLines(1000);
  EntityList moved = document.e;
  moved.replace(500, LineEntity{id(kID), {1, 2}, {3, 4}});
  document.undo = {manyLines(900), manyLines(800), document.e, moved};
  const std::string all = text(document, {});
  EXPECT_EQ(readV2(all).undo->size(), 4U);
  // Of each size the newest steps that fit are kept, and what is kept is what was kept without a limit.
  std::size_t before = 4;
  for (std::uint64_t limit = all.size() - 2; before > 0; limit -= all.size() / 12) {
    const std::string some = text(document, {.withUndo = limit});
    const auto undo = readV2(some).undo.value_or(std::vector<EntityList>());
    EXPECT_LE(undo.size(), before);
    EXPECT_LE(undo.empty() ? 0 : some.size(), limit);
    EXPECT_EQ(undo, std::vector<EntityList>(document.undo->end() - static_cast<std::ptrdiff_t>(undo.size()),
                                            document.undo->end()));
    before = undo.size();
  }
  EXPECT_THROW(text(document, {.withUndo = 0, .whole = 20'000}), DocumentFormatError);
}

TEST(DocumentFormat, WritesBytesThatAreNotUTF8SoThatTheFileCanBeReadAgain) {
  SketchDocumentV2 document;
  document.name = "Pl\xFFn";
  EXPECT_EQ(readV2(encodeDocument(document)).name, "Pl\xEF\xBF\xBDn");
}

TEST(DocumentFormat, TellsTheFormatByTheVersionKeys) {
  constexpr const char* kUnsupported = "Unsupported .ostrel format version.";
  EXPECT_EQ(failure("{}"), kUnsupported);
  EXPECT_EQ(failure(R"({"v":1})"), kUnsupported);
  EXPECT_EQ(failure(R"({"v":null,"formatVersion":3})"), kUnsupported);
  EXPECT_EQ(failure(R"({"v":3,"e":"anything"})"), kUnsupported);
  EXPECT_EQ(readV2(fileWith("[]", R"(,"formatVersion":1)")).name, "Plan");
  // 2.0 is the integer 2, and the last of two keys counts.
  EXPECT_EQ(readV2(fileWith("[]", R"(,"v":1,"v":2.0)")).name, "Plan");
  EXPECT_THAT(failure(R"({"v":2.5})"), HasSubstr("at v: expected an integer"));
  EXPECT_THAT(failure(R"({"v":"2"})"), HasSubstr("at v: expected an integer"));
  EXPECT_THAT(failure(R"({"v":3,"formatVersion":1e19})"),
              HasSubstr("formatVersion: the integer is too large"));
  EXPECT_THAT(failure(R"({"v":3,"formatVersion":9223372036854775808})"), HasSubstr("too large"));
  EXPECT_THAT(failure(R"([{"v":2}])"), HasSubstr("expected an object"));
}

TEST(DocumentFormat, ReadsKeysInAnyOrderAndPassesOverUnknownOnes) {
  const std::string id1 = kID;
  const SketchDocumentV2 document = readV2(R"({"more":{"deep":[1,{"x":null}]}, "undo":[[["W",")" + id1 +
                                           R"(",0,0,1,1,1,"surplus",[true]]]], "e" : [["W",")" + id1 +
                                           R"(",0,0,1,1,1]],
        "ws":)" + systemsText() + R"(,"vp":[],"grid":false,"name":"N","v":2})");
  EXPECT_EQ(std::get<WallEntity>(document.e.front()).systemSpecID, id(kSystemB));
  EXPECT_EQ(document.undo->front(), document.e);
  EXPECT_EQ(document.ws.items[1].thickness, double{0.1F});
  EXPECT_EQ(readV2(fileWith("[]", R"(,"undo":null)")).undo, std::nullopt);
  // The last of two lists counts, though the first is checked as well.
  EXPECT_EQ(readV2(fileWith("[" + row("C", ",0,0,1") + "]", R"(,"e":[])")).e.size(), 0U);
  EXPECT_THAT(failure(fileWith("[7]", R"(,"e":[])")), HasSubstr("at e[0]: expected an array"));
}

TEST(DocumentFormat, ReadsRowsLeniently) {
  // Lower-case identifiers, escapes, and whole numbers in any spelling.
  EXPECT_EQ(entityID(readRow(R"(["\u004C","5d7a1c3e-0b1f-4e6a-9c55-0f1e2d3c4b5a",1e0,-0.0,3.50,4])")),
            id(kID));
  EXPECT_EQ(std::get<WallEntity>(readRow(row("W", ",0,0,1,1,1.0"))).systemSpecID, id(kSystemB));
  // An index that names no system means the first one.
  EXPECT_EQ(std::get<WallEntity>(readRow(row("W", ",0,0,1,1,7"))).systemSpecID, id(kSystemA));
  EXPECT_EQ(std::get<WallEntity>(readRow(row("W", ",0,0,1,1,-1"))).systemSpecID, id(kSystemA));
  // Half a vertex, or fewer than three, leave a polygon with none.
  EXPECT_TRUE(std::get<PolygonEntity>(readRow(row("P", ",[0,0,10,0,10]"))).vertices.empty());
  EXPECT_TRUE(std::get<PolygonEntity>(readRow(row("P", ",[0,0,10,0]"))).vertices.empty());
  EXPECT_EQ(std::get<PolygonEntity>(readRow(row("P", ",[0,0,10,0,10,10]"))).vertices.size(), 3U);
  // Numbers below the smallest of 32 bits are zero; integers of any length are numbers.
  EXPECT_EQ(std::get<CircleEntity>(readRow(row("C", ",1e-60,0,123456789012345678901234567890"))).radius,
            double{123456789012345678901234567890.0F});
}

TEST(DocumentFormat, GivesWallsOfAFileWithoutSystemsOneThatIsUnknown) {
  const std::string text = R"({"v":2,"name":"","grid":true,"vp":[],"ws":{"active":0,"items":[]},"e":[)" +
                           row("W", ",0,0,1,1,0") + "]}";
  const auto wall = std::get<WallEntity>(readV2(text).e.front());
  EXPECT_NE(wall.systemSpecID, UUID{});
}

TEST(DocumentFormat, SaysWhatIsWrongWithARowAndWhere) {
  EXPECT_EQ(rowFailure(row("X", "")), "Unknown entity tag: X");
  EXPECT_EQ(rowFailure(R"(["Line",7])"), "Unknown entity tag: Line");
  EXPECT_EQ(rowFailure(R"(["",7])"), "Unknown entity tag: ");
  EXPECT_EQ(rowFailure(row("C", ",0,0,1") + "," + row("L", R"(,0,0,"1",1)")),
            "The file is damaged at e[1]: expected a number.");
  EXPECT_EQ(rowFailure(row("L", ",0,0,1")), "The file is damaged at e[0]: the row is too short.");
  EXPECT_EQ(rowFailure("[]"), "The file is damaged at e[0]: the row is too short.");
  EXPECT_EQ(rowFailure(R"([7,"x"])"), "The file is damaged at e[0]: expected a text.");
  EXPECT_EQ(rowFailure(R"(["L","not one",0,0,1,1])"), "The file is damaged at e[0]: expected an identifier.");
  EXPECT_EQ(rowFailure(row("C", ",0,0,1e39")), "The file is damaged at e[0]: the number is too large.");
  EXPECT_EQ(rowFailure(row("C", ",0,0,1e999")), "The file is damaged at e[0]: the number is too large.");
  EXPECT_EQ(rowFailure(row("C", ",0,0,null")), "The file is damaged at e[0]: expected a number.");
  EXPECT_EQ(rowFailure(row("P", ",0")), "The file is damaged at e[0]: expected an array.");
  EXPECT_EQ(rowFailure(row("P", ",[0,true]")), "The file is damaged at e[0]: expected a number.");
  EXPECT_EQ(rowFailure(row("W", ",0,0,1,1,0.5")), "The file is damaged at e[0]: expected an integer.");
  EXPECT_EQ(rowFailure(row("W", ",0,0,1,1,18446744073709551616")),
            "The file is damaged at e[0]: the integer is too large.");
  EXPECT_EQ(failure(fileWith("[]", ",\"undo\":[[],[" + row("C", ",0,0") + "]]")),
            "The file is damaged at undo[1][0]: the row is too short.");
}

TEST(DocumentFormat, NamesAMissingKeyOrAMistypedValue) {
  const std::string whole = fileWith("[]");
  const auto without = [&](const std::string& key) {
    std::string text = whole;
    text.replace(text.find("\"" + key + "\""), key.size() + 2, "\"no\"");
    return failure(text);
  };
  for (const std::string key : {"name", "grid", "vp", "ws", "e"}) {
    EXPECT_EQ(without(key), "The file is damaged: the key \"" + key + "\" is missing.");
  }
  for (const std::string key : {"active", "items"}) {
    EXPECT_EQ(without(key), "The file is damaged at ws: the key \"" + key + "\" is missing.");
  }
  for (const std::string key : {"i", "n", "t", "h", "a"}) {
    EXPECT_EQ(without(key), "The file is damaged at ws.items[0]: the key \"" + key + "\" is missing.");
  }
  EXPECT_EQ(failure(fileWith("{}")), "The file is damaged at e: expected an array.");
  EXPECT_EQ(failure(fileWith("[]", R"(,"grid":1)")), "The file is damaged at grid: expected true or false.");
  EXPECT_EQ(failure(fileWith("[]", R"(,"vp":[1,"2"])")), "The file is damaged at vp[1]: expected a number.");
  EXPECT_EQ(failure(fileWith("[]", R"(,"undo":{})")), "The file is damaged at undo: expected an array.");
}

TEST(DocumentFormat, GivesThePlaceWhereTheTextStopsBeingJSON) {
  EXPECT_EQ(failure(""), "The file is empty.");
  EXPECT_EQ(failure(R"({"v":2,"name":tru})"), "The file is damaged at byte 14: it is not JSON.");
  EXPECT_EQ(failure(R"({"v":2} x)"), "The file is damaged at byte 9: its JSON does not end as it should.");
  EXPECT_EQ(failure(R"({"v":02})"), "The file is damaged at byte 5: it is not JSON.");
  EXPECT_EQ(failure("{\"v\":2,\"name\":\"a\nb\"}"), "The file is damaged at byte 16: it is not JSON.");
  EXPECT_EQ(failure("{\"name\":\"\xC3\x28\"}"), "The file is damaged at byte 9: it is not UTF-8 text.");
  // Every way of cutting a file short is an error, and so is a value that is only passed over.
  const std::string whole = fileWith("[" + row("L", ",0,0,1,1") + "," + row("P", ",[1,2,3,4,5,6]") + "]",
                                     ",\"undo\":[[" + row("C", ",0,0,1") + "]],\"x\":{\"y\":[1,\"z\"]}");
  ASSERT_EQ(readV2(whole).e.size(), 2U);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    ASSERT_NE(failure(whole.substr(0, length)), "(no failure)") << length;
  }
  for (const std::string ignored :
       {"[1,]", "[1 2]", "{\"a\" 1}", "{a:1}", "nul", "\"\\q\"", "+1", "[}", "1.", "-"}) {
    EXPECT_THAT(failure(fileWith("[]", ",\"x\":" + ignored)), HasSubstr("damaged at byte")) << ignored;
  }
  EXPECT_THAT(failure(fileWith("[]", ",\"x\":" + std::string(100'000, '[') + std::string(100'000, ']'))),
              HasSubstr("nested too deeply"));
}

// --- Format 1

std::string verboseFileWith(const std::string& entities, const std::string& more = "") {
  return R"({"formatVersion":1,"documentName":"Old","entities":)" + entities +
         R"(,"wallSystemSpecs":[{"id":")" + kSystemA +
         R"(","name":"A","thickness":0.1,"height":96,"assemblyNotes":""}],"activeWallSystemSpecID":")" +
         kSystemB + R"(","viewport":{"panX":1,"panY":2,"scale":0.25},"showGrid":false)" + more + "}";
}

TEST(VerboseDocumentFormat, ReadsEveryKindWithItsValuesUnchanged) {
  const std::string i = std::string(R"("id":")") + kID + "\"";
  const auto document = std::get<SketchDocumentFile>(
      decodeDocument(
          verboseFileWith(R"([{"line":{)" + i + R"(,"from":{"x":0.1,"y":1e300},"to":{"y":2,"x":3}}},)" +
                          R"({"wall":{"to":{"x":1,"y":1},"from":{"x":0,"y":0},"systemSpecID":")" + kSystemB +
                          "\"," + i + "}}," + R"({"circle":{)" + i +
                          R"(,"center":{"x":0,"y":0},"radius":5,"other":[]}},)" + R"({"arc":{)" + i +
                          R"(,"center":{"x":0,"y":0},"radius":5,"startAngle":1,"endAngle":2}},)" +
                          R"({"rectangle":{)" + i +
                          R"(,"origin":{"x":0,"y":0},"size":{"width":1,"height":2}}},)" + R"({"polygon":{)" +
                          i + R"(,"vertices":[{"x":1,"y":2}]},"polygon":{)" + i + R"(,"vertices":[]}}])"))
          .document);
  const UUID one = id(kID);
  EXPECT_EQ(document.entities,
            (EntityList{LineEntity{one, {0.1, 1e300}, {3, 2}}, WallEntity{one, {0, 0}, {1, 1}, id(kSystemB)},
                        CircleEntity{one, {0, 0}, 5}, ArcEntity{one, {0, 0}, 5, 1, 2},
                        RectangleEntity{one, {0, 0}, {1, 2}}, PolygonEntity{one, {}}}));
  EXPECT_EQ(document.wallSystemSpecs.front().thickness, 0.1);
  EXPECT_EQ(document.activeWallSystemSpecID, id(kSystemB));
  EXPECT_EQ(document.viewport, (SketchViewport{{1, 2}, 0.25}));
  EXPECT_FALSE(document.showGrid);
}

TEST(VerboseDocumentFormat, SaysWhatIsWrongAndWhere) {
  constexpr const char* kKeys = "Invalid number of keys found, expected one.";
  EXPECT_EQ(failure(verboseFileWith("[{}]")), kKeys);
  EXPECT_EQ(failure(verboseFileWith(R"([{"line":{},"blob":{}}])")), kKeys);
  EXPECT_THAT(failure(verboseFileWith(R"([{"blob":{}}])")), HasSubstr("entities[0]: the key \"blob\""));
  EXPECT_THAT(failure(verboseFileWith(R"([{"line":{}}])")),
              HasSubstr("entities[0].line: the key \"id\" is missing"));
  EXPECT_THAT(failure(verboseFileWith(std::string(R"([{"circle":{"id":")") + kID +
                                      R"(","center":{"x":1},"radius":1}}])")),
              HasSubstr("entities[0].circle.center: the key \"y\" is missing"));
  EXPECT_THAT(failure(verboseFileWith("[]", R"(,"showGrid":0)")),
              HasSubstr("at showGrid: expected true or false"));
  EXPECT_EQ(failure(R"({"formatVersion":1})"), "The file is damaged: the key \"documentName\" is missing.");
}

// --- Sharing

std::size_t distinctEntities(const SketchDocumentV2& document) {
  std::unordered_set<const EntityList::Chunk*> chunks;
  std::size_t entities = 0;
  const auto count = [&](const EntityList& list) {
    for (const auto& chunk : list.chunks()) {
      if (chunks.insert(chunk.get()).second) entities += chunk->size();
    }
  };
  count(document.e);
  if (document.undo) {
    for (const EntityList& snapshot : *document.undo) count(snapshot);
  }
  return entities;
}

TEST(DocumentFormat, HoldsTwentyUndoStepsInLittleMoreThanTheEntitiesThemselves) {
  testing::RandomDrawing random(11, testing::Spread::floats);
  SketchDocumentV2 document = random.document(2);
  const auto fresh = [&] { return random.entity(document.ws.items); };
  EntityList list;
  for (int count = 0; count < 10'000; ++count) list.append(fresh());
  const auto any = [&] { return static_cast<std::size_t>(random.below(static_cast<int>(list.size()))); };
  document.undo.emplace();
  document.undoTwins.clear();
  for (int step = 0; step < 20; ++step) {
    document.undo->push_back(list);
    switch (step % 4) {
      case 0:
        list.append(fresh());
        break;
      case 1:
        list.remove(any());
        break;
      case 2:
        list.insert(any(), {fresh()});
        break;
      default:
        list.replace(any(), fresh());
    }
  }
  document.e = list;
  const SketchDocumentV2 read = readV2(encodeDocument(document));
  ASSERT_EQ(read, document);
  EXPECT_LT(distinctEntities(read), document.e.size() * 11 / 10);
}

TEST(DocumentFormat, HoldsAPlanOnlyWhereThereIsOneAndKeepsWhatLaterVersionsPutThere) {
  const std::string i = kID;
  const std::string plan = R"("plan":{"look":{"clean":true},"openings":[["D",")" + i + R"(",")" + i +
                           R"(",-1.25,12.541666666666666,"R","O"]],"levels":[{"a": 1}]})";
  EXPECT_THAT(encodeDocument(readV2(fileWith("[]", "," + plan))), HasSubstr(plan));
  EXPECT_THAT(encodeDocument(readV2(fileWith("[]"))), Not(HasSubstr("plan")));
  const std::string items =
      R"("plan":{"look":{"dimensions":true},"rooms":[[")" + i + R"(",12,4.5,"Bath",0,-1]],"dividers":[[")" +
      i + R"(",1,2,3,4]],"dimensions":[[")" + i + R"(",[0,0,"startLeft",")" + i +
      R"("],[42,0],"vertical",-3],[")" + i + R"(",[0,0],[42,0]]],"notes":[[")" + i +
      R"(",3,7,"Verify",[1,2]],[")" + i + R"(",3,7]],"sheet":{"unitsPerInch":8,"north":-30.5,"by":"MW"}})";
  EXPECT_THAT(encodeDocument(readV2(fileWith("[]", "," + items))), HasSubstr(items));
  const auto planFailure = [&](const std::string& text) {
    return failure(fileWith("[]", ",\"plan\":" + text));
  };
  EXPECT_EQ(planFailure(R"({"openings":[["G",")" + i + R"("]]})"), "Unknown kind of opening: G");
  EXPECT_THAT(planFailure(R"({"openings":[["D",")" + i + R"("]]})"), HasSubstr("plan.openings[0]: the row"));
  EXPECT_THAT(planFailure(R"({"notes":[[")" + i + R"(",1]]})"), HasSubstr("plan.notes[0]: the row"));
  EXPECT_THAT(planFailure(R"({"dimensions":[[")" + i + R"(",[0,0,"top"],[1,1]]]})"),
              HasSubstr("unknown name: top"));
  EXPECT_THAT(planFailure(R"({"look":{"clean":1}})"), HasSubstr("plan.look.clean: expected"));
  EXPECT_THAT(planFailure("[]"), HasSubstr("expected an object"));
  EXPECT_EQ(planFailure("null"), "(no failure)");
}

}  // namespace
}  // namespace ostrelon
