#include "core/entity_set.h"

#include <algorithm>
#include <bit>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace ostrelon {
namespace {

// A set of no more members than this is kept by their identifiers.
constexpr std::size_t kFew = 64;
constexpr std::size_t kWord = 64;  // bits

std::size_t wordsFor(std::size_t count) { return (count + kWord - 1) / kWord; }

void setBit(std::vector<std::uint64_t>& bits, std::size_t position) {
  bits[position / kWord] |= std::uint64_t{1} << (position % kWord);
}

// The word of bits from this position on, zeros behind the last.
std::uint64_t wordAt(const std::vector<std::uint64_t>& bits, std::size_t position) {
  const std::size_t word = position / kWord;
  const std::size_t shift = position % kWord;
  const auto part = [&](std::size_t index) { return index < bits.size() ? bits[index] : 0; };
  return shift == 0 ? part(word) : (part(word) >> shift) | (part(word + 1) << (kWord - shift));
}

// Copies `count` bits. What is written to must be zero.
void copyBits(const std::vector<std::uint64_t>& from, std::size_t start, std::vector<std::uint64_t>& to,
              std::size_t target, std::size_t count) {
  for (std::size_t done = 0; done < count;) {
    const std::size_t shift = (target + done) % kWord;
    const std::size_t taken = std::min(kWord - shift, count - done);
    const std::uint64_t mask = taken == kWord ? ~std::uint64_t{0} : (std::uint64_t{1} << taken) - 1;
    to[(target + done) / kWord] |= (wordAt(from, start + done) & mask) << shift;
    done += taken;
  }
}

// Ones from `first` up to `last`, which is not among them.
void setBits(std::vector<std::uint64_t>& bits, std::size_t first, std::size_t last) {
  static const std::vector<std::uint64_t> ones(1, ~std::uint64_t{0});
  for (std::size_t at = first; at < last;) {
    const std::size_t taken = std::min(kWord - at % kWord, last - at);
    copyBits(ones, 0, bits, at, taken);
    at += taken;
  }
}

}  // namespace

// The positions of a list by identifier, made when it is first asked. May be asked by several threads.
class EntitySet::Table {
 public:
  /// The position; `list.size()` where the identifier is not in it.
  std::size_t positionOf(const UUID& id, const EntityList& list) {
    std::call_once(made_, [&] {
      positions_.reserve(list.size());
      std::size_t position = 0;
      for (const SketchEntity& entity : list) positions_.emplace(entityID(entity), position++);
    });
    const auto found = positions_.find(id);
    return found == positions_.end() ? list.size() : found->second;
  }

 private:
  std::once_flag made_;
  std::unordered_map<UUID, std::size_t> positions_;
};

EntitySet::EntitySet(std::unordered_set<UUID> ids)
    : few_(ids.empty() ? nullptr : std::make_shared<const IDs>(std::move(ids))) {}

EntitySet EntitySet::over(const EntityList& list, Bits bits, std::shared_ptr<Table> table) {
  std::size_t count = list.size();
  if (!bits.empty()) {
    count = 0;
    for (const std::uint64_t word : bits) count += static_cast<std::size_t>(std::popcount(word));
  }
  EntitySet set;
  if (count == 0) return set;
  if (count == list.size()) bits.clear();
  Places places{list, std::move(bits), count, table ? std::move(table) : std::make_shared<Table>()};
  if (count <= kFew) {
    IDs few;
    if (places.isAll()) {
      for (const SketchEntity& entity : list) few.insert(entityID(entity));
    } else {
      for (std::size_t word = 0; word < places.bits.size(); ++word) {
        for (std::uint64_t rest = places.bits[word]; rest != 0; rest &= rest - 1) {
          few.insert(entityID(list[word * kWord + static_cast<std::size_t>(std::countr_zero(rest))]));
        }
      }
    }
    return few;
  }
  set.places_ = std::make_shared<const Places>(std::move(places));
  return set;
}

EntitySet EntitySet::allOf(const EntityList& list) { return over(list, {}); }

EntitySet EntitySet::at(const EntityList& list, const std::vector<std::size_t>& positions) {
  if (positions.empty()) return {};
  Bits bits(wordsFor(list.size()));
  for (const std::size_t position : positions) setBit(bits, position);
  return over(list, std::move(bits));
}

EntitySet EntitySet::from(const EntityList& list, std::size_t first) {
  if (first >= list.size()) return {};
  Bits bits(wordsFor(list.size()));
  setBits(bits, first, list.size());
  return over(list, std::move(bits));
}

bool EntitySet::contains(const UUID& id) const {
  if (few_) return few_->contains(id);
  if (!places_) return false;
  const std::size_t position = places_->table->positionOf(id, places_->list);
  return position < places_->list.size() && places_->contains(position);
}

EntitySet::Bits EntitySet::ownBits() const {
  if (!places_->isAll()) return places_->bits;
  Bits bits(wordsFor(places_->list.size()));
  setBits(bits, 0, places_->list.size());
  return bits;
}

EntitySet::IDs EntitySet::toIDs() const {
  if (few_) return *few_;
  IDs ids;
  ids.reserve(size());
  for (const UUID& id : *this) ids.insert(id);
  return ids;
}

void EntitySet::insert(const UUID& id) {
  if (places_) {
    const std::size_t position = places_->table->positionOf(id, places_->list);
    if (position < places_->list.size()) {
      insertAt(position);
      return;
    }
  }
  IDs ids = toIDs();
  ids.insert(id);
  *this = EntitySet(std::move(ids));
}

void EntitySet::erase(const UUID& id) {
  if (places_) {
    const std::size_t position = places_->table->positionOf(id, places_->list);
    if (position < places_->list.size()) eraseAt(position);
    return;
  }
  if (!contains(id)) return;
  IDs ids = *few_;
  ids.erase(id);
  *this = EntitySet(std::move(ids));
}

void EntitySet::insertAt(std::size_t position) {
  if (containsAt(position)) return;
  Bits bits = ownBits();
  setBit(bits, position);
  *this = over(places_->list, std::move(bits), places_->table);
}

void EntitySet::eraseAt(std::size_t position) {
  if (!containsAt(position)) return;
  Bits bits = ownBits();
  bits[position / kWord] &= ~(std::uint64_t{1} << (position % kWord));
  *this = over(places_->list, std::move(bits), places_->table);
}

void EntitySet::merge(const EntitySet& other) {
  if (other.empty() || sharesAllStorage(other)) return;
  if (empty()) {
    *this = other;
  } else if (places_ && other.isOver(places_->list)) {
    if (places_->isAll()) return;
    Bits bits = places_->bits;
    const Bits theirs = other.ownBits();
    for (std::size_t word = 0; word < bits.size(); ++word) bits[word] |= theirs[word];
    *this = over(places_->list, std::move(bits), places_->table);
  } else {
    IDs ids = toIDs();
    for (const UUID& id : other) ids.insert(id);
    *this = EntitySet(std::move(ids));
  }
}

std::vector<std::size_t> EntitySet::positions() const {
  std::vector<std::size_t> positions;
  if (!places_) return positions;
  positions.reserve(places_->count);
  if (places_->isAll()) {
    for (std::size_t position = 0; position < places_->count; ++position) positions.push_back(position);
    return positions;
  }
  for (std::size_t word = 0; word < places_->bits.size(); ++word) {
    for (std::uint64_t rest = places_->bits[word]; rest != 0; rest &= rest - 1) {
      positions.push_back(word * kWord + static_cast<std::size_t>(std::countr_zero(rest)));
    }
  }
  return positions;
}

void EntitySet::follow(const EntityList& now) {
  if (!places_ || isOver(now)) return;
  const EntityList& before = places_->list;
  if (before.hasSameIDs(now)) {  // as after edits in place
    places_ = std::make_shared<const Places>(Places{now, places_->bits, places_->count, places_->table});
    return;
  }
  const std::size_t start = before.commonStart(now);
  const std::size_t end = std::min(before.commonEnd(now), std::min(before.size(), now.size()) - start);
  const std::size_t endBefore = before.size() - end;
  const std::size_t endNow = now.size() - end;
  const Bits bits = ownBits();
  IDs moved;  // members that are in the stretch that differs
  auto entity = before.iteratorAt(start);
  for (std::size_t at = start; at < endBefore && endNow > start; ++at, ++entity) {
    if (places_->contains(at)) moved.insert(entityID(*entity));
  }
  Bits followed(wordsFor(now.size()));
  copyBits(bits, 0, followed, 0, start);
  entity = now.iteratorAt(start);
  for (std::size_t at = start; at < endNow; ++at, ++entity) {
    if (moved.contains(entityID(*entity))) setBit(followed, at);
  }
  copyBits(bits, endBefore, followed, endNow, end);
  *this = over(now, std::move(followed));
}

bool operator==(const EntitySet& a, const EntitySet& b) {
  if (a.sharesAllStorage(b)) return true;
  if (a.size() != b.size()) return false;
  if (a.few_ && b.few_) return *a.few_ == *b.few_;
  if (a.places_ && b.places_) {
    EntitySet there = a;
    there.follow(b.places_->list);
    return there.size() == b.size() && there.places_->bits == b.places_->bits;
  }
  const EntitySet& asked = a.few_ ? a : b;
  const EntitySet& walked = a.few_ ? b : a;
  return std::all_of(walked.begin(), walked.end(), [&](const UUID& id) { return asked.contains(id); });
}

EntitySet::Iterator EntitySet::begin() const {
  Iterator at;
  if (few_) at.id_ = few_->begin();
  if (places_) {
    at.places_ = places_.get();
    at.entity_ = places_->list.begin();
    at.skip();
  }
  return at;
}

EntitySet::Iterator EntitySet::end() const {
  Iterator at;
  if (few_) at.id_ = few_->end();
  if (places_) {
    at.places_ = places_.get();
    at.position_ = places_->list.size();
  }
  return at;
}

}  // namespace ostrelon
