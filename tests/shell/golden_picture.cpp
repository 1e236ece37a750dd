#include "shell/golden_picture.h"

#include <QDir>
#include <QString>
#include <algorithm>
#include <cstdlib>

namespace ostrelon::testing {
namespace {

/// The most by which a colour component may differ before a pixel counts as different.
constexpr int kComponentTolerance = 24;
/// The share of pixels that may be different.
constexpr double kPixelTolerance = 0.002;

QString goldenPath(const std::string& name) {
  return QStringLiteral(OSTRELON_SOURCE_DIR "/tests/shell/golden/%1.png").arg(QString::fromStdString(name));
}

int distance(QRgb a, QRgb b) {
  return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                   std::abs(qBlue(a) - qBlue(b)), std::abs(qAlpha(a) - qAlpha(b))});
}

}  // namespace

::testing::AssertionResult looksLikeGolden(const QImage& picture, const std::string& name) {
  if (std::getenv("OSTRELON_UPDATE_GOLDEN") != nullptr) {
    picture.save(goldenPath(name));
    return ::testing::AssertionSuccess();
  }
  return looksAlike(picture, QImage(goldenPath(name)), name);
}

::testing::AssertionResult looksAlike(const QImage& gotPicture, const QImage& wantedPicture,
                                      const std::string& name) {
  const QImage got = gotPicture.convertToFormat(QImage::Format_ARGB32);
  const QImage wanted = wantedPicture.convertToFormat(QImage::Format_ARGB32);
  QImage difference(got.size(), QImage::Format_ARGB32);
  difference.fill(Qt::white);
  qint64 different = 0;
  if (got.size() == wanted.size()) {
    for (int y = 0; y < got.height(); ++y) {
      for (int x = 0; x < got.width(); ++x) {
        if (distance(got.pixel(x, y), wanted.pixel(x, y)) <= kComponentTolerance) continue;
        difference.setPixel(x, y, qRgb(255, 0, 0));
        ++different;
      }
    }
    const double share = static_cast<double>(different) / (static_cast<double>(got.width()) * got.height());
    if (share <= kPixelTolerance) return ::testing::AssertionSuccess();
  }
  const QDir folder(QStringLiteral(OSTRELON_BINARY_DIR "/golden"));
  folder.mkpath(QStringLiteral("."));
  const QString base = folder.filePath(QString::fromStdString(name));
  got.save(base + QStringLiteral(".got.png"));
  wanted.save(base + QStringLiteral(".wanted.png"));
  difference.save(base + QStringLiteral(".difference.png"));
  return ::testing::AssertionFailure() << name << ": " << got.width() << "x" << got.height() << " with "
                                       << different << " different pixels; wanted " << wanted.width() << "x"
                                       << wanted.height() << "; see " << base.toStdString() << ".*.png";
}

}  // namespace ostrelon::testing
