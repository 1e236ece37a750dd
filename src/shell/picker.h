// A choice of one from a few, painted from the theme.
#pragma once

#include <QComboBox>

#include "shell/theme.h"

namespace ostrelon {

/// A picker of 28 px, painted from the theme.
class Picker final : public QComboBox {
 public:
  explicit Picker(Theme& theme, QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Theme& theme_;
};

}  // namespace ostrelon
