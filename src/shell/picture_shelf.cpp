#include "shell/picture_shelf.h"

#include <algorithm>
#include <utility>

#include "app/history_rows.h"
#include "platform/user_error.h"
#include "shell/drawing_picture.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

/// What is kept, KB of pixels.
constexpr int kRoom = 64 * 1024;
/// A large drawing does not hold up all the others.
constexpr std::size_t kAtOnce = 2;

}  // namespace

// What a thread needs for one picture, and what it makes.
struct PictureShelf::Making {
  QString key;
  Read read;
  ThemePalette palette;
  double pixelRatio = 1;
  int generation = 0;
  SmallPicture made;
  ScheduledTask task;
};

PictureShelf::PictureShelf(Scheduler& scheduler, Theme& theme, QSize size, QObject* parent)
    : QObject(parent), scheduler_(scheduler), theme_(theme), size_(size), pictures_(kRoom) {
  connect(&theme, &Theme::changed, this, [this] {
    clear();
    Q_EMIT arrived();
  });
}

void PictureShelf::clear() {
  ++generation_;
  pictures_.clear();
  wanted_.clear();
}

const SmallPicture* PictureShelf::find(const QString& key, const Read& read, double pixelRatio) {
  if (pixelRatio_ != pixelRatio) {
    clear();
    pixelRatio_ = pixelRatio;
  }
  if (const SmallPicture* kept = pictures_.object(key)) return kept;
  const bool isOnTheWay =
      std::any_of(
          underWay_.begin(), underWay_.end(),
          [&](const auto& making) { return making->key == key && making->generation == generation_; }) ||
      std::any_of(wanted_.begin(), wanted_.end(), [&](const Wanted& wanted) { return wanted.key == key; });
  if (isOnTheWay) return nullptr;
  wanted_.push_back({key, read});
  makeNext();
  return nullptr;
}

void PictureShelf::makeNext() {
  if (underWay_.size() >= kAtOnce || wanted_.empty()) return;
  auto making = std::make_shared<Making>();
  making->key = std::move(wanted_.front().key);
  making->read = std::move(wanted_.front().read);
  making->palette = theme_.palette();
  making->pixelRatio = pixelRatio_;
  making->generation = generation_;
  wanted_.erase(wanted_.begin());
  underWay_.push_back(making);
  making->task = scheduler_.inBackground(
      [making = making.get(), hold = making, size = size_] {
        try {
          const Drawing drawing = making->read();
          making->made = {smallPicture(drawing, size, making->pixelRatio, making->palette),
                          qtText(entityCountsText(drawing.entities))};
        } catch (const std::exception& error) {
          making->made.content = QString::fromUtf8(error.what());
        }
      },
      [this, making] {
        std::erase(underWay_, making);
        if (making->generation == generation_) {
          const auto cost = std::max<qsizetype>(1, making->made.image.sizeInBytes() / 1024);
          contents_.insert(making->key, making->made.content);
          pictures_.insert(making->key, new SmallPicture(std::move(making->made)), static_cast<int>(cost));
        }
        makeNext();
        Q_EMIT arrived();
      });
}

}  // namespace ostrelon
