#include "shell/page_controls.h"

#include <QGridLayout>
#include <QVBoxLayout>

#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr int kLabelColumn = 116;
constexpr int kFormSpacing = 8;
constexpr const char* kOther = "other";

}  // namespace

QGridLayout* makeForm(QWidget* parent) {
  auto* form = new QGridLayout(parent);
  form->setContentsMargins(0, 0, 0, 0);
  form->setHorizontalSpacing(kFormSpacing);
  form->setVerticalSpacing(kFormSpacing);
  form->setColumnMinimumWidth(0, kLabelColumn);
  form->setColumnStretch(1, 1);
  return form;
}

TextLabel* addFormRow(QGridLayout& form, Theme& theme, const QString& label, QWidget& control) {
  auto* words = new TextLabel(theme, TextStyle::body, TextLabel::Rank::secondary, label);
  words->setBuddy(&control);
  control.setAccessibleName(label);
  const int row = form.rowCount();
  form.addWidget(words, row, 0);
  // Aligned, a control of fixed width does not hold its whole column to that width.
  const bool isFixed = control.sizePolicy().horizontalPolicy() == QSizePolicy::Fixed;
  form.addWidget(&control, row, 1, isFixed ? Qt::AlignLeft | Qt::AlignVCenter : Qt::Alignment());
  return words;
}

PageControls::PageControls(Theme& theme, const QString& prefix, const QString& noSheet, QWidget* parent)
    : QWidget(parent),
      canBeWithoutSheet_(!noSheet.isEmpty()),
      paper_(new Picker(theme)),
      scale_(new Picker(theme)),
      otherScale_(new Field(theme, true)),
      orientation_(new Picker(theme)) {
  QGridLayout& form = *makeForm(this);
  paper_->setObjectName(prefix + ".paper");
  if (canBeWithoutSheet_) {
    paper_->addItem(noSheet, QString());
    paper_->addItem(QStringLiteral("As Large as the Drawing"), QStringLiteral("own"));
  }
  for (const PaperSize& size : paperSizes()) paper_->addItem(qtText(size.name), qtText(size.name));
  addFormRow(form, theme, QStringLiteral("Sheet"), *paper_);

  scale_->setObjectName(prefix + ".scale");
  scale_->addItem(QStringLiteral("Fit to Sheet"), QString());
  for (const DrawingScale scale : commonScales()) {
    const QString text = qtText(drawingScaleText(scale));
    scale_->addItem(text, text);
    if (scale == DrawingScale{}) scale_->setCurrentIndex(scale_->count() - 1);
  }
  scale_->addItem(QStringLiteral("Other…"), kOther);
  scaleRow_ = {scale_, addFormRow(form, theme, QStringLiteral("Scale"), *scale_)};
  otherScale_->setObjectName(prefix + ".otherScale");
  otherScale_->setItalicPlaceholder(QStringLiteral("1/4\" = 1' or 1:50"));
  otherScaleRow_ = {otherScale_, addFormRow(form, theme, QStringLiteral("Other scale"), *otherScale_)};

  orientation_->setObjectName(prefix + ".orientation");
  orientation_->addItem(QStringLiteral("Automatic"), QStringLiteral("automatic"));
  orientation_->addItem(QStringLiteral("Portrait"), QStringLiteral("portrait"));
  orientation_->addItem(QStringLiteral("Landscape"), QStringLiteral("landscape"));
  orientationRow_ = {orientation_, addFormRow(form, theme, QStringLiteral("Orientation"), *orientation_)};

  for (Picker* picker : {paper_, scale_, orientation_}) {
    connect(picker, &QComboBox::currentIndexChanged, this, [this] {
      showRows();
      Q_EMIT changed();
    });
  }
  connect(otherScale_, &QLineEdit::editingFinished, this, &PageControls::changed);
  showRows();
}

void PageControls::chooseFitToSheet() { scale_->setCurrentIndex(0); }

bool PageControls::isOnPaper() const { return !paper_->currentData().toString().isEmpty(); }

void PageControls::showRows() {
  const bool isOwnSheet = paper_->currentData().toString() == QStringLiteral("own");
  const bool isOther = scale_->currentData().toString() == kOther;
  for (QWidget* widget : scaleRow_) widget->setVisible(isOnPaper());
  for (QWidget* widget : otherScaleRow_) widget->setVisible(isOnPaper() && isOther);
  for (QWidget* widget : orientationRow_) widget->setVisible(isOnPaper() && !isOwnSheet);
}

void PageControls::apply(ExportOptions& options) const {
  options.paper.reset();
  options.scale.reset();
  options.orientation = PageOrientation::automatic;
  if (!isOnPaper()) return;
  const QString paper = paper_->currentData().toString();
  const QString scale = scale_->currentData().toString();
  const bool isOwnSheet = paper == QStringLiteral("own");
  if (!isOwnSheet) {
    setExportOption(options, "paper", plainText(paper));
    setExportOption(options, "orientation", plainText(orientation_->currentData().toString()));
  }
  if (scale == kOther) {
    setExportOption(options, "scale", plainText(otherScale_->text()));
  } else if (!scale.isEmpty()) {
    setExportOption(options, "scale", plainText(scale));
  } else if (isOwnSheet) {
    throw ExportOptionError("A sheet as large as the drawing needs a scale.");
  }
}

}  // namespace ostrelon
