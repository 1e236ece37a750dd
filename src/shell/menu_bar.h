// Qt menus from the program's menu table.
#pragma once

#include <QMenuBar>
#include <vector>

#include "app/application.h"
#include "app/menu.h"
#include "shell/observation.h"

namespace ostrelon {

class MenuBar final : public QMenuBar {
 public:
  explicit MenuBar(Application& application, QWidget* parent = nullptr);

 private:
  struct Row {
    const MenuCommand* command;
    QAction* action;
  };

  void refresh();
  void fillSubmenu(QMenu& menu, const MenuCommand& command);

  Application& application_;
  std::vector<Row> rows_;
  ScheduledUpdate update_;
};

}  // namespace ostrelon
