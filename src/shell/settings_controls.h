// The controls that only the settings have: theme boards, a stepper, boxes and a progress line.
#pragma once

#include <QProgressBar>
#include <QRadioButton>
#include <QSpinBox>

#include "core/theme_palette.h"
#include "documents/app_settings.h"
#include "shell/controls.h"

namespace ostrelon {

/// A small board in the colours of a theme, with its name below.
class ThemeCard final : public QRadioButton {
 public:
  /// The space around the board, px.
  static constexpr int kRing = 4;

  ThemeCard(Theme& theme, AppearanceMode mode, QWidget* parent = nullptr);
  AppearanceMode mode() const { return mode_; }
  QSize sizeHint() const override { return {120, 108}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool hitButton(const QPoint& position) const override { return rect().contains(position); }

 private:
  Theme& theme_;
  AppearanceMode mode_;
};

/// A number between a minus and a plus.
class Stepper final : public QWidget {
  Q_OBJECT

 public:
  Stepper(Theme& theme, int least, int most, const QString& suffix, QWidget* parent = nullptr);
  int value() const { return field_->value(); }
  void setValue(int value);
  QSpinBox* field() { return field_; }

 Q_SIGNALS:
  void changed(int value);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void stepBy(int steps);

  Theme& theme_;
  Button* minus_;
  QSpinBox* field_;
  Button* plus_;
};

/// A box inside the window: of the canvas' colour, or a field's with a folder in it.
class SettingsBox final : public QWidget {
 public:
  SettingsBox(Theme& theme, bool isFolderField, QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Theme& theme_;
  bool isFolderField_;
};

/// A thin line that fills from the left; its value runs from 0 to 1000.
class ProgressLine final : public QProgressBar {
 public:
  explicit ProgressLine(Theme& theme, QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Theme& theme_;
};

}  // namespace ostrelon
