// The end of the desktop's session, a logout or a shutdown: the session asks every program first, and ends
// those that agree.
#pragma once

#include <QObject>
#include <cstdint>
#include <optional>

namespace ostrelon {

class Application;

class SessionEnd final : public QObject {
  Q_OBJECT

 public:
  /// Listens to the Qt application, which must be there. `application` must outlive the object.
  explicit SessionEnd(Application& application);

  /// Whether the session may end. Asks about unsaved changes where the session allows a question, and waits
  /// for the answer; else they stay in the journal.
  bool mayEnd(bool allowsQuestion);
  /// The session has ended the program, and what was to be done then has been.
  bool hasEnded() const { return hasEnded_; }

 protected:
  /// The quit that follows closes the windows, which would ask again.
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  Application& application_;
  // The drawing for which the session may end: that may be cancelled, and work go on.
  std::optional<std::uint64_t> agreedFor_;
  bool staysInJournal_ = false;
  bool hasEnded_ = false;
};

}  // namespace ostrelon
