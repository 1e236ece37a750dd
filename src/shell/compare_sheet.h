// Another drawing, asked for over the main window: the last save, a branch, a checkpoint or a file. For
// comparing the open drawing with it, and for merging it.
#pragma once

#include <QAbstractListModel>
#include <functional>
#include <vector>

#include "app/comparison_choices.h"
#include "shell/dialog_sheet.h"
#include "shell/rows_view.h"

namespace ostrelon {

class CompareSheet final : public DialogSheet {
  Q_OBJECT

 public:
  /// What the sheet is for.
  struct Purpose {
    QString identifier;   ///< "compare"
    QString title;        ///< "Compare with"
    QString action;       ///< of the button: "Compare"
    QString explanation;  ///< shown above the list
    QString nothing;      ///< shown in the place of an empty list
    std::vector<ComparisonChoice> choices;
    std::function<void(const ComparisonChoice& choice)> choose;
    std::function<void()> chooseFile;
  };
  static Purpose comparing(Application& application);
  static Purpose merging(Application& application);

  CompareSheet(Application& application, Theme& theme, QWidget& window, Purpose purpose);

 private:
  void take();

  Purpose purpose_;
  RowsView* list_ = nullptr;  // null where there is nothing but files
};

}  // namespace ostrelon
