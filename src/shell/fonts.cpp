#include "shell/fonts.h"

#include <QStringList>

namespace ostrelon {
namespace {

struct Face {
  enum class Family { text, display, mono } family;
  int pixelSize;
  int lineHeight;
  QFont::Weight weight;
  double letterSpacing = 0;  // px
};

Face faceOf(TextStyle style) {
  using Family = Face::Family;
  switch (style) {
    case TextStyle::heading:
      return {Family::text, 11, 16, QFont::DemiBold, 0.66};
    case TextStyle::caption:
      return {Family::text, 11, 16, QFont::Normal};
    case TextStyle::tag:
      return {Family::text, 11, 16, QFont::DemiBold};
    case TextStyle::small:
      return {Family::text, 12, 18, QFont::Normal};
    case TextStyle::badge:
      return {Family::text, 12, 18, QFont::Medium};
    case TextStyle::smallStrong:
      return {Family::text, 12, 18, QFont::DemiBold};
    case TextStyle::body:
      return {Family::text, 13, 20, QFont::Normal};
    case TextStyle::control:
      return {Family::text, 13, 20, QFont::Medium};
    case TextStyle::bodyStrong:
      return {Family::text, 13, 20, QFont::DemiBold};
    case TextStyle::title:
      return {Family::text, 15, 22, QFont::DemiBold};
    case TextStyle::wordmark:
      return {Family::display, 15, 22, QFont::DemiBold};
    case TextStyle::display:
      return {Family::display, 20, 28, QFont::DemiBold};
    case TextStyle::mono:
      return {Family::mono, 12, 18, QFont::Normal};
    case TextStyle::measurement:
      return {Family::mono, 12, 18, QFont::Medium};
  }
  return {Family::text, 13, 20, QFont::Normal};
}

QStringList families(Face::Family family) {
  switch (family) {
    case Face::Family::text:
      return {"Inter", "DejaVu Sans"};
    case Face::Family::display:
      return {"Inter Display", "Inter", "DejaVu Sans"};
    case Face::Family::mono:
      return {"JetBrains Mono", "DejaVu Sans Mono"};
  }
  return {};
}

}  // namespace

QFont fontOf(TextStyle style) {
  const Face face = faceOf(style);
  QFont font;
  font.setFamilies(families(face.family));
  if (face.family == Face::Family::mono) {
    font.setStyleHint(QFont::Monospace);
    // Every character is shown as it was typed: no ligatures for "->" or ">=".
    font.setStyleStrategy(QFont::PreferNoShaping);
  }
  font.setPixelSize(face.pixelSize);
  font.setWeight(face.weight);
  // Widths that do not follow the pixel grid, so that words are spaced as drawn at every scale.
  font.setHintingPreference(QFont::PreferNoHinting);
  if (face.letterSpacing != 0) font.setLetterSpacing(QFont::AbsoluteSpacing, face.letterSpacing);
  return font;
}

int lineHeightOf(TextStyle style) { return faceOf(style).lineHeight; }

}  // namespace ostrelon
