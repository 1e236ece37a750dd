// The parts that make up an open document and its tools, each the only owner of its values, and what one of
// them does to another:
//
//   Workspace workspace(host);
//   workspace.console.setInput("line 0 0 10 0");
//   workspace.console.submit();
//   workspace.sketch.entities().size();  // 1
//
// They share one tracker: an operation that changes several of them notifies its observers once.
#pragma once

#include <cstdint>
#include <functional>

#include "console/console.h"
#include "core/messages.h"
#include "core/observable.h"
#include "core/sketch.h"
#include "documents/document_session.h"
#include "interaction/board.h"
#include "platform/host.h"

namespace ostrelon {

class Workspace final : private DocumentStage {
 public:
  /// The services of `host` must outlive the object. Building it reads and writes nothing.
  explicit Workspace(Host host);

 private:
  ChangeTracker tracker_;
  Host host_;

 public:
  Messages messages;
  Sketch sketch;
  Board board;
  DocumentSession document;
  Console console;

  const Host& host() const { return host_; }
  CommandContext commands() { return {messages, sketch, board, document}; }

  /// Calls back once after each operation that changed one of the fields.
  [[nodiscard]] Subscription observe(FieldMask fields, std::function<void(FieldMask changed)> changed) {
    return tracker_.observe(fields, std::move(changed));
  }
  /// How often another document has taken the place of the open one.
  std::uint64_t documentsOpened() const { return documentsOpened_; }
  /// The number of operations that have changed something.
  std::uint64_t revision() const { return tracker_.revision(); }
  [[nodiscard]] ChangeScope change() { return ChangeScope(tracker_); }

 private:
  SketchViewport viewport() const override { return board.viewport(); }
  void documentOpened(const SketchViewport& viewport) override {
    ++documentsOpened_;
    board.documentOpened(viewport);
  }
  void documentBegun() override {
    ++documentsOpened_;
    board.documentBegun();
  }

  std::uint64_t documentsOpened_ = 0;
};

}  // namespace ostrelon
