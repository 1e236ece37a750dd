// A whole drawing as a picture, painted as the canvas paints it. Any thread may do so.
#pragma once

#include <QImage>
#include <optional>

#include "core/drawing.h"
#include "core/sketch_box.h"
#include "core/sketch_viewport.h"
#include "core/theme_palette.h"

namespace ostrelon {

/// What a drawing covers, its walls with their thickness, sketch units; absent where it is empty.
std::optional<SketchBox> shownBounds(const Drawing& drawing);
/// The view that shows these bounds in the middle of `size`, with `margin` around them, view points: however
/// large a drawing is, and at most twice as large as a fresh view shows it. `bounds`: sketch units; absent
/// for an empty drawing.
SketchViewport wholeDrawingView(const std::optional<SketchBox>& bounds, SketchSize size, double margin);

/// The drawing on its background, without a grid. `size`: view points; one of them is `pixelRatio` pixels.
QImage smallPicture(const Drawing& drawing, QSize size, double pixelRatio, const ThemePalette& palette);

}  // namespace ostrelon
