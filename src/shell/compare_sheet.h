// What to compare the drawing with, asked over the main window: the last save, a branch, a checkpoint or a
// file.
#pragma once

#include <QAbstractListModel>
#include <vector>

#include "app/comparison_choices.h"
#include "shell/dialog_sheet.h"
#include "shell/rows_view.h"

namespace ostrelon {

class CompareSheet final : public DialogSheet {
  Q_OBJECT

 public:
  CompareSheet(Application& application, Theme& theme, QWidget& window);

 private:
  void compare();

  Application& application_;
  std::vector<ComparisonChoice> choices_;
  RowsView* list_ = nullptr;  // null where there is nothing but files
};

}  // namespace ostrelon
