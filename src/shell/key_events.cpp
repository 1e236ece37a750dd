#include "shell/key_events.h"

#include "shell/qt_text.h"

namespace ostrelon {
namespace {

KeyName keyNameOf(int key) {
  switch (key) {
    case Qt::Key_Escape:
      return KeyName::escape;
    case Qt::Key_Space:
      return KeyName::space;
    case Qt::Key_Backspace:
      return KeyName::deleteBackward;
    case Qt::Key_Delete:
      return KeyName::forwardDelete;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return KeyName::returnKey;
    default:
      return KeyName::character;
  }
}

}  // namespace

KeyEvent keyEventOf(const QKeyEvent& event) {
  KeyEvent result;
  result.key = keyNameOf(event.key());
  const Qt::KeyboardModifiers held = event.modifiers();
  result.modifiers.shift = held.testFlag(Qt::ShiftModifier);
  result.modifiers.command = held.testFlag(Qt::ControlModifier);
  result.modifiers.option = held.testFlag(Qt::AltModifier);
  result.modifiers.control = held.testFlag(Qt::MetaModifier);
  if (result.key != KeyName::character) return result;
  // With Ctrl held a key's text is a control character; its code still names the letter.
  const bool isLetter = event.key() >= Qt::Key_A && event.key() <= Qt::Key_Z;
  result.characters =
      isLetter ? std::string(1, static_cast<char>('a' + event.key() - Qt::Key_A)) : plainText(event.text());
  return result;
}

}  // namespace ostrelon
