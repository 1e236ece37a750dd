#include "core/entity_list.h"

#include <algorithm>
#include <atomic>
#include <utility>

namespace ostrelon {
namespace {

constexpr std::size_t kChunkSize = 64;      // what bulk work fills a chunk to
constexpr std::size_t kLargestChunk = 128;  // beyond this a chunk is split
constexpr std::size_t kSpareEntities = 4;   // by how many entities' storage an appended chunk grows
constexpr std::size_t kSmallestChunk = 16;  // below this a chunk joins its neighbour
constexpr std::size_t kNodeSize = 64;       // chunks in a node that bulk work has filled
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

std::uint64_t EntityList::freshIdentity() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

void EntityList::addChunk(Node& node, ChunkPointer chunk, std::uint64_t identity) {
  node.ends.push_back(node.size() + chunk->size());
  node.chunks.push_back(std::move(chunk));
  node.identities.push_back(identity);
}

// The last node, owned, or a new one when it is full.
EntityList::Node& EntityList::nodeWithRoom() {
  Root& root = ownRoot();
  if (root.nodes.empty() || root.nodes.back()->chunks.size() >= kNodeSize) {
    root.nodes.push_back(std::make_shared<Node>());
    root.ends.push_back(root.size());
  }
  return ownNode(root.nodes.size() - 1);
}

void EntityList::append(SketchEntity entity) {
  if (empty() || root_->nodes.back()->chunks.back()->size() >= kChunkSize) {
    addChunk(nodeWithRoom(), std::make_shared<Chunk>());
  }
  const std::size_t nodeIndex = root_->nodes.size() - 1;
  const std::size_t chunkIndex = root_->nodes.back()->chunks.size() - 1;
  Chunk& chunk = ownChunk(nodeIndex, chunkIndex);
  // Step by step rather than doubled: where every append has its undo step, the spare storage of a chunk is
  // kept as often as the chunk.
  if (chunk.size() == chunk.capacity()) chunk.reserve(chunk.size() + kSpareEntities);
  chunk.push_back(std::move(entity));
  ++root_->nodes.back()->ends.back();
  ++root_->ends.back();
}

void EntityList::append(std::vector<SketchEntity> entities) {
  // The open chunk at the end takes what fits into it; the rest goes in as whole chunks.
  std::size_t next = 0;
  while (next < entities.size() && !empty() && root_->nodes.back()->chunks.back()->size() % kChunkSize != 0) {
    append(std::move(entities[next++]));
  }
  while (next < entities.size()) {
    const std::size_t end = std::min(entities.size(), next + kChunkSize);
    auto chunk = std::make_shared<Chunk>();
    chunk->reserve(end - next);
    moveAppend(*chunk, entities.begin() + static_cast<std::ptrdiff_t>(next),
               entities.begin() + static_cast<std::ptrdiff_t>(end));
    addChunk(nodeWithRoom(), std::move(chunk));
    root_->ends.back() += end - next;
    next = end;
  }
}

void EntityList::replace(std::size_t index, SketchEntity entity) {
  const Location at = locate(index);
  ownChunk(at.node, at.chunk)[at.offset] = std::move(entity);
}

bool EntityList::replaceAll(const std::vector<std::size_t>& ascendingIndices,
                            const std::vector<SketchEntity>& entities) {
  if (ascendingIndices.size() != entities.size()) return false;
  if (ascendingIndices.empty()) return true;
  if (ascendingIndices.back() >= size()) return false;
  // One walk to check and one to write, each finding a chunk once for all its positions.
  const auto walk = [&](const auto& visitChunk) {
    std::size_t next = 0;
    while (next < ascendingIndices.size()) {
      const Location at = locate(ascendingIndices[next]);
      const std::size_t chunkStart = ascendingIndices[next] - at.offset;
      const std::size_t chunkEnd = chunkStart + root_->nodes[at.node]->chunks[at.chunk]->size();
      std::size_t end = next;
      while (end < ascendingIndices.size() && ascendingIndices[end] < chunkEnd) ++end;
      if (!visitChunk(at, chunkStart, next, end)) return false;
      next = end;
    }
    return true;
  };
  const bool isSame =
      walk([&](const Location& at, std::size_t chunkStart, std::size_t next, std::size_t end) {
        const Chunk& chunk = *root_->nodes[at.node]->chunks[at.chunk];
        for (; next < end; ++next) {
          if (entityID(chunk[ascendingIndices[next] - chunkStart]) != entityID(entities[next])) return false;
        }
        return true;
      });
  if (!isSame) return false;
  return walk([&](const Location& at, std::size_t chunkStart, std::size_t next, std::size_t end) {
    Chunk& chunk = ownChunk(at.node, at.chunk);
    for (; next < end; ++next) chunk[ascendingIndices[next] - chunkStart] = entities[next];
    return true;
  });
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
  // A few positions are taken out in place, from the last to the first.
  if (ascendingIndices.size() <= 32) {
    std::for_each(ascendingIndices.rbegin(), ascendingIndices.rend(),
                  [this](std::size_t index) { remove(index); });
    return;
  }
  // Many are taken out in one walk that keeps the untouched chunks as they are.
  struct Kept {
    ChunkPointer chunk;
    std::uint64_t identity;
  };
  std::vector<Kept> kept;
  std::size_t start = 0;
  auto next = ascendingIndices.begin();
  for (const NodePointer& node : root_->nodes) {
    for (std::size_t i = 0; i < node->chunks.size(); ++i) {
      const ChunkPointer& chunk = node->chunks[i];
      const std::size_t end = start + chunk->size();
      if (next == ascendingIndices.end() || *next >= end) {
        kept.push_back({chunk, node->identities[i]});
      } else {
        auto rest = std::make_shared<Chunk>();
        for (std::size_t index = start; index < end; ++index) {
          if (next != ascendingIndices.end() && *next == index) {
            ++next;
          } else {
            rest->push_back((*chunk)[index - start]);
          }
        }
        const bool joins = !kept.empty() && kept.back().chunk->size() + rest->size() <= kChunkSize &&
                           (rest->size() < kSmallestChunk || kept.back().chunk->size() < kSmallestChunk);
        if (joins) {
          auto joined = std::make_shared<Chunk>(*kept.back().chunk);
          moveAppend(*joined, rest->begin(), rest->end());
          kept.back().chunk = std::move(joined);
        } else if (!rest->empty()) {
          kept.push_back({std::move(rest), node->identities[i]});
        }
      }
      start = end;
    }
  }
  EntityList list;
  for (Kept& row : kept) {
    const std::size_t count = row.chunk->size();
    addChunk(list.nodeWithRoom(), std::move(row.chunk), row.identity);
    list.root_->ends.back() += count;
  }
  *this = std::move(list);
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

std::vector<std::shared_ptr<const EntityList::Chunk>> EntityList::chunks() const {
  std::vector<std::shared_ptr<const Chunk>> all;
  if (!root_) return all;
  for (const NodePointer& node : root_->nodes) {
    all.insert(all.end(), node->chunks.begin(), node->chunks.end());
  }
  return all;
}

EntityList EntityList::fromChunks(std::vector<std::shared_ptr<const Chunk>> chunks) {
  return fromChunks(std::move(chunks), {});
}

EntityList EntityList::fromChunks(std::vector<std::shared_ptr<const Chunk>> chunks, const EntityList& alike) {
  // Each node and each identity of the other list is taken once: a chunk may occur in a list twice.
  std::unordered_map<const Chunk*, NodePointer> nodesByFirstChunk;
  std::unordered_map<const Chunk*, std::uint64_t> identities;
  if (alike.root_) {
    for (const NodePointer& node : alike.root_->nodes) {
      nodesByFirstChunk.emplace(node->chunks.front().get(), node);
      for (std::size_t i = 0; i < node->chunks.size(); ++i) {
        identities.emplace(node->chunks[i].get(), node->identities[i]);
      }
    }
  }
  std::erase_if(chunks, [](const std::shared_ptr<const Chunk>& chunk) { return chunk->empty(); });
  const auto isNodeAt = [&](const Node& node, std::size_t start) {
    return node.chunks.size() <= chunks.size() - start &&
           std::equal(node.chunks.begin(), node.chunks.end(),
                      chunks.begin() + static_cast<std::ptrdiff_t>(start));
  };

  EntityList list;
  std::size_t next = 0;
  bool closesNode = false;
  while (next < chunks.size()) {
    const auto known = nodesByFirstChunk.find(chunks[next].get());
    if (known != nodesByFirstChunk.end() && isNodeAt(*known->second, next)) {
      Root& root = list.ownRoot();
      for (const ChunkPointer& chunk : known->second->chunks) identities.erase(chunk.get());
      next += known->second->chunks.size();
      root.ends.push_back(root.size() + known->second->size());
      root.nodes.push_back(std::move(known->second));
      nodesByFirstChunk.erase(known);
      closesNode = true;
      continue;
    }
    if (std::exchange(closesNode, false)) {
      Root& root = list.ownRoot();
      root.nodes.push_back(std::make_shared<Node>());
      root.ends.push_back(root.size());
    }
    const auto identity = identities.find(chunks[next].get());
    const std::size_t count = chunks[next]->size();
    // Chunks are made non-const by this class alone and written only while no other list holds them, which
    // `ownChunk` ensures.
    addChunk(list.nodeWithRoom(), std::const_pointer_cast<Chunk>(std::move(chunks[next])),
             identity == identities.end() ? freshIdentity() : identity->second);
    if (identity != identities.end()) identities.erase(identity);
    list.root_->ends.back() += count;
    ++next;
  }
  return list;
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
  const auto at = [](auto& list, std::size_t index) {
    return list.begin() + static_cast<std::ptrdiff_t>(index);
  };
  const auto drop = [&](std::size_t index) {
    node.chunks.erase(at(node.chunks, index));
    node.identities.erase(at(node.identities, index));
  };
  if (chunk.size() > kLargestChunk) {
    // The first piece stays the chunk that it was; the others are new chunks after it.
    std::vector<ChunkPointer> pieces;
    std::vector<std::uint64_t> identities;
    for (std::size_t start = kChunkSize; start < chunk.size(); start += kChunkSize) {
      const std::size_t end = std::min(chunk.size(), start + kChunkSize);
      auto piece = std::make_shared<Chunk>();
      piece->reserve(end - start);
      moveAppend(*piece, at(chunk, start), at(chunk, end));
      pieces.push_back(std::move(piece));
      identities.push_back(freshIdentity());
    }
    chunk.resize(kChunkSize);
    node.chunks.insert(at(node.chunks, chunkIndex + 1), pieces.begin(), pieces.end());
    node.identities.insert(at(node.identities, chunkIndex + 1), identities.begin(), identities.end());
  } else if (chunk.empty()) {
    drop(chunkIndex);
  } else if (chunk.size() < kSmallestChunk && node.chunks.size() > 1) {
    const std::size_t left = chunkIndex == 0 ? 0 : chunkIndex - 1;
    if (node.chunks[left]->size() + node.chunks[left + 1]->size() <= kChunkSize) {
      auto joined = std::make_shared<Chunk>(*node.chunks[left]);
      joined->insert(joined->end(), node.chunks[left + 1]->begin(), node.chunks[left + 1]->end());
      node.chunks[left] = std::move(joined);
      drop(left + 1);
    }
  }
  recount(node);

  if (node.chunks.empty()) {
    root.nodes.erase(at(root.nodes, nodeIndex));
  } else if (node.chunks.size() > kLargestNode) {
    std::vector<NodePointer> pieces;
    for (std::size_t start = 0; start < node.chunks.size(); start += kNodeSize) {
      const std::size_t end = std::min(node.chunks.size(), start + kNodeSize);
      auto piece = std::make_shared<Node>();
      piece->chunks.assign(at(node.chunks, start), at(node.chunks, end));
      piece->identities.assign(at(node.identities, start), at(node.identities, end));
      recount(*piece);
      pieces.push_back(std::move(piece));
    }
    const auto place = root.nodes.erase(at(root.nodes, nodeIndex));
    root.nodes.insert(place, pieces.begin(), pieces.end());
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

EntityList::Iterator EntityList::iteratorAt(std::size_t index) const {
  Iterator at(root_.get(), true);
  if (index >= size()) return at;
  const Location place = locate(index);
  at.enter(place.node, place.chunk);
  at.entity_ = at.chunkBegin_ + place.offset;
  return at;
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
    return;  // the end is after the last entity of the last chunk
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
