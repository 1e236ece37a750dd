#include "shell/icons.h"

#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <cmath>

#include "shell/theme.h"

namespace ostrelon {
namespace {

// Strokes of 1.75 with round ends, no fill; `%` stands for the colour where a part is filled.
const char* drawingOf(Icon icon) {
  switch (icon) {
    case Icon::select:
      return R"(<path d="M18.5 18.5 6 6M6 15.5V6h9.5"/>)";
    case Icon::pan:
      return R"(<path d="M8 13.5V6.75a1.5 1.5 0 0 1 3 0V11M11 11V5a1.5 1.5 0 0 1 3 0v6M14 11V6.25a1.5 1.5 0 0 1 3 0V12M17 9.75a1.5 1.5 0 0 1 3 0V14c0 3.9-2.7 6.75-6.5 6.75-2.7 0-4.4-1.1-5.8-3.3L4.6 13.1a1.5 1.5 0 0 1 2.5-1.65L8 12.75"/>)";
    case Icon::line:
      return R"(<path d="M5 19 19 5"/>)";
    case Icon::wall:
      return R"(<rect x="3" y="6.5" width="18" height="11" rx="1.5"/><path d="M12 6.5v11"/>)";
    case Icon::circle:
      return R"(<circle cx="12" cy="12" r="8.25"/>)";
    case Icon::rectangle:
      return R"(<rect x="3.5" y="5.5" width="17" height="13" rx="1.5"/>)";
    case Icon::polygon:
      return R"(<path d="M12 3.25 19.6 7.6v8.8L12 20.75 4.4 16.4V7.6Z"/>)";
    case Icon::arc:
      return R"(<path d="M4 18.5A14.5 14.5 0 0 1 18.5 4"/><g fill="%" stroke="none"><circle cx="4" cy="18.5" r="1.75"/><circle cx="18.5" cy="4" r="1.75"/></g>)";
    case Icon::trim:
      return R"(<circle cx="6.25" cy="6.5" r="2.75"/><circle cx="6.25" cy="17.5" r="2.75"/><path d="M8.6 8 20 16.75M8.6 16 20 7.25"/>)";
    case Icon::scope:
      return R"(<circle cx="12" cy="12" r="6.75"/><path d="M12 2.75v5M12 16.25v5M2.75 12h5M16.25 12h5"/>)";
    case Icon::ruler:
      return R"(<rect x="2.5" y="7.5" width="19" height="9" rx="1.5"/><path d="M7 7.5v3M12 7.5v4.5M17 7.5v3"/>)";
    case Icon::stack:
      return R"(<path d="m12 3.5 8.75 4.5L12 12.5 3.25 8ZM3.25 12 12 16.5 20.75 12M3.25 16 12 20.5 20.75 16"/>)";
    case Icon::alignHorizontal:
      return R"(<rect x="5" y="4.5" width="5" height="15" rx="1"/><rect x="14" y="7.75" width="5" height="8.5" rx="1"/><path d="M2 12h3M10 12h4M19 12h3"/>)";
    case Icon::alignVertical:
      return R"svg(<g transform="rotate(90 12 12)"><rect x="5" y="4.5" width="5" height="15" rx="1"/><rect x="14" y="7.75" width="5" height="8.5" rx="1"/><path d="M2 12h3M10 12h4M19 12h3"/></g>)svg";
    case Icon::fit:
      return R"(<path d="M4 9V5.5A1.5 1.5 0 0 1 5.5 4H9M15 4h3.5A1.5 1.5 0 0 1 20 5.5V9M20 15v3.5a1.5 1.5 0 0 1-1.5 1.5H15M9 20H5.5A1.5 1.5 0 0 1 4 18.5V15"/><rect x="8.5" y="9.5" width="7" height="5" rx="0.5"/>)";
    case Icon::reset:
      return R"(<path d="M4.75 9.5A8 8 0 1 1 4 12.75M4.25 4.75V9.5H9"/>)";
    case Icon::run:
      return R"(<path d="M19.5 5.5v5.25a2.5 2.5 0 0 1-2.5 2.5H4.75M9 9l-4.25 4.25L9 17.5"/>)";
    case Icon::plus:
      return R"(<path d="M5 12h14M12 5v14"/>)";
    case Icon::minus:
      return R"(<path d="M5 12h14"/>)";
    case Icon::check:
      return R"(<path d="M4.5 12.75 9.75 18 19.5 6.75"/>)";
    case Icon::chevronDown:
      return R"(<path d="m7 9.75 5 5 5-5"/>)";
    case Icon::chevronRight:
      return R"(<path d="m9.75 7 5 5-5 5"/>)";
    case Icon::close:
      return R"(<path d="m6.5 6.5 11 11M17.5 6.5l-11 11"/>)";
    case Icon::branch:
      return R"(<circle cx="7" cy="5.25" r="2.25"/><circle cx="7" cy="18.75" r="2.25"/><circle cx="17" cy="7.75" r="2.25"/><path d="M7 7.5v9M17 10c0 3.5-3 4.25-10 4.75"/>)";
    case Icon::alert:
      return R"(<path d="M12 4 21.25 19.75H2.75ZM12 10v4.25M12 17h.01"/>)";
    case Icon::folder:
      return R"(<path d="M3 7a1.5 1.5 0 0 1 1.5-1.5h4.4a1.5 1.5 0 0 1 1.1.5L11.75 8h7.75A1.5 1.5 0 0 1 21 9.5v8a1.5 1.5 0 0 1-1.5 1.5h-15A1.5 1.5 0 0 1 3 17.5Z"/>)";
    case Icon::bin:
      return R"(<path d="M4.5 7h15M9.25 7V4.25h5.5V7M6.5 7l.85 12.75h9.3L17.5 7M10 10.75v5.5M14 10.75v5.5"/>)";
    case Icon::spinner:
      return R"(<path stroke-width="2" d="M12 4a8 8 0 1 1-8 8"/>)";
    case Icon::door:
      return R"(<path d="M3 19.5h3.5M18 19.5h3M6.5 19.5V8M6.5 8A11.5 11.5 0 0 1 18 19.5"/>)";
    case Icon::window:
      return R"(<path d="M3 8h18v8H3ZM3 12h18"/>)";
    case Icon::opening:
      return R"(<path d="M2.5 8.5H7v7H2.5M21.5 8.5H17v7h4.5"/>)";
    case Icon::none:
    case Icon::count_:
      break;
  }
  return "";
}

QPixmap renderedSvg(const QByteArray& body, const QByteArray& attributes, int size, qreal ratio) {
  const QByteArray document = R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 24 24"><g )" +
                              attributes + ">" + body + "</g></svg>";
  QSvgRenderer renderer(document);
  const int pixels = static_cast<int>(std::lround(size * ratio));
  QPixmap pixmap(pixels, pixels);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  renderer.render(&painter, QRectF(0, 0, pixels, pixels));
  painter.end();
  pixmap.setDevicePixelRatio(ratio);
  return pixmap;
}

}  // namespace

Icon iconOf(SketchTool tool) {
  switch (tool) {
    case SketchTool::select:
      return Icon::select;
    case SketchTool::pan:
      return Icon::pan;
    case SketchTool::line:
      return Icon::line;
    case SketchTool::wall:
      return Icon::wall;
    case SketchTool::circle:
      return Icon::circle;
    case SketchTool::rectangle:
      return Icon::rectangle;
    case SketchTool::polygon:
      return Icon::polygon;
    case SketchTool::trim:
      return Icon::trim;
  }
  return Icon::none;
}

Icon iconOf(const PlanItem& item) {
  return std::visit(
      Overloaded{[](const Opening& opening) {
                   switch (opening.kind) {
                     case OpeningKind::door:
                       return Icon::door;
                     case OpeningKind::window:
                       return Icon::window;
                     case OpeningKind::opening:
                       return Icon::opening;
                   }
                   return Icon::none;
                 },
                 [](const RoomName&) { return Icon::rectangle; },
                 [](const RoomDivider&) { return Icon::line; }, [](const Dimension&) { return Icon::trim; },
                 [](const Note&) { return Icon::select; }},
      item);
}

Icon iconOf(const SketchEntity& entity) {
  return std::visit(Overloaded{
                        [](const LineEntity&) { return Icon::line; },
                        [](const WallEntity&) { return Icon::wall; },
                        [](const CircleEntity&) { return Icon::circle; },
                        [](const ArcEntity&) { return Icon::arc; },
                        [](const RectangleEntity&) { return Icon::rectangle; },
                        [](const PolygonEntity&) { return Icon::polygon; },
                    },
                    entity);
}

QPixmap iconPixmap(Icon icon, int size, const QColor& color, qreal devicePixelRatio) {
  const QString key = QStringLiteral("ostrelon-icon-%1-%2-%3-%4")
                          .arg(static_cast<int>(icon))
                          .arg(size)
                          .arg(color.name(QColor::HexArgb))
                          .arg(devicePixelRatio);
  QPixmap pixmap;
  if (QPixmapCache::find(key, &pixmap)) return pixmap;
  const QByteArray name = color.name().toLatin1();
  const QByteArray body = QByteArray(drawingOf(icon)).replace('%', name);
  const QByteArray attributes = R"(fill="none" stroke-linecap="round" stroke-linejoin="round" stroke=")" +
                                name + R"(" opacity=")" + QByteArray::number(color.alphaF()) +
                                R"(" stroke-width=")" + (size <= 14 ? "2" : "1.75") + "\"";
  pixmap = renderedSvg(body, attributes, size, devicePixelRatio);
  QPixmapCache::insert(key, pixmap);
  return pixmap;
}

void paintIcon(QPainter& painter, Icon icon, const QRectF& box, int size, const QColor& color) {
  if (icon == Icon::none) return;
  const QPixmap pixmap = iconPixmap(icon, size, color, painter.device()->devicePixelRatioF());
  painter.drawPixmap(
      QPointF(std::round(box.center().x() - size / 2.0), std::round(box.center().y() - size / 2.0)), pixmap);
}

QPixmap logoPixmap(int size, const Theme& theme, qreal devicePixelRatio) {
  const QByteArray body =
      R"(<path stroke-width="4" d="M12 19.75A7.75 7.75 0 1 1 19.75 12" stroke=")" +
      theme.foreground().name().toLatin1() +
      R"("/><path stroke-width="2" stroke-linecap="round" d="M20.83 14.2A9.1 9.1 0 0 1 14.2 20.83" stroke=")" +
      theme.active().name().toLatin1() + R"("/>)";
  return renderedSvg(body, R"(fill="none")", size, devicePixelRatio);
}

QIcon programIcon() {
  QSvgRenderer drawing(QStringLiteral(":/icon/org.ostrelon.Ostrelon.svg"));
  QIcon icon;
  for (const int size : {16, 24, 32, 48, 64, 128, 256}) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    drawing.render(&painter);
    icon.addPixmap(pixmap);
  }
  return icon;
}

}  // namespace ostrelon
