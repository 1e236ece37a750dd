// How widgets follow the one object: an operation that changed one of their fields schedules one
// update, which runs once the operation and whatever else is due have ended.
#pragma once

#include <QTimer>
#include <QWidget>
#include <functional>
#include <utility>

#include "core/sketch_view_model.h"

namespace ostrelon {

/// Calls `update` once on the event loop after any number of changes. Belongs to its widget.
class ScheduledUpdate {
 public:
  ScheduledUpdate(SketchViewModel& sketch, FieldMask fields, QObject* context, std::function<void()> update)
      : timer_(new QTimer(context)) {
    timer_->setSingleShot(true);
    timer_->setInterval(0);
    QObject::connect(timer_, &QTimer::timeout, context, std::move(update));
    subscription_ = sketch.observe(fields, [timer = timer_](const SketchChange&) {
      if (!timer->isActive()) timer->start();
    });
  }

 private:
  QTimer* timer_;  // owned by the context
  Subscription subscription_;
};

}  // namespace ostrelon
