// How widgets follow the state that they show: an operation that changed one of their fields schedules one
// update, which runs once the operation and whatever else is due have ended.
#pragma once

#include <QTimer>
#include <QWidget>
#include <functional>
#include <utility>

#include "core/observable.h"

namespace ostrelon {

/// Calls `update` once on the event loop after any number of changes. Belongs to its widget.
class ScheduledUpdate {
 public:
  /// `observed`: the workspace, or a part of it that can be observed.
  template <class Observed>
  ScheduledUpdate(Observed& observed, FieldMask fields, QObject* context, std::function<void()> update)
      : timer_(new QTimer(context)) {
    timer_->setSingleShot(true);
    timer_->setInterval(0);
    QObject::connect(timer_, &QTimer::timeout, context, std::move(update));
    subscription_ = observed.observe(fields, [timer = timer_](FieldMask) {
      if (!timer->isActive()) timer->start();
    });
  }

 private:
  QTimer* timer_;  // owned by the context
  Subscription subscription_;
};

}  // namespace ostrelon
