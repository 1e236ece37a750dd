#include "shell/qt_dialogs.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QTreeView>
#include <QVBoxLayout>
#include <memory>

#include "core/sketch_entity.h"
#include "shell/dialog_sheet.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr int kAlertWidth = 420;
constexpr int kAlertPadding = 24;

QString documentFilter() { return QStringLiteral("Ostrelon documents (*.ostrel *.OSTREL)"); }

// Sets up the desktop's panel for what is asked. `lastFolder`: where it starts when nothing else is said.
void prepare(QFileDialog& panel, const DialogRequest& request, const QString& lastFolder) {
  const auto startIn = [&](const std::filesystem::path& folder) {
    const QString start = folder.empty() ? lastFolder : qtText(folder.string());
    if (!start.isEmpty()) panel.setDirectory(start);
  };
  std::visit(Overloaded{
                 [&](const OpenPanel& open) {
                   panel.setWindowTitle(QStringLiteral("Open"));
                   panel.setFileMode(QFileDialog::ExistingFile);
                   panel.setNameFilters({documentFilter(), QStringLiteral("All files (*)")});
                   startIn(open.startingFolder);
                 },
                 [&](const SavePanel& save) {
                   panel.setWindowTitle(QStringLiteral("Save As"));
                   panel.setAcceptMode(QFileDialog::AcceptSave);
                   panel.setFileMode(QFileDialog::AnyFile);
                   panel.setNameFilters({documentFilter(), QStringLiteral("JSON (*.json)")});
                   panel.setDefaultSuffix(QStringLiteral("ostrel"));
                   startIn(save.startingFolder);
                   panel.selectFile(qtText(save.suggestedName));
                 },
                 [&](const ExportPanel& save) {
                   panel.setWindowTitle(QStringLiteral("Export"));
                   panel.setAcceptMode(QFileDialog::AcceptSave);
                   panel.setFileMode(QFileDialog::AnyFile);
                   // The name that is offered ends in the kind that was chosen.
                   const QString kind = QFileInfo(qtText(save.suggestedName)).suffix();
                   panel.setNameFilters({QStringLiteral("%1 (*.%2 *.%1)").arg(kind.toUpper(), kind)});
                   panel.setDefaultSuffix(kind);
                   startIn(save.startingFolder);
                   panel.selectFile(qtText(save.suggestedName));
                 },
                 [&](const ImportPanel& import) {
                   panel.setWindowTitle(QStringLiteral("Import DXF"));
                   panel.setFileMode(QFileDialog::ExistingFile);
                   panel.setNameFilters(
                       {QStringLiteral("DXF drawings (*.dxf *.DXF)"), QStringLiteral("All files (*)")});
                   startIn(import.startingFolder);
                 },
                 [&](const FolderPanel& folder) {
                   panel.setWindowTitle(qtText(folder.message));
                   panel.setLabelText(QFileDialog::Accept, QStringLiteral("Choose"));
                   panel.setFileMode(QFileDialog::Directory);
                   panel.setOption(QFileDialog::ShowDirsOnly);
                   startIn(folder.startingFolder);
                 },
                 [](const TextPrompt&) {},
                 [](const Alert&) {},
             },
             request);
}

// Where the desktop has no file panel, Qt shows its own. Its names take what the other columns leave.
void layOutColumns(QFileDialog& panel) {
  auto* table = panel.findChild<QTreeView*>(QStringLiteral("treeView"));
  if (table == nullptr) return;
  panel.resize(760, 480);
  QHeaderView* header = table->header();
  header->setStretchLastSection(false);
  for (int column = 1; column < header->count(); ++column) {
    header->setSectionResizeMode(column, QHeaderView::ResizeToContents);
  }
  header->setSectionResizeMode(0, QHeaderView::Stretch);
}

}  // namespace

void QtDialogs::ask(const DialogRequest& request, std::function<void(DialogAnswer)> answered) {
  QWidget* window = window_;
  for (const QPointer<QWidget>& other : otherWindows_) {
    if (other != nullptr && other->isActiveWindow()) window = other;
  }
  if (window == nullptr) {
    answered(std::nullopt);
    return;
  }
  if (const auto* prompt = std::get_if<TextPrompt>(&request)) {
    askForText(*window, *prompt, std::move(answered));
  } else if (const auto* alert = std::get_if<Alert>(&request)) {
    askAlert(*window, *alert, std::move(answered));
  } else {
    askForFile(*window, request, std::move(answered));
  }
}

void QtDialogs::askForFile(QWidget& window, const DialogRequest& request,
                           std::function<void(DialogAnswer)> answered) {
  QWidget* parent = QApplication::activeWindow();
  auto* panel = new QFileDialog(parent != nullptr ? parent->window() : &window);
  panel->setObjectName(QStringLiteral("filePanel"));
  panel->setAttribute(Qt::WA_DeleteOnClose);
  prepare(*panel, request, lastFolder_);
  layOutColumns(*panel);
  QObject::connect(panel, &QFileDialog::finished, panel,
                   [this, panel, answered = std::move(answered)](int result) {
                     const QStringList chosen = panel->selectedFiles();
                     if (result == QDialog::Accepted && !chosen.isEmpty()) {
                       lastFolder_ = panel->directory().path();
                       answered(plainText(chosen.front()));
                     } else {
                       answered(std::nullopt);
                     }
                   });
  panel->open();
}

void QtDialogs::askForText(QWidget& window, const TextPrompt& prompt,
                           std::function<void(DialogAnswer)> answered) {
  auto* sheet = new DialogSheet(theme_, window, kAlertWidth, kAlertPadding);
  sheet->setObjectName(QStringLiteral("prompt"));
  sheet->setAccessibleName(qtText(prompt.title));
  sheet->setButtonHeight(28);
  auto* field = new Field(theme_, false, nullptr);
  field->setFont(fontOf(TextStyle::body));
  field->setObjectName(QStringLiteral("prompt.text"));
  field->setAccessibleName(qtText(prompt.informativeText));
  field->setText(qtText(prompt.initialText));
  field->selectAll();
  QVBoxLayout& content = sheet->content();
  content.addWidget(new TextLabel(theme_, TextStyle::title, TextLabel::Rank::primary, qtText(prompt.title)));
  content.addSpacing(4);
  auto* text =
      new TextLabel(theme_, TextStyle::body, TextLabel::Rank::secondary, qtText(prompt.informativeText));
  text->setWordWrap(true);
  content.addWidget(text);
  content.addSpacing(12);
  content.addWidget(field);
  sheet->addToTabOrder(field);
  Button* cancel = sheet->addButton(QStringLiteral("Cancel"), Button::Kind::outlined, "prompt.cancel");
  Button* confirm = sheet->addButton(qtText(prompt.confirmButton), Button::Kind::primary, "prompt.confirm");
  sheet->setCancelButton(cancel);
  sheet->setDefaultButton(confirm);
  sheet->setFirstFocus(field);
  const auto finish = [sheet, answered = std::move(answered)](DialogAnswer answer) {
    sheet->deleteLater();
    sheet->hide();
    answered(std::move(answer));
  };
  QObject::connect(cancel, &QPushButton::clicked, sheet, [finish] { finish(std::nullopt); });
  QObject::connect(confirm, &QPushButton::clicked, sheet,
                   [finish, field] { finish(plainText(field->text())); });
  sheet->open();
}

void QtDialogs::askAlert(QWidget& window, const Alert& alert, std::function<void(DialogAnswer)> answered) {
  auto* sheet = new DialogSheet(theme_, window, kAlertWidth, kAlertPadding);
  sheet->setObjectName(QStringLiteral("alert"));
  sheet->setAccessibleName(qtText(alert.message));
  sheet->setAccessibleDescription(qtText(alert.informativeText));
  sheet->setButtonHeight(28);
  QVBoxLayout& content = sheet->content();
  auto* message = new TextLabel(theme_, TextStyle::title, TextLabel::Rank::primary, qtText(alert.message));
  message->setWordWrap(true);
  content.addWidget(message);
  content.addSpacing(8);
  auto* informative =
      new TextLabel(theme_, TextStyle::body, TextLabel::Rank::primary, qtText(alert.informativeText));
  informative->setWordWrap(true);
  content.addWidget(informative);

  const auto finish = [sheet, answered = std::move(answered)](DialogAnswer answer) {
    sheet->deleteLater();
    sheet->hide();
    answered(std::move(answer));
  };
  // The first button is the default; one that discards work is set apart at the left. The row runs from the
  // right, and Tab in the order that was given.
  for (std::size_t at = 0; at < alert.buttons.size(); ++at) {
    const std::string& title = alert.buttons[at];
    const bool isDefault = at == 0;
    const bool isCancel = at == alert.cancelButton;
    const bool isDangerous = at == alert.discardingButton;
    const QString identifier = QStringLiteral("alert.") + qtText(title);
    const Button::Kind kind = isDefault     ? Button::Kind::primary
                              : isDangerous ? Button::Kind::dangerous
                                            : Button::Kind::outlined;
    Button* button = isDangerous
                         ? sheet->addLeftButton(qtText(title), kind, identifier)
                         : sheet->addButton(qtText(title), kind, identifier, DialogSheet::Order::fromRight);
    if (isDefault) sheet->setDefaultButton(button);
    if (isDefault) sheet->setFirstFocus(button);
    if (isCancel) sheet->setCancelButton(button);
    QObject::connect(button, &QPushButton::clicked, sheet, [finish, title] { finish(title); });
  }
  sheet->open();
}

}  // namespace ostrelon
