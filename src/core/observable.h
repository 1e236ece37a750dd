// Observation of a long-lived object: fields that everyone may read and only their object writes, and
// observers that are notified once an operation has ended.
//
//   class Counter {
//     ChangeTracker tracker_;
//    public:
//     Observable<int, Counter> count{tracker_, 5 /* initial value */};
//     void raise() { ChangeScope scope(tracker_); count = count + 1; }
//   };
//   …
//   subscription = tracker.observe(fieldsOf(counter.count), [](FieldMask changed) { … });
//
// Objects that share a tracker are observed as one: an operation that changes several of them notifies
// once.
//
// Scopes nest. The end of the outermost one raises the revision and, if a field was written, notifies
// the observers once with the set of fields. A value written over its equal is dropped.
#pragma once

#include <cassert>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace ostrelon {

/// A set of field numbers below 64.
using FieldMask = std::uint64_t;
inline constexpr FieldMask kAllFields = ~FieldMask{0};
inline constexpr unsigned kMostFields = 64;
constexpr FieldMask fieldBit(unsigned field) { return FieldMask{1} << field; }

/// Ends an observation when it is destroyed. Move-only.
class Subscription {
 public:
  Subscription() = default;
  explicit Subscription(std::shared_ptr<bool> active) : active_(std::move(active)) {}
  Subscription(Subscription&&) noexcept = default;
  Subscription& operator=(Subscription&& other) noexcept {
    if (this != &other) {
      cancel();
      active_ = std::move(other.active_);
    }
    return *this;
  }
  Subscription(const Subscription&) = delete;
  Subscription& operator=(const Subscription&) = delete;
  ~Subscription() { cancel(); }
  void cancel() {
    if (active_) *active_ = false;
    active_.reset();
  }

 private:
  std::shared_ptr<bool> active_;
};

class ChangeTracker {
 public:
  using Callback = std::function<void(FieldMask changed)>;

  ChangeTracker() = default;
  ChangeTracker(const ChangeTracker&) = delete;
  ChangeTracker& operator=(const ChangeTracker&) = delete;

  /// Calls back after each operation that changed one of the fields. Observers read; they must not
  /// change the object from within. Observers added or removed meanwhile are safe.
  [[nodiscard]] Subscription observe(FieldMask fields, Callback callback);

  /// The number of operations that have changed something.
  std::uint64_t revision() const { return revision_; }

  /// The number of a new field, below 64. For `Observable`.
  unsigned addField() {
    assert(fields_ < kMostFields);
    return fields_++;
  }
  /// An operation is under way.
  bool isOpen() const { return depth_ > 0; }
  void open() { ++depth_; }
  void close();
  void mark(unsigned field) { changed_ |= fieldBit(field); }

 private:
  struct Observer {
    FieldMask fields;
    Callback callback;
    std::shared_ptr<bool> active;
  };

  int depth_ = 0;
  unsigned fields_ = 0;
  FieldMask changed_ = 0;
  std::uint64_t revision_ = 0;
  std::vector<std::shared_ptr<Observer>> observers_;
};

/// One operation. No scope may span a wait.
class ChangeScope {
 public:
  explicit ChangeScope(ChangeTracker& tracker) : tracker_(tracker) { tracker_.open(); }
  ChangeScope(const ChangeScope&) = delete;
  ChangeScope& operator=(const ChangeScope&) = delete;
  ~ChangeScope() { tracker_.close(); }

 private:
  ChangeTracker& tracker_;
};

/// A field of `Owner`: read like its value, written by `Owner` alone.
template <class T, class Owner>
class Observable {
 public:
  explicit Observable(ChangeTracker& tracker, T initial = {})
      : tracker_(tracker), field_(tracker.addField()), value_(std::move(initial)) {}
  Observable(const Observable&) = delete;

  const T& get() const { return value_; }
  operator const T&() const { return value_; }  // NOLINT(google-explicit-constructor)
  const T& operator*() const { return value_; }
  const T* operator->() const { return &value_; }

  friend bool operator==(const Observable& a, const T& b) { return a.value_ == b; }

  /// The field in the masks of its tracker.
  FieldMask bit() const { return fieldBit(field_); }
  /// How often the field has been written since it was made.
  std::uint64_t writes() const { return writes_; }

 private:
  friend Owner;

  Observable& operator=(T value) {
    if (!(value_ == value)) {
      const ChangeScope scope(tracker_);
      value_ = std::move(value);
      ++writes_;
      tracker_.mark(field_);
    }
    return *this;
  }

  /// Marks the field as changed and gives the value to change in place. Only within a scope.
  T& edit() {
    ++writes_;
    tracker_.mark(field_);
    return value_;
  }

  /// For another representation of the same value, which is no change.
  T& represent() { return value_; }

  ChangeTracker& tracker_;
  unsigned field_;
  T value_;
  std::uint64_t writes_ = 0;
};

/// The mask of these fields, which have the same tracker.
template <class... Fields>
FieldMask fieldsOf(const Fields&... fields) {
  return (fields.bit() | ... | FieldMask{0});
}

}  // namespace ostrelon
