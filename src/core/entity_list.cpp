#include "core/entity_list.h"

#include <algorithm>
#include <utility>

namespace ostrelon {
namespace {

constexpr std::size_t kChunkSize = 512;      // what bulk work fills a chunk to
constexpr std::size_t kLargestChunk = 1024;  // beyond this a chunk is split
constexpr std::size_t kSmallestChunk = 128;  // below this a chunk joins its neighbour
constexpr std::size_t kNodeSize = 64;        // chunks in a node that bulk work has filled
constexpr std::size_t kLargestNode = 128;

// The position of the part that holds `index`, where ends[i] counts the elements up to part i.
std::size_t partOf(const std::vector<std::size_t>& ends, std::size_t index) {
  return static_cast<std::size_t>(std::upper_bound(ends.begin(), ends.end(), index) - ends.begin());
}

std::size_t startOf(const std::vector<std::size_t>& ends, std::size_t part) {
  return part == 0 ? 0 : ends[part - 1];
}

template <class T>
void moveAppend(std::vector<T>& target, typename std::vector<T>::iterator from,
                typename std::vector<T>::iterator to) {
  target.insert(target.end(), std::make_move_iterator(from), std::make_move_iterator(to));
}

}  // namespace

EntityList::EntityList(std::vector<SketchEntity> entities) { append(std::move(entities)); }

const SketchEntity& EntityList::operator[](std::size_t index) const {
  const Location at = locate(index);
  return (*root_->nodes[at.node]->chunks[at.chunk])[at.offset];
}

std::optional<std::size_t> EntityList::indexOf(const UUID& id) const {
  std::size_t index = 0;
  for (const SketchEntity& entity : *this) {
    if (entityID(entity) == id) return index;
    ++index;
  }
  return std::nullopt;
}

const SketchEntity* EntityList::find(const UUID& id) const {
  for (const SketchEntity& entity : *this) {
    if (entityID(entity) == id) return &entity;
  }
  return nullptr;
}

void EntityList::append(SketchEntity entity) {
  Root& root = ownRoot();
  if (root.nodes.empty()) {
    root.nodes.push_back(std::make_shared<Node>());
    root.ends.push_back(0);
  }
  if (root.nodes.back()->chunks.empty() || root.nodes.back()->chunks.back()->size() >= kChunkSize) {
    if (root.nodes.back()->chunks.size() >= kNodeSize) {
      root.nodes.push_back(std::make_shared<Node>());
      root.ends.push_back(root.ends.back());
    }
    Node& node = ownNode(root.nodes.size() - 1);
    node.chunks.push_back(std::make_shared<Chunk>());
    node.ends.push_back(node.size());
  }
  const std::size_t nodeIndex = root.nodes.size() - 1;
  const std::size_t chunkIndex = root.nodes.back()->chunks.size() - 1;
  ownChunk(nodeIndex, chunkIndex).push_back(std::move(entity));
  ++root.nodes.back()->ends.back();
  ++root.ends.back();
}

void EntityList::append(std::vector<SketchEntity> entities) {
  if (entities.empty()) return;
  // The open chunk at the end takes what it has room for; the rest goes in as whole chunks.
  std::size_t next = 0;
  while (next < entities.size() && !empty() && root_->nodes.back()->chunks.back()->size() % kChunkSize != 0) {
    append(std::move(entities[next++]));
  }
  while (next < entities.size()) {
    Root& root = ownRoot();
    if (root.nodes.empty() || root.nodes.back()->chunks.size() >= kNodeSize) {
      root.nodes.push_back(std::make_shared<Node>());
      root.ends.push_back(root.size());
    }
    Node& node = ownNode(root.nodes.size() - 1);
    const std::size_t end = std::min(entities.size(), next + kChunkSize);
    auto chunk = std::make_shared<Chunk>();
    chunk->reserve(end - next);
    moveAppend(*chunk, entities.begin() + static_cast<std::ptrdiff_t>(next),
               entities.begin() + static_cast<std::ptrdiff_t>(end));
    node.ends.push_back(node.size() + chunk->size());
    root.ends.back() += chunk->size();
    node.chunks.push_back(std::move(chunk));
    next = end;
  }
}

void EntityList::replace(std::size_t index, SketchEntity entity) {
  const Location at = locate(index);
  ownChunk(at.node, at.chunk)[at.offset] = std::move(entity);
}

void EntityList::insert(std::size_t index, std::vector<SketchEntity> entities) {
  if (entities.empty()) return;
  if (index >= size()) {
    append(std::move(entities));
    return;
  }
  const Location at = locate(index);
  Chunk& chunk = ownChunk(at.node, at.chunk);
  chunk.insert(chunk.begin() + static_cast<std::ptrdiff_t>(at.offset),
               std::make_move_iterator(entities.begin()), std::make_move_iterator(entities.end()));
  settle(at.node, at.chunk);
}

void EntityList::remove(std::size_t index) {
  const Location at = locate(index);
  Chunk& chunk = ownChunk(at.node, at.chunk);
  chunk.erase(chunk.begin() + static_cast<std::ptrdiff_t>(at.offset));
  settle(at.node, at.chunk);
}

void EntityList::removeAll(const std::vector<std::size_t>& ascendingIndices) {
  if (ascendingIndices.empty()) return;
  // A few positions are taken out where they stand, from the last to the first.
  if (ascendingIndices.size() <= 32) {
    for (auto index = ascendingIndices.rbegin(); index != ascendingIndices.rend(); ++index) remove(*index);
    return;
  }
  // Many are taken out in one walk that keeps the untouched chunks as they are.
  std::vector<std::shared_ptr<const Chunk>> kept;
  std::size_t start = 0;
  auto next = ascendingIndices.begin();
  for (const NodePointer& node : root_->nodes) {
    for (const ChunkPointer& chunk : node->chunks) {
      const std::size_t end = start + chunk->size();
      if (next == ascendingIndices.end() || *next >= end) {
        kept.push_back(chunk);
      } else {
        auto rest = std::make_shared<Chunk>();
        for (std::size_t index = start; index < end; ++index) {
          if (next != ascendingIndices.end() && *next == index) {
            ++next;
          } else {
            rest->push_back((*chunk)[index - start]);
          }
        }
        const bool joins = !kept.empty() && kept.back()->size() + rest->size() <= kChunkSize &&
                           (rest->size() < kSmallestChunk || kept.back()->size() < kSmallestChunk);
        if (joins) {
          auto joined = std::make_shared<Chunk>(*kept.back());
          moveAppend(*joined, rest->begin(), rest->end());
          kept.back() = std::move(joined);
        } else {
          kept.push_back(std::move(rest));
        }
      }
      start = end;
    }
  }
  *this = fromChunks(std::move(kept));
}

void EntityList::removeAll(const std::unordered_set<UUID>& ids) {
  if (ids.empty()) return;
  std::vector<std::size_t> indices;
  std::size_t index = 0;
  for (const SketchEntity& entity : *this) {
    if (ids.contains(entityID(entity))) indices.push_back(index);
    ++index;
  }
  removeAll(indices);
}

bool operator==(const EntityList& a, const EntityList& b) {
  if (a.root_ == b.root_) return true;
  if (a.size() != b.size()) return false;
  if (a.empty()) return true;
  // Positions run in step; where both sides stand at the start of the same storage it is skipped.
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

std::vector<std::shared_ptr<const EntityList::Chunk>> EntityList::chunks() const {
  std::vector<std::shared_ptr<const Chunk>> all;
  if (!root_) return all;
  for (const NodePointer& node : root_->nodes) {
    all.insert(all.end(), node->chunks.begin(), node->chunks.end());
  }
  return all;
}

EntityList EntityList::fromChunks(std::vector<std::shared_ptr<const Chunk>> chunks) {
  EntityList list;
  for (std::shared_ptr<const Chunk>& chunk : chunks) {
    if (chunk->empty()) continue;
    Root& root = list.ownRoot();
    if (root.nodes.empty() || root.nodes.back()->chunks.size() >= kNodeSize) {
      root.nodes.push_back(std::make_shared<Node>());
      root.ends.push_back(root.size());
    }
    Node& node = *root.nodes.back();
    node.ends.push_back(node.size() + chunk->size());
    root.ends.back() += chunk->size();
    // Chunks are made non-const by this class alone and written only while nobody else holds them,
    // which is what `ownChunk` sees to.
    node.chunks.push_back(std::const_pointer_cast<Chunk>(std::move(chunk)));
  }
  return list;
}

EntityList::Difference EntityList::difference(const EntityList& before, const EntityList& after) {
  Difference result;
  if (before.root_ == after.root_) return result;

  // The storage that only one side holds: first whole nodes, then chunks of the nodes that differ.
  const auto loose = [](const EntityList& list, const EntityList& other) {
    std::unordered_set<const Node*> shared;
    if (other.root_) {
      for (const NodePointer& node : other.root_->nodes) shared.insert(node.get());
    }
    std::vector<const Chunk*> chunks;
    if (list.root_) {
      for (const NodePointer& node : list.root_->nodes) {
        if (shared.contains(node.get())) continue;
        for (const ChunkPointer& chunk : node->chunks) chunks.push_back(chunk.get());
      }
    }
    return chunks;
  };
  std::vector<const Chunk*> oldChunks = loose(before, after);
  std::vector<const Chunk*> newChunks = loose(after, before);
  const std::unordered_set<const Chunk*> oldSet(oldChunks.begin(), oldChunks.end());
  const std::unordered_set<const Chunk*> newSet(newChunks.begin(), newChunks.end());
  std::erase_if(oldChunks, [&](const Chunk* chunk) { return newSet.contains(chunk); });
  std::erase_if(newChunks, [&](const Chunk* chunk) { return oldSet.contains(chunk); });

  std::unordered_map<UUID, const SketchEntity*> old;
  for (const Chunk* chunk : oldChunks) {
    for (const SketchEntity& entity : *chunk) old.emplace(entityID(entity), &entity);
  }
  for (const Chunk* chunk : newChunks) {
    for (const SketchEntity& entity : *chunk) {
      const auto match = old.find(entityID(entity));
      if (match == old.end()) {
        result.added.push_back(entity);
        continue;
      }
      if (!(*match->second == entity)) result.changed.emplace_back(*match->second, entity);
      old.erase(match);
    }
  }
  for (const Chunk* chunk : oldChunks) {
    for (const SketchEntity& entity : *chunk) {
      const auto left = old.find(entityID(entity));
      if (left != old.end() && left->second == &entity) result.removed.push_back(entity);
    }
  }
  return result;
}

EntityList::Location EntityList::locate(std::size_t index) const {
  Location at;
  at.node = partOf(root_->ends, index);
  index -= startOf(root_->ends, at.node);
  const Node& node = *root_->nodes[at.node];
  at.chunk = partOf(node.ends, index);
  at.offset = index - startOf(node.ends, at.chunk);
  return at;
}

EntityList::Root& EntityList::ownRoot() {
  if (!root_) {
    root_ = std::make_shared<Root>();
  } else if (root_.use_count() > 1) {
    root_ = std::make_shared<Root>(*root_);
  }
  return *root_;
}

EntityList::Node& EntityList::ownNode(std::size_t node) {
  NodePointer& pointer = ownRoot().nodes[node];
  if (pointer.use_count() > 1) pointer = std::make_shared<Node>(*pointer);
  return *pointer;
}

EntityList::Chunk& EntityList::ownChunk(std::size_t node, std::size_t chunk) {
  ChunkPointer& pointer = ownNode(node).chunks[chunk];
  if (pointer.use_count() > 1) pointer = std::make_shared<Chunk>(*pointer);
  return *pointer;
}

// Brings counts and sizes in order after a chunk of an owned node has changed its size.
void EntityList::settle(std::size_t nodeIndex, std::size_t chunkIndex) {
  Root& root = *root_;
  Node& node = *root.nodes[nodeIndex];
  Chunk& chunk = *node.chunks[chunkIndex];
  if (chunk.size() > kLargestChunk) {
    std::vector<ChunkPointer> pieces;
    for (std::size_t start = 0; start < chunk.size(); start += kChunkSize) {
      const std::size_t end = std::min(chunk.size(), start + kChunkSize);
      auto piece = std::make_shared<Chunk>();
      piece->reserve(end - start);
      moveAppend(*piece, chunk.begin() + static_cast<std::ptrdiff_t>(start),
                 chunk.begin() + static_cast<std::ptrdiff_t>(end));
      pieces.push_back(std::move(piece));
    }
    const auto place = node.chunks.erase(node.chunks.begin() + static_cast<std::ptrdiff_t>(chunkIndex));
    node.chunks.insert(place, std::make_move_iterator(pieces.begin()), std::make_move_iterator(pieces.end()));
  } else if (chunk.empty()) {
    node.chunks.erase(node.chunks.begin() + static_cast<std::ptrdiff_t>(chunkIndex));
  } else if (chunk.size() < kSmallestChunk && node.chunks.size() > 1) {
    const std::size_t left = chunkIndex == 0 ? 0 : chunkIndex - 1;
    if (node.chunks[left]->size() + node.chunks[left + 1]->size() <= kChunkSize) {
      auto joined = std::make_shared<Chunk>(*node.chunks[left]);
      joined->insert(joined->end(), node.chunks[left + 1]->begin(), node.chunks[left + 1]->end());
      node.chunks[left] = std::move(joined);
      node.chunks.erase(node.chunks.begin() + static_cast<std::ptrdiff_t>(left + 1));
    }
  }
  recount(node);

  if (node.chunks.empty()) {
    root.nodes.erase(root.nodes.begin() + static_cast<std::ptrdiff_t>(nodeIndex));
  } else if (node.chunks.size() > kLargestNode) {
    std::vector<NodePointer> pieces;
    for (std::size_t start = 0; start < node.chunks.size(); start += kNodeSize) {
      const std::size_t end = std::min(node.chunks.size(), start + kNodeSize);
      auto piece = std::make_shared<Node>();
      moveAppend(piece->chunks, node.chunks.begin() + static_cast<std::ptrdiff_t>(start),
                 node.chunks.begin() + static_cast<std::ptrdiff_t>(end));
      recount(*piece);
      pieces.push_back(std::move(piece));
    }
    const auto place = root.nodes.erase(root.nodes.begin() + static_cast<std::ptrdiff_t>(nodeIndex));
    root.nodes.insert(place, std::make_move_iterator(pieces.begin()), std::make_move_iterator(pieces.end()));
  }
  recount(root);
  if (root.nodes.empty()) root_.reset();
}

void EntityList::recount(Node& node) {
  node.ends.resize(node.chunks.size());
  std::size_t end = 0;
  for (std::size_t i = 0; i < node.chunks.size(); ++i) node.ends[i] = end += node.chunks[i]->size();
}

void EntityList::recount(Root& root) {
  root.ends.resize(root.nodes.size());
  std::size_t end = 0;
  for (std::size_t i = 0; i < root.nodes.size(); ++i) root.ends[i] = end += root.nodes[i]->size();
}

EntityList::Iterator::Iterator(const Root* root, bool atEnd) : root_(root) {
  if (!root_ || root_->nodes.empty()) return;
  if (atEnd) {
    enter(root_->nodes.size() - 1, root_->nodes.back()->chunks.size() - 1);
    entity_ = chunkEnd_;
  } else {
    enter(0, 0);
    entity_ = chunkBegin_;
  }
}

void EntityList::Iterator::enter(std::size_t node, std::size_t chunk) {
  node_ = node;
  chunk_ = chunk;
  const Chunk& entities = *root_->nodes[node]->chunks[chunk];
  chunkBegin_ = entities.data();
  chunkEnd_ = chunkBegin_ + entities.size();
}

void EntityList::Iterator::nextChunk() {
  if (chunk_ + 1 < root_->nodes[node_]->chunks.size()) {
    enter(node_, chunk_ + 1);
  } else if (node_ + 1 < root_->nodes.size()) {
    enter(node_ + 1, 0);
  } else {
    return;  // the end is behind the last entity of the last chunk
  }
  entity_ = chunkBegin_;
}

void EntityList::Iterator::previousChunk() {
  if (chunk_ > 0) {
    enter(node_, chunk_ - 1);
  } else {
    enter(node_ - 1, root_->nodes[node_ - 1]->chunks.size() - 1);
  }
  entity_ = chunkEnd_;
}

}  // namespace ostrelon
