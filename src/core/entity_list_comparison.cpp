// Equality and differences of two entity lists. What they share is skipped, so both cost what differs.
#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "core/entity_list.h"

namespace ostrelon {
namespace {

// The element so many places before the last one.
template <class T>
const T& fromEnd(const std::vector<T>& all, std::size_t places) {
  return all[all.size() - 1 - places];
}

}  // namespace

bool operator==(const EntityList& a, const EntityList& b) {
  if (a.root_ == b.root_) return true;
  if (a.size() != b.size()) return false;
  if (a.empty()) return true;
  // Positions run in step; where both sides are at the start of the same storage it is skipped.
  std::size_t nodeA = 0, chunkA = 0, offsetA = 0;
  std::size_t nodeB = 0, chunkB = 0, offsetB = 0;
  const auto step = [](const EntityList::Root& root, std::size_t& node, std::size_t& chunk,
                       std::size_t& offset, std::size_t by) {
    offset += by;
    while (node < root.nodes.size()) {
      const auto& chunks = root.nodes[node]->chunks;
      if (chunk < chunks.size() && offset < chunks[chunk]->size()) return;
      if (chunk < chunks.size()) {
        offset -= chunks[chunk]->size();
        ++chunk;
      } else {
        chunk = 0;
        ++node;
      }
    }
  };
  while (nodeA < a.root_->nodes.size() && nodeB < b.root_->nodes.size()) {
    const auto& firstNode = a.root_->nodes[nodeA];
    const auto& secondNode = b.root_->nodes[nodeB];
    if (chunkA == 0 && offsetA == 0 && chunkB == 0 && offsetB == 0 && firstNode == secondNode) {
      ++nodeA;
      ++nodeB;
      continue;
    }
    const auto& first = firstNode->chunks[chunkA];
    const auto& second = secondNode->chunks[chunkB];
    std::size_t count = std::min(first->size() - offsetA, second->size() - offsetB);
    const bool same = first == second && offsetA == offsetB;
    if (!same && !std::equal(first->begin() + static_cast<std::ptrdiff_t>(offsetA),
                             first->begin() + static_cast<std::ptrdiff_t>(offsetA + count),
                             second->begin() + static_cast<std::ptrdiff_t>(offsetB))) {
      return false;
    }
    step(*a.root_, nodeA, chunkA, offsetA, count);
    step(*b.root_, nodeB, chunkB, offsetB, count);
  }
  return true;
}

std::size_t EntityList::unsharedSize(const EntityList& other) const {
  if (!root_ || root_ == other.root_) return 0;
  if (!other.root_) return size();
  // Most edits leave the nodes where they are, so that the few between those in common are looked at alone.
  const auto& nodes = root_->nodes;
  const auto& others = other.root_->nodes;
  const std::size_t most = std::min(nodes.size(), others.size());
  std::size_t start = 0;
  while (start < most && nodes[start] == others[start]) ++start;
  std::size_t end = 0;
  while (end < most - start && fromEnd(nodes, end) == fromEnd(others, end)) ++end;
  std::unordered_set<const Chunk*> shared;
  for (std::size_t i = start; i < others.size() - end; ++i) {
    for (const auto& chunk : others[i]->chunks) shared.insert(chunk.get());
  }
  std::size_t size = 0;
  for (std::size_t i = start; i < nodes.size() - end; ++i) {
    for (const auto& chunk : nodes[i]->chunks) size += shared.contains(chunk.get()) ? 0 : chunk->size();
  }
  return size;
}

bool EntityList::hasSameIDs(const EntityList& other) const {
  if (root_ == other.root_) return true;
  if (!root_ || !other.root_ || root_->ends != other.root_->ends) return false;
  const auto haveSame = [](const Chunk& a, const Chunk& b) {
    return std::equal(
        a.begin(), a.end(), b.begin(), b.end(),
        [](const SketchEntity& one, const SketchEntity& two) { return entityID(one) == entityID(two); });
  };
  for (std::size_t i = 0; i < root_->nodes.size(); ++i) {
    const Node& node = *root_->nodes[i];
    const Node& otherNode = *other.root_->nodes[i];
    if (&node == &otherNode) continue;
    if (node.ends != otherNode.ends) return false;
    for (std::size_t k = 0; k < node.chunks.size(); ++k) {
      if (node.chunks[k] != otherNode.chunks[k] && !haveSame(*node.chunks[k], *otherNode.chunks[k]))
        return false;
    }
  }
  return true;
}

std::size_t EntityList::commonStart(const EntityList& other) const {
  if (!root_ || !other.root_) return 0;
  const auto& nodes = root_->nodes;
  const auto& others = other.root_->nodes;
  const std::size_t most = std::min(size(), other.size());
  std::size_t common = 0;
  std::size_t node = 0;
  while (node < std::min(nodes.size(), others.size()) && nodes[node] == others[node]) {
    common += nodes[node++]->size();
  }
  if (node < std::min(nodes.size(), others.size())) {
    const auto& chunks = nodes[node]->chunks;
    const auto& otherChunks = others[node]->chunks;
    for (std::size_t i = 0; i < std::min(chunks.size(), otherChunks.size()); ++i) {
      if (chunks[i] != otherChunks[i]) break;
      common += chunks[i]->size();
    }
  }
  while (common < most && (*this)[common] == other[common]) ++common;
  return common;
}

std::size_t EntityList::commonEnd(const EntityList& other) const {
  if (!root_ || !other.root_) return 0;
  const auto& nodes = root_->nodes;
  const auto& others = other.root_->nodes;
  const std::size_t most = std::min(size(), other.size());
  std::size_t common = 0;
  std::size_t node = 0;
  while (node < std::min(nodes.size(), others.size()) && fromEnd(nodes, node) == fromEnd(others, node)) {
    common += fromEnd(nodes, node++)->size();
  }
  if (node < std::min(nodes.size(), others.size())) {
    const auto& chunks = fromEnd(nodes, node)->chunks;
    const auto& otherChunks = fromEnd(others, node)->chunks;
    for (std::size_t i = 0; i < std::min(chunks.size(), otherChunks.size()); ++i) {
      if (fromEnd(chunks, i) != fromEnd(otherChunks, i)) break;
      common += fromEnd(chunks, i)->size();
    }
  }
  while (common < most && (*this)[size() - 1 - common] == other[other.size() - 1 - common]) ++common;
  return common;
}

std::vector<EntityList::LooseChunk> EntityList::looseChunks(const EntityList& list, const EntityList& other) {
  std::vector<LooseChunk> loose;
  if (!list.root_) return loose;
  const auto take = [&](const Node& node) {
    for (std::size_t i = 0; i < node.chunks.size(); ++i) {
      loose.push_back({node.identities[i], node.chunks[i].get()});
    }
  };
  // Most edits leave the nodes where they are, and comparing them in step finds the one that differs.
  if (other.root_ && other.root_->nodes.size() == list.root_->nodes.size()) {
    for (std::size_t i = 0; i < list.root_->nodes.size(); ++i) {
      if (list.root_->nodes[i] != other.root_->nodes[i]) take(*list.root_->nodes[i]);
    }
    return loose;
  }
  std::unordered_set<const Node*> shared;
  if (other.root_) {
    for (const NodePointer& node : other.root_->nodes) shared.insert(node.get());
  }
  for (const NodePointer& node : list.root_->nodes) {
    if (!shared.contains(node.get())) take(*node);
  }
  return loose;
}

void EntityList::compare(const EntityList& before, const EntityList& after, const Steps& steps) {
  if (before.root_ == after.root_) return;
  const std::vector<LooseChunk> oldChunks = looseChunks(before, after);
  const std::vector<LooseChunk> newChunks = looseChunks(after, before);
  std::unordered_map<std::uint64_t, const Chunk*> oldByIdentity;
  for (const LooseChunk& loose : oldChunks) oldByIdentity.emplace(loose.identity, loose.chunk);

  // Entities that occur on one side of their chunk alone; some may have moved to another chunk.
  std::vector<const SketchEntity*> leavers;
  struct Arrival {
    const SketchEntity* entity;
    std::uint64_t identity;
    std::size_t offset;
  };
  std::vector<Arrival> arrivals;
  std::unordered_set<std::uint64_t> paired;
  for (const LooseChunk& loose : newChunks) {
    const auto match = oldByIdentity.find(loose.identity);
    const Chunk* old = match == oldByIdentity.end() ? nullptr : match->second;
    if (old == loose.chunk || !paired.insert(loose.identity).second) {
      paired.insert(loose.identity);
      if (old == loose.chunk) continue;
      old = nullptr;
    }
    std::size_t i = 0;
    std::size_t k = 0;
    const std::size_t oldSize = old != nullptr ? old->size() : 0;
    const Chunk& now = *loose.chunk;
    while (i < oldSize && k < now.size()) {
      const UUID& oldID = entityID((*old)[i]);
      const UUID& newID = entityID(now[k]);
      if (oldID == newID) {
        if (!((*old)[i] == now[k])) steps.changed((*old)[i], now[k]);
        ++i;
        ++k;
      } else if (oldSize - i > now.size() - k) {
        leavers.push_back(&(*old)[i++]);
      } else if (oldSize - i < now.size() - k) {
        arrivals.push_back({&now[k], loose.identity, k});
        ++k;
      } else {
        leavers.push_back(&(*old)[i++]);
        arrivals.push_back({&now[k], loose.identity, k});
        ++k;
      }
    }
    for (; i < oldSize; ++i) leavers.push_back(&(*old)[i]);
    for (; k < now.size(); ++k) arrivals.push_back({&now[k], loose.identity, k});
  }
  for (const LooseChunk& loose : oldChunks) {
    if (paired.contains(loose.identity)) continue;
    for (const SketchEntity& entity : *loose.chunk) leavers.push_back(&entity);
  }

  std::unordered_multimap<UUID, const SketchEntity*> left;
  left.reserve(leavers.size());
  for (const SketchEntity* entity : leavers) left.emplace(entityID(*entity), entity);
  for (const Arrival& arrival : arrivals) {
    const auto match = left.find(entityID(*arrival.entity));
    if (match == left.end()) {
      steps.added(*arrival.entity);
    } else {
      if (!(*match->second == *arrival.entity)) steps.changed(*match->second, *arrival.entity);
      left.erase(match);
    }
    if (steps.placed) steps.placed(*arrival.entity, arrival.identity, arrival.offset);
  }
  for (const SketchEntity* entity : leavers) {
    const auto [first, last] = left.equal_range(entityID(*entity));
    const auto match = std::find_if(first, last, [&](const auto& row) { return row.second == entity; });
    if (match == last) continue;
    left.erase(match);
    steps.removed(*entity);
  }
}

EntityList::Difference EntityList::difference(const EntityList& before, const EntityList& after) {
  Difference result;
  compare(before, after,
          {[&](const SketchEntity& entity) { result.removed.push_back(entity); },
           [&](const SketchEntity& entity) { result.added.push_back(entity); },
           [&](const SketchEntity& old, const SketchEntity& now) { result.changed.emplace_back(old, now); },
           nullptr});
  return result;
}

}  // namespace ostrelon
