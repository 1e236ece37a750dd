#include "shell/session_end.h"

#include <QApplication>
#include <QEvent>
#include <QEventLoop>
#include <QSessionManager>
#include <memory>

#include "app/application.h"

namespace ostrelon {

SessionEnd::SessionEnd(Application& application) : application_(application) {
  connect(
      qApp, &QGuiApplication::commitDataRequest, this,
      [this](QSessionManager& session) {
        const bool mayAsk = application_.workspace().document.isDirty() && session.allowsInteraction();
        const bool may = mayEnd(mayAsk);
        // The session is called off within the question that it allowed.
        if (!may) {
          session.cancel();
        } else if (mayAsk) {
          session.release();
        }
      },
      Qt::DirectConnection);
  qApp->installEventFilter(this);
}

bool SessionEnd::mayEnd(bool allowsQuestion) {
  // The answer may come after this object has gone.
  struct Answer {
    std::optional<bool> may;
    QEventLoop waiting;
  };
  const auto answer = std::make_shared<Answer>();
  application_.sessionShouldEnd(allowsQuestion, [answer](bool may) {
    answer->may = may;
    answer->waiting.quit();
  });
  if (!answer->may) answer->waiting.exec();
  const bool may = answer->may.value_or(false);
  agreedFor_.reset();
  if (may) agreedFor_ = application_.workspace().sketch.drawingWrites();
  staysInJournal_ = !allowsQuestion;
  return may;
}

bool SessionEnd::eventFilter(QObject* object, QEvent* event) {
  if (object != qApp || event->type() != QEvent::Quit || !agreedFor_) return false;
  if (application_.workspace().sketch.drawingWrites() != *agreedFor_) return false;
  if (!staysInJournal_ || !application_.endBySystem()) application_.willTerminate();
  hasEnded_ = true;
  QApplication::exit(0);
  return true;
}

}  // namespace ostrelon
