// An immutable list whose copies share it: what a value holds that is copied often and changed now and then.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

namespace ostrelon {

template <class T>
class SharedList {
 public:
  SharedList() = default;
  SharedList(std::vector<T> values)  // NOLINT(google-explicit-constructor)
      : shared_(values.empty() ? nullptr : std::make_shared<const std::vector<T>>(std::move(values))) {}
  SharedList(std::initializer_list<T> values) : SharedList(std::vector<T>(values)) {}

  const std::vector<T>& list() const {
    static const std::vector<T> none;
    return shared_ ? *shared_ : none;
  }
  std::size_t size() const { return shared_ ? shared_->size() : 0; }
  bool empty() const { return size() == 0; }
  const T& operator[](std::size_t index) const { return (*shared_)[index]; }
  auto begin() const { return list().begin(); }
  auto end() const { return list().end(); }

  friend bool operator==(const SharedList& a, const SharedList& b) {
    return a.shared_ == b.shared_ || a.list() == b.list();
  }

 private:
  std::shared_ptr<const std::vector<T>> shared_;
};

/// The one stretch in which a list differs from an earlier one.
template <class T>
struct ListSplice {
  std::size_t at = 0;       ///< the position in the earlier list
  std::size_t removed = 0;  ///< so many of the earlier list go from there on,
  std::vector<T> added;     ///< and these come in their place
  friend bool operator==(const ListSplice&, const ListSplice&) = default;
};

template <class T>
ListSplice<T> spliceBetween(const SharedList<T>& before, const SharedList<T>& after) {
  if (before == after) return {};
  const std::vector<T>& a = before.list();
  const std::vector<T>& b = after.list();
  std::size_t start = 0;
  while (start < a.size() && start < b.size() && a[start] == b[start]) ++start;
  std::size_t end = 0;
  while (end < a.size() - start && end < b.size() - start && a[a.size() - 1 - end] == b[b.size() - 1 - end]) {
    ++end;
  }
  const auto first = b.begin() + static_cast<std::ptrdiff_t>(start);
  return {start, a.size() - start - end, {first, b.end() - static_cast<std::ptrdiff_t>(end)}};
}

/// False, with nothing changed, where the splice does not fit the list.
template <class T>
bool applySplice(const ListSplice<T>& splice, SharedList<T>& list) {
  if (splice.at > list.size() || splice.removed > list.size() - splice.at) return false;
  if (splice.removed == 0 && splice.added.empty()) return true;
  std::vector<T> spliced = list.list();
  const auto first = spliced.begin() + static_cast<std::ptrdiff_t>(splice.at);
  const auto after = spliced.erase(first, first + static_cast<std::ptrdiff_t>(splice.removed));
  spliced.insert(after, splice.added.begin(), splice.added.end());
  list = std::move(spliced);
  return true;
}

}  // namespace ostrelon
