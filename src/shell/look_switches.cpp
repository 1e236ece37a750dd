#include "shell/look_switches.h"

#include <QGridLayout>

#include "shell/controls.h"
#include "shell/page_controls.h"

namespace ostrelon {

namespace {

struct Part {
  const char* title;
  const char* name;
  bool PlanLook::*value;
};
constexpr std::array<Part, 3> kParts{Part{"Clean Walls", "cleanWalls", &PlanLook::cleanWalls},
                                     Part{"Filled Walls", "filledWalls", &PlanLook::filledWalls},
                                     Part{"Line Weights", "lineWeights", &PlanLook::lineWeights}};

}  // namespace

LookSwitches::LookSwitches(Theme& theme, const QString& prefix, const PlanLook& look) {
  QGridLayout& form = *makeForm(this);
  for (std::size_t i = 0; i < kParts.size(); ++i) {
    auto* part = new Switch(theme, {});
    part->setObjectName(prefix + QLatin1Char('.') + QLatin1String(kParts[i].name));
    part->setChecked(look.*kParts[i].value);
    addFormRow(form, theme, QLatin1String(kParts[i].title), *part);
    connect(part, &QCheckBox::toggled, this, &LookSwitches::changed);
    switches_[i] = part;
  }
}

PlanLook LookSwitches::look() const {
  PlanLook look;
  for (std::size_t i = 0; i < kParts.size(); ++i) look.*kParts[i].value = switches_[i]->isChecked();
  return look;
}

std::vector<QWidget*> LookSwitches::inTabOrder() const { return {switches_.begin(), switches_.end()}; }

}  // namespace ostrelon
