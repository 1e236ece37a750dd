// Three switches for the look of a plan that is exported or printed. They begin as the document has them.
#pragma once

#include <QString>
#include <QWidget>
#include <array>
#include <vector>

#include "core/plan.h"

namespace ostrelon {

class Switch;
class Theme;

class LookSwitches : public QWidget {
  Q_OBJECT

 public:
  /// `prefix` goes before the object names: "export" makes "export.cleanWalls".
  LookSwitches(Theme& theme, const QString& prefix, const PlanLook& look);

  PlanLook look() const;
  /// From top to bottom.
  std::vector<QWidget*> inTabOrder() const;

 Q_SIGNALS:
  void changed();

 private:
  std::array<Switch*, 3> switches_{};
};

}  // namespace ostrelon
