// The icons: drawings on a grid of 24, kept as SVG and painted in one colour, sharp at every device pixel
// ratio.
#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QRectF>

#include "core/plan_items.h"
#include "core/sketch_entity.h"
#include "interaction/sketch_tool.h"

class QPainter;

namespace ostrelon {

class Theme;

enum class Icon {
  none,
  select,
  pan,
  line,
  wall,
  circle,
  rectangle,
  polygon,
  arc,
  trim,
  scope,
  ruler,
  stack,
  alignHorizontal,
  alignVertical,
  fit,
  reset,
  run,
  plus,
  minus,
  check,
  chevronDown,
  chevronRight,
  close,
  branch,
  alert,
  folder,
  bin,
  spinner,
  door,
  window,
  opening,
  count_,
};

Icon iconOf(SketchTool tool);
/// The icon of an entity's kind.
Icon iconOf(const SketchEntity& entity);
/// The icon of what is placed in the plan.
Icon iconOf(const PlanItem& item);

/// `size`: width and height, px at 1x.
QPixmap iconPixmap(Icon icon, int size, const QColor& color, qreal devicePixelRatio);
/// Paints the icon with its middle in the middle of `box`.
void paintIcon(QPainter& painter, Icon icon, const QRectF& box, int size, const QColor& color);

/// The mark of the program: an O in plan, its last quarter the swing of a door.
QPixmap logoPixmap(int size, const Theme& theme, qreal devicePixelRatio);

/// The icon of the windows: the mark on a card, in the sizes that desktops show.
QIcon programIcon();

}  // namespace ostrelon
