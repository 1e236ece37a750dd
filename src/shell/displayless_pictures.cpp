#include "shell/displayless_pictures.h"

#include <QGuiApplication>
#include <QLoggingCategory>
#include <memory>
#include <optional>

#include "shell/drawing_export.h"

namespace ostrelon {

namespace {

/// Qt's application object as SVG and PDF want it, on no display at all.
class DisplaylessApplication {
 public:
  DisplaylessApplication() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Qt's warnings about a session without a desktop are of no use here.
    QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false"));
    application_ = std::make_unique<QGuiApplication>(count_, arguments_);
  }

 private:
  int count_ = 1;
  char name_[9] = "ostrelon";
  char* arguments_[2] = {name_, nullptr};
  std::unique_ptr<QGuiApplication> application_;
};

}  // namespace

PagePictureMaker pagePicturesWithoutDisplay() {
  auto qt = std::make_shared<std::optional<DisplaylessApplication>>();
  return [qt](ExportFormat format, const PicturePage& page, const ExportOptions& options,
              const PagePaint& paint) {
    if (!qt->has_value()) qt->emplace();
    return pagePicture(format, page, options, paint).toStdString();
  };
}

PictureMaker picturesWithoutDisplay() {
  auto qt = std::make_shared<std::optional<DisplaylessApplication>>();
  return [qt](ExportFormat format, const EntityList& entities, std::span<const WallSystemSpec> systems,
              const ExportOptions& options) {
    const bool hasText = options.annotations != nullptr && !options.annotations->empty();
    if ((hasText || format != ExportFormat::png) && !qt->has_value()) qt->emplace();
    return drawingPictureBytes(format, entities, systems, options);
  };
}

}  // namespace ostrelon
