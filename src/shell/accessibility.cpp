#include "shell/accessibility.h"

#include <QAccessibleWidget>
#include <QHash>
#include <QPersistentModelIndex>
#include <QPointer>
#include <algorithm>

#include "shell/rows_view.h"

namespace ostrelon {
namespace {

// One row. It keeps to its row however the rows before it come and go.
class RowAccessible final : public QAccessibleInterface, public QAccessibleActionInterface {
 public:
  RowAccessible(RowsView& view, const QModelIndex& index) : view_(&view), index_(index) {}

  int row() const { return index_.row(); }

  bool isValid() const override { return view_ != nullptr && index_.isValid(); }
  QObject* object() const override { return nullptr; }
  QWindow* window() const override { return view_ != nullptr ? view_->window()->windowHandle() : nullptr; }
  QAccessibleInterface* parent() const override {
    return QAccessible::queryAccessibleInterface(view_.data());
  }
  QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
  QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }

  QString text(QAccessible::Text kind) const override {
    if (!isValid()) return {};
    if (kind == QAccessible::Name) return index_.data(Qt::AccessibleTextRole).toString();
    if (kind == QAccessible::Description) return index_.data(Qt::AccessibleDescriptionRole).toString();
    return {};
  }
  void setText(QAccessible::Text /*kind*/, const QString& /*text*/) override {}
  QAccessible::Role role() const override { return QAccessible::ListItem; }
  QRect rect() const override {
    if (!isValid()) return {};
    const QRect inView = view_->visualRect(index_);
    return {view_->viewport()->mapToGlobal(inView.topLeft()), inView.size()};
  }
  QAccessible::State state() const override {
    QAccessible::State state;
    if (!isValid()) {
      state.invalid = true;
      return state;
    }
    state.selectable = true;
    state.selected = view_->isRowSelected(index_.row());
    state.focusable = true;
    state.focused = view_->hasFocus() && view_->currentIndex() == index_;
    state.disabled = !view_->isEnabled();
    state.invisible = !view_->isVisible();
    state.offscreen = !view_->viewport()->rect().intersects(view_->visualRect(index_));
    return state;
  }

  void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
  }
  QStringList actionNames() const override { return {pressAction()}; }
  void doAction(const QString& name) override {
    if (isValid() && name == pressAction()) Q_EMIT view_->clicked(index_);
  }
  QStringList keyBindingsForAction(const QString& /*name*/) const override { return {}; }

 private:
  QPointer<RowsView> view_;
  QPersistentModelIndex index_;
};

class RowsAccessible final : public QAccessibleWidget {
 public:
  explicit RowsAccessible(RowsView& view) : QAccessibleWidget(&view, QAccessible::List), view_(view) {}
  ~RowsAccessible() override {
    for (const QAccessible::Id id : std::as_const(rows_)) QAccessible::deleteAccessibleInterface(id);
  }
  RowsAccessible(const RowsAccessible&) = delete;
  RowsAccessible& operator=(const RowsAccessible&) = delete;

  int childCount() const override { return view_.model() != nullptr ? view_.model()->rowCount() : 0; }
  QAccessibleInterface* child(int position) const override {
    if (position < 0 || position >= childCount()) return nullptr;
    const QPersistentModelIndex index(view_.model()->index(position, 0));
    const auto known = rows_.constFind(index);
    if (known != rows_.constEnd()) return QAccessible::accessibleInterface(*known);
    forgetRowsThatAreGone();
    auto* made = new RowAccessible(view_, index);
    rows_.insert(index, QAccessible::registerAccessibleInterface(made));
    return made;
  }
  QAccessibleInterface* childAt(int x, int y) const override {
    const QModelIndex index = view_.indexAt(view_.viewport()->mapFromGlobal(QPoint(x, y)));
    return index.isValid() ? child(index.row()) : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* wanted) const override {
    const auto* row = dynamic_cast<const RowAccessible*>(wanted);
    return row != nullptr && row->isValid() ? row->row() : -1;
  }
  QAccessibleInterface* focusChild() const override {
    return view_.hasFocus() && view_.currentIndex().isValid() ? child(view_.currentIndex().row()) : nullptr;
  }

 private:
  void forgetRowsThatAreGone() const {
    constexpr qsizetype kMany = 256;
    if (rows_.size() < forgetAt_) return;
    erase_if(rows_, [](const decltype(rows_)::const_iterator& entry) {
      if (entry.key().isValid()) return false;
      QAccessible::deleteAccessibleInterface(entry.value());
      return true;
    });
    forgetAt_ = std::max(kMany, 2 * rows_.size());
  }

  RowsView& view_;
  mutable QHash<QPersistentModelIndex, QAccessible::Id> rows_;
  mutable qsizetype forgetAt_ = 256;
};

constexpr const char* kRoleProperty = "accessibleRole";

QAccessible::Role roleOf(const QWidget& widget) {
  const QVariant told = widget.property(kRoleProperty);
  if (told.isValid()) return static_cast<QAccessible::Role>(told.toInt());
  if (widget.windowType() == Qt::Window) return QAccessible::Window;
  if (widget.windowType() == Qt::Dialog || widget.windowType() == Qt::Tool) return QAccessible::Dialog;
  return widget.accessibleName().isEmpty() ? QAccessible::Client : QAccessible::Grouping;
}

// A plain widget. Its role is looked up when it is asked for, since names and roles come after the
// first question.
class PlainAccessible final : public QAccessibleWidget {
 public:
  explicit PlainAccessible(QWidget& widget) : QAccessibleWidget(&widget) {}
  QAccessible::Role role() const override { return roleOf(*widget()); }
};

// Qt asks for each class of an object, the last one first, until one answers.
QAccessibleInterface* makeAccessible(const QString& className, QObject* object) {
  // The lists have no meta-object of their own, so Qt asks for them under their base's name.
  if (className == QStringLiteral("QAbstractItemView")) {
    auto* rows = dynamic_cast<RowsView*>(object);
    return rows != nullptr ? new RowsAccessible(*rows) : nullptr;
  }
  if (className != QStringLiteral("QWidget")) return nullptr;
  return new PlainAccessible(*static_cast<QWidget*>(object));
}

}  // namespace

void installAccessibility() { QAccessible::installFactory(makeAccessible); }

void setAccessibleRole(QWidget& widget, QAccessible::Role role) {
  widget.setProperty(kRoleProperty, static_cast<int>(role));
}

}  // namespace ostrelon
