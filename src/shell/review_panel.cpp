#include "shell/review_panel.h"

namespace ostrelon {

ReviewPanel::ReviewPanel(Theme& theme, const QString& name, const QString& identifier, Icon icon,
                         QWidget* parent)
    : Panel(theme, Qt::LeftEdge, parent), unfoldButton_(new Button(theme, Button::Kind::plain, {}, this)) {
  setObjectName(identifier);
  setAccessibleName(name);
  unfoldButton_->setObjectName(identifier + QStringLiteral(".unfold"));
  unfoldButton_->setIconDrawing(icon, 18);
  unfoldButton_->setPaddings(7, 30);
  unfoldButton_->setAccessibleName(QStringLiteral("Show %1").arg(name.toLower()));
  unfoldButton_->setToolTip(name);
  unfoldButton_->hide();
  connect(unfoldButton_, &QPushButton::clicked, this, &ReviewPanel::unfoldRequested);
}

void ReviewPanel::setRail(bool rail) {
  if (rail_ == rail) return;
  rail_ = rail;
  settle();
}

void ReviewPanel::resizeEvent(QResizeEvent* event) {
  Panel::resizeEvent(event);
  settle();
}

void ReviewPanel::showEvent(QShowEvent* event) {
  Panel::showEvent(event);
  settle();
}

void ReviewPanel::settle() {
  unfoldButton_->setGeometry((width() - 32 + 1) / 2, 8, 32, 30);
  for (QObject* child : children()) {
    auto* widget = qobject_cast<QWidget*>(child);
    if (widget != nullptr) widget->setVisible((widget == unfoldButton_) == rail_);
  }
  if (!rail_) place();
}

}  // namespace ostrelon
