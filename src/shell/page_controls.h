// How a drawing lies on paper, asked in rows: the sheet, the scale, and which way the sheet lies.
#pragma once

#include <QWidget>

#include "exchange/export_options.h"
#include "shell/controls.h"
#include "shell/picker.h"

class QGridLayout;

namespace ostrelon {

/// Adds a row of a label and a control to a form of two columns; gives the label.
TextLabel* addFormRow(QGridLayout& form, Theme& theme, const QString& label, QWidget& control);
/// Rows of such a form, with the widths that all of them share.
QGridLayout* makeForm(QWidget* parent);

class PageControls final : public QWidget {
  Q_OBJECT

 public:
  /// With `noSheet` given, the first choice of sheet is none, under that name. Identifiers begin with
  /// `prefix`: "export" gives "export.paper".
  PageControls(Theme& theme, const QString& prefix, const QString& noSheet, QWidget* parent = nullptr);

  bool isOnPaper() const;
  /// Chooses the scale that fits the sheet, in place of the usual one.
  void chooseFitToSheet();
  /// Writes the choices into the options. Throws `ExportOptionError` for a scale that cannot be read.
  void apply(ExportOptions& options) const;

 Q_SIGNALS:
  void changed();

 private:
  void showRows();

  bool canBeWithoutSheet_;
  Picker* paper_;
  Picker* scale_;
  Field* otherScale_;
  Picker* orientation_;
  QList<QWidget*> scaleRow_;
  QList<QWidget*> otherScaleRow_;
  QList<QWidget*> orientationRow_;
};

}  // namespace ostrelon
