// Small pictures of many drawings, made away from the main thread while they are in sight, and kept as long
// as there is room. A list asks for those of its rows each time it paints them:
//
//   shelf.startWanting();                    // what was asked for and not begun is no longer wanted
//   shelf.find(key, read, devicePixelRatio)  // for each row, from top to bottom
//
// They follow the theme and the device's pixel ratio by being made anew.
#pragma once

#include <QCache>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QSize>
#include <functional>
#include <memory>
#include <vector>

#include "core/drawing.h"
#include "platform/scheduler.h"
#include "shell/theme.h"

namespace ostrelon {

/// How a drawing looks in small, and what it holds.
struct SmallPicture {
  QImage image;     ///< null where it could not be read
  QString content;  ///< counts of entities, else why it could not be read
};

class PictureShelf final : public QObject {
  Q_OBJECT

 public:
  /// Reads a drawing, on any thread. Throws `UserError`.
  using Read = std::function<Drawing()>;

  /// `scheduler` and `theme` must outlive the object. `size`: of each picture, view points.
  PictureShelf(Scheduler& scheduler, Theme& theme, QSize size, QObject* parent = nullptr);

  QSize size() const { return size_; }
  void startWanting() { wanted_.clear(); }
  /// The picture of the drawing that `key` names; null while it is being made.
  const SmallPicture* find(const QString& key, const Read& read, double pixelRatio);
  /// What the drawing holds, where that is known already.
  QString content(const QString& key) const { return contents_.value(key); }

 Q_SIGNALS:
  void arrived();

 private:
  struct Making;
  struct Wanted {
    QString key;
    Read read;
  };

  void clear();
  void makeNext();

  Scheduler& scheduler_;
  Theme& theme_;
  QSize size_;
  double pixelRatio_ = 1;
  int generation_ = 0;  // pictures that were begun in an earlier one are of no use any more
  QCache<QString, SmallPicture> pictures_;
  QHash<QString, QString> contents_;
  std::vector<Wanted> wanted_;
  std::vector<std::shared_ptr<Making>> underWay_;
};

}  // namespace ostrelon
