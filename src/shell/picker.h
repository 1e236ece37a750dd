// A choice of one from a few, painted from the theme.
#pragma once

#include <QComboBox>

#include "shell/theme.h"

namespace ostrelon {

/// A picker of 28 px, painted from the theme. A tooltip shows a choice that is longer.
class Picker final : public QComboBox {
 public:
  explicit Picker(Theme& theme, QWidget* parent = nullptr);

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  QString shownText() const;

  Theme& theme_;
};

}  // namespace ostrelon
