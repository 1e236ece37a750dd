// What makes one entity list another, place by place. Storage that both share is what the two are lined up
// by: first nodes, then the chunks of nodes that differ, then the entities of chunks that differ.
#include <algorithm>
#include <optional>
#include <unordered_map>
#include <utility>

#include "core/entity_list.h"

namespace ostrelon {
namespace {

// How far ahead a removed or added run is looked for before all identifiers are.
constexpr std::size_t kLookAhead = 16;

// Where each key stands, the first time that it does.
template <class Key, class Items, class KeyOf>
std::unordered_map<Key, std::size_t> placesOf(const Items& items, std::size_t from, std::size_t to,
                                              const KeyOf& keyOf) {
  std::unordered_map<Key, std::size_t> places;
  places.reserve(to - from);
  for (std::size_t i = from; i < to; ++i) places.emplace(keyOf(items[i]), i);
  return places;
}

// Lines up two sequences by the storage that they share and hands out the stretches between, as
// (begin, end) of the one and (begin, end) of the other.
template <class Item, class KeyOf, class Gap>
void forEachGap(const std::vector<Item>& before, const std::vector<Item>& after, const KeyOf& keyOf,
                const Gap& gap) {
  std::size_t start = 0;
  std::size_t endBefore = before.size();
  std::size_t endAfter = after.size();
  while (start < std::min(endBefore, endAfter) && keyOf(before[start]) == keyOf(after[start])) ++start;
  while (start < std::min(endBefore, endAfter) &&
         keyOf(before[endBefore - 1]) == keyOf(after[endAfter - 1])) {
    --endBefore;
    --endAfter;
  }
  // Edits in place leave both sides as many; they are compared in step.
  if (endBefore - start == endAfter - start) {
    for (std::size_t i = start; i < endBefore;) {
      std::size_t end = i;
      while (end < endBefore && keyOf(before[end]) != keyOf(after[end])) ++end;
      if (end > i) gap(i, end, i, end);
      i = end + 1;
    }
    return;
  }
  const auto places = placesOf<decltype(keyOf(after[0]))>(after, start, endAfter, keyOf);
  std::size_t gapBefore = start;
  std::size_t gapAfter = start;
  for (std::size_t i = start; i < endBefore; ++i) {
    const auto place = places.find(keyOf(before[i]));
    if (place == places.end() || place->second < gapAfter) continue;
    if (i > gapBefore || place->second > gapAfter) gap(gapBefore, i, gapAfter, place->second);
    gapBefore = i + 1;
    gapAfter = place->second + 1;
  }
  if (endBefore > gapBefore || endAfter > gapAfter) gap(gapBefore, endBefore, gapAfter, endAfter);
}

// Collects what is found, joining what touches.
class Splices {
 public:
  void remove(std::size_t at) { ++spliceAt(at).removed; }
  void add(std::size_t at, const SketchEntity& entity) { spliceAt(at).added.push_back(entity); }
  std::vector<EntitySplice> take() { return std::move(found_); }

 private:
  EntitySplice& spliceAt(std::size_t at) {
    if (found_.empty() || found_.back().at + found_.back().removed != at) found_.push_back({at, 0, {}});
    return found_.back();
  }

  std::vector<EntitySplice> found_;
};

using Entities = std::vector<const SketchEntity*>;

// Both stretches entity by entity; `at` is where the earlier one begins in its list.
void compareEntities(const Entities& before, const Entities& after, std::size_t at, Splices& splices) {
  using Places = std::unordered_map<UUID, std::size_t>;
  struct Ahead {
    Places before;
    Places after;
  };
  std::optional<Ahead> ahead;  // made where looking a little ahead does not do
  const auto id = [](const SketchEntity* entity) { return entityID(*entity); };
  std::size_t i = 0;
  std::size_t k = 0;
  const auto removeTo = [&](std::size_t end) {
    for (; i < end; ++i) splices.remove(at + i);
  };
  const auto addTo = [&](std::size_t end) {
    for (; k < end; ++k) splices.add(at + i, *after[k]);
  };
  const auto lookAhead = [&] {
    for (std::size_t step = 1; step <= kLookAhead; ++step) {
      if (i + step < before.size() && id(before[i + step]) == id(after[k])) {
        removeTo(i + step);
        return true;
      }
      if (k + step < after.size() && id(before[i]) == id(after[k + step])) {
        addTo(k + step);
        return true;
      }
    }
    return false;
  };
  while (i < before.size() && k < after.size()) {
    if (*before[i] == *after[k]) {
      ++i;
      ++k;
    } else if (id(before[i]) == id(after[k])) {
      splices.remove(at + i);
      ++i;
      splices.add(at + i, *after[k]);
      ++k;
    } else if (!lookAhead()) {
      if (!ahead) {
        ahead.emplace(
            Ahead{placesOf<UUID>(before, i, before.size(), id), placesOf<UUID>(after, k, after.size(), id)});
      }
      const auto later = ahead->after.find(id(before[i]));
      const auto earlier = ahead->before.find(id(after[k]));
      const bool comesLater = later != ahead->after.end() && later->second > k;
      const bool stoodLater = earlier != ahead->before.end() && earlier->second > i;
      if (!comesLater) {
        removeTo(i + 1);
      } else if (!stoodLater) {
        addTo(k + 1);
      } else if (later->second - k < earlier->second - i) {
        addTo(later->second);
      } else {
        removeTo(earlier->second);
      }
    }
  }
  removeTo(before.size());
  addTo(after.size());
}

}  // namespace

std::vector<EntitySplice> EntityList::splices(const EntityList& before, const EntityList& after) {
  Splices found;
  if (before.root_ == after.root_) return found.take();
  static const std::vector<NodePointer> none;
  const auto& nodesBefore = before.root_ ? before.root_->nodes : none;
  const auto& nodesAfter = after.root_ ? after.root_->nodes : none;
  const auto chunksOf = [](const std::vector<NodePointer>& nodes, std::size_t from, std::size_t to) {
    std::vector<const Chunk*> chunks;
    for (; from < to; ++from) {
      for (const ChunkPointer& chunk : nodes[from]->chunks) chunks.push_back(chunk.get());
    }
    return chunks;
  };
  const auto entitiesOf = [](const std::vector<const Chunk*>& chunks, std::size_t from, std::size_t to) {
    Entities entities;
    for (; from < to; ++from) {
      for (const SketchEntity& entity : *chunks[from]) entities.push_back(&entity);
    }
    return entities;
  };
  const auto same = [](const Chunk* chunk) { return chunk; };

  forEachGap(
      nodesBefore, nodesAfter, [](const NodePointer& node) { return node.get(); },
      [&](std::size_t from, std::size_t to, std::size_t fromAfter, std::size_t toAfter) {
        const auto chunksBefore = chunksOf(nodesBefore, from, to);
        const auto chunksAfter = chunksOf(nodesAfter, fromAfter, toAfter);
        std::size_t start = from == 0 ? 0 : before.root_->ends[from - 1];
        std::size_t counted = 0;  // chunks in front of `start`
        forEachGap(chunksBefore, chunksAfter, same,
                   [&](std::size_t first, std::size_t last, std::size_t firstAfter, std::size_t lastAfter) {
                     for (; counted < first; ++counted) start += chunksBefore[counted]->size();
                     compareEntities(entitiesOf(chunksBefore, first, last),
                                     entitiesOf(chunksAfter, firstAfter, lastAfter), start, found);
                   });
      });
  return found.take();
}

bool EntityList::apply(const std::vector<EntitySplice>& splices) {
  std::size_t end = 0;
  for (const EntitySplice& splice : splices) {
    if (splice.at < end || splice.at > size() || splice.removed > size() - splice.at) return false;
    end = splice.at + splice.removed;
  }
  // From the last to the first, so that the positions in front stay as they are.
  for (std::size_t last = splices.size(); last > 0; --last) {
    const EntitySplice& splice = splices[last - 1];
    const std::size_t replaced = std::min(splice.removed, splice.added.size());
    for (std::size_t i = 0; i < replaced; ++i) replace(splice.at + i, splice.added[i]);
    if (splice.removed > replaced) {
      std::vector<std::size_t> gone(splice.removed - replaced);
      for (std::size_t i = 0; i < gone.size(); ++i) gone[i] = splice.at + replaced + i;
      removeAll(gone);
    } else if (splice.added.size() > replaced) {
      insert(splice.at + replaced,
             {splice.added.begin() + static_cast<std::ptrdiff_t>(replaced), splice.added.end()});
    }
  }
  return true;
}

}  // namespace ostrelon
