#include "shell/left_nav_view.h"

#include <QLabel>
#include <QSignalSpy>

#include "core/adding.h"
#include "geometry/edit_operations.h"
#include "geometry/opening_operations.h"
#include "window_fixture.h"

namespace ostrelon {
namespace {

struct LeftNavigationTest : testing::WindowFixture {
  LeftNavView panel{workspace, theme};
  QAbstractItemView* list = nullptr;

  void SetUp() override {
    panel.resize(LeftNavView::kWidth, 700);
    present(panel);
    list = find<QAbstractItemView>(panel, "leftNav.entities");
  }
  QString label(int row) const { return list->model()->index(row, 0).data().toString(); }
  QString identifier(int row) const { return list->model()->index(row, 0).data(kIdentifierRole).toString(); }
  void clickRow(int row) {
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualRect(list->model()->index(row, 0)).center());
    settle();
  }
};

TEST_F(LeftNavigationTest, OffersTheToolsInTheirOrderAndActivatesThem) {
  const char* titles[] = {"Select", "Pan", "Line", "Wall", "Circle", "Rectangle", "Polygon", "Trim"};
  int above = -1;
  for (std::size_t i = 0; i < kAllSketchTools.size(); ++i) {
    const std::string id = "leftNav.tool." + std::string(rawValue(kAllSketchTools[i]));
    auto* row = find<NavToolRow>(panel, id.c_str());
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row->text(), titles[i]);
    EXPECT_GT(row->y(), above);
    above = row->y();
    QTest::mouseClick(row, Qt::LeftButton);
    settle();
    EXPECT_EQ(board.tool.get(), kAllSketchTools[i]);
    for (auto* other : panel.findChildren<NavToolRow*>()) EXPECT_EQ(other->isChecked(), other == row);
  }
}

TEST_F(LeftNavigationTest, ListsTheEntitiesAndSaysWhenThereAreNone) {
  EXPECT_TRUE(find<QLabel>(panel, "leftNav.noEntities")->isVisible());
  EXPECT_EQ(find<QLabel>(panel, "leftNav.noEntities")->text(), "No entities");
  EXPECT_EQ(find<QLabel>(panel, "leftNav.coordinates.centerOrigin")->text(), "0,0 at center  ·  Y ↑");
  run("line 0 0 10 0");
  run("wall 0 0 0 10 W2-EXT");
  run("circle 5 5 2");
  EXPECT_FALSE(find<QLabel>(panel, "leftNav.noEntities")->isVisible());
  EXPECT_EQ(label(1), "Wall 2 (W2-EXT)");
  EXPECT_EQ(identifier(2), "leftNav.entity.3");

  deleteEntity(sketch, messages, entityID(sketch.entities().front()));
  settle();
  EXPECT_EQ(list->model()->rowCount(), 2);
  EXPECT_EQ(label(0), "Wall 1 (W2-EXT)");
  EXPECT_EQ(identifier(1), "leftNav.entity.2");
  board.clearSketch();
  settle();
  EXPECT_TRUE(find<QLabel>(panel, "leftNav.noEntities")->isVisible());
}

TEST_F(LeftNavigationTest, AClickMakesTheEntityTheWholeSelection) {
  run("line 0 0 10 0");
  run("wall 0 0 0 10");
  selectAll(sketch);
  board.activateTool(SketchTool::circle);
  clickRow(0);
  EXPECT_EQ(sketch.selection->ids.size(), 1U);
  EXPECT_EQ(sketch.selection->primary, entityID(sketch.entities()[0]));
  EXPECT_EQ(board.tool.get(), SketchTool::circle) << "only a wall's row changes the tool";
  EXPECT_TRUE(list->model()->index(0, 0).data(kSelectedRole).toBool());
  clickRow(1);
  EXPECT_EQ(board.tool.get(), SketchTool::select);
  EXPECT_EQ(sketch.selection->primary, entityID(sketch.entities()[1]));
}

TEST_F(LeftNavigationTest, AnEditOfALongListTellsOnlyItsOwnRows) {
  std::vector<SketchEntity> many;
  for (int i = 0; i < 100'000; ++i) many.push_back(LineEntity{UUID::random(), {0, 0}, {1.0 + i, 0}});
  board.restoreSnapshot(EntityList(std::move(many)));
  settle();
  ASSERT_EQ(list->model()->rowCount(), 100'000);
  QSignalSpy resets(list->model(), &QAbstractItemModel::modelReset);
  QSignalSpy inserted(list->model(), &QAbstractItemModel::rowsInserted);
  QSignalSpy removed(list->model(), &QAbstractItemModel::rowsRemoved);
  QSignalSpy changed(list->model(), &QAbstractItemModel::dataChanged);

  run("circle 0 0 4");
  EXPECT_EQ(removed.size(), 0);
  ASSERT_EQ(inserted.size(), 1);
  EXPECT_EQ(inserted[0][1].toInt(), 100'000);

  replaceEntity(sketch, entityID(sketch.entities()[50'000]),
                LineEntity{entityID(sketch.entities()[50'000]), {5, 5}, {6, 6}});
  settle();
  ASSERT_EQ(changed.size(), 1);
  EXPECT_EQ(changed[0][0].toModelIndex().row(), 50'000);
  EXPECT_EQ(changed[0][1].toModelIndex().row(), 50'000);

  deleteEntity(sketch, messages, entityID(sketch.entities()[70'000]));
  settle();
  ASSERT_EQ(removed.size(), 1);
  EXPECT_EQ(removed[0][1].toInt(), 70'000);
  EXPECT_EQ(removed[0][2].toInt(), 70'000);
  EXPECT_EQ(resets.size(), 0);
  selectSingleEntity(sketch, entityID(sketch.entities().back()));
  settle();
  EXPECT_TRUE(list->viewport()->rect().contains(list->visualRect(list->model()->index(99'999, 0)).center()))
      << "the list scrolls to a new selection";
}

TEST_F(LeftNavigationTest, TheModelFollowsRandomEdits) {
  EntityListModel model(sketch);
  // What a view would believe that goes by the signals alone.
  int believed = model.rowCount();
  QObject::connect(&model, &QAbstractItemModel::rowsInserted, &model,
                   [&](const QModelIndex&, int first, int last) { believed += last - first + 1; });
  QObject::connect(&model, &QAbstractItemModel::rowsRemoved, &model,
                   [&](const QModelIndex&, int first, int last) { believed -= last - first + 1; });
  std::unordered_set<UUID> folded;
  // Each entity, and beneath it what is in it unless that is folded away.
  const auto expected = [&] {
    std::vector<UUID> keys;
    for (const SketchEntity& entity : sketch.entities()) {
      keys.push_back(entityID(entity));
      if (folded.contains(entityID(entity))) continue;
      for (const Opening& opening : sketch.drawing->plan.openings) {
        if (opening.wallID == entityID(entity)) keys.push_back(opening.id);
      }
    }
    return keys;
  };
  const auto shown = [&] {
    std::vector<UUID> keys;
    for (int row = 0; row < model.rowCount(); ++row) {
      const PlanItem* item = model.place(row).item;
      keys.push_back(item != nullptr ? planItemID(*item) : model.entityAt(row));
    }
    return keys;
  };
  unsigned state = 7;
  const auto random = [&state](unsigned below) {
    state = state * 1'664'525U + 1'013'904'223U;
    return (state >> 8) % below;
  };
  for (int step = 0; step < 400; ++step) {
    const std::size_t count = sketch.entities().size();
    switch (count == 0 ? 0 : random(8)) {
      case 0:
      case 1:
        for (unsigned i = random(40); i > 0; --i) addLine(sketch, {0, 0}, {1.0 + i, 2});
        break;
      case 2:
        deleteEntity(sketch, messages, entityID(sketch.entities()[random(static_cast<unsigned>(count))]));
        break;
      case 3:
        selectEntities(sketch, {random(static_cast<unsigned>(count)), random(static_cast<unsigned>(count))});
        deleteSelection(sketch, messages);
        break;
      case 4:
        board.undo();
        break;
      case 5: {
        addWall(sketch, std::nullopt, {0, 10.0 * step}, {20, 10.0 * step});
        const UUID wall = entityID(sketch.entities().back());
        for (unsigned i = 0; i < 1 + random(3); ++i) {
          addOpening(sketch, {UUID::random(), wall, OpeningKind::door, 5.0 * i, 3});
        }
        break;
      }
      case 6: {
        const int row = static_cast<int>(random(static_cast<unsigned>(model.rowCount())));
        if (model.place(row).hasItems) {
          const UUID wall = model.entityAt(row);
          if (folded.erase(wall) == 0) folded.insert(wall);
        }
        model.toggleFold(row);
        break;
      }
      default:
        selectEntities(sketch, {random(static_cast<unsigned>(count))});
        nudgeSelectedEntity(sketch, 1, 1);
        break;
    }
    model.update();
    ASSERT_EQ(shown(), expected()) << "step " << step;
    ASSERT_EQ(believed, model.rowCount()) << "step " << step;
  }
}

TEST_F(LeftNavigationTest, AsARailItShowsIconsAndAsksToUnfold) {
  QSignalSpy asked(&panel, &LeftNavView::unfoldRequested);
  panel.setRail(true);
  panel.resize(LeftNavView::kRailWidth, 700);
  EXPECT_FALSE(find<QLabel>(panel, "leftNav.coordinates.centerOrigin")->isVisible());
  EXPECT_EQ(find<NavToolRow>(panel, "leftNav.tool.trim")->toolTip(), "Trim");
  press(panel, "leftNav.unfold");
  EXPECT_EQ(asked.size(), 1);
}

}  // namespace
}  // namespace ostrelon
