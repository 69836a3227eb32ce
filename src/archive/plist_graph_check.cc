#include "archive/plist_graph_check.h"

#include <vector>

#include "archive/property_list.h"

namespace paintdoc {

namespace {

bool IsContainer(PlistType type) {
  return type == PlistType::Array || type == PlistType::Set || type == PlistType::Dictionary;
}

// References held by a container: elements, or a dictionary's keys and values.
uint64_t ReferenceCount(const PlistObject& object) {
  return object.type == PlistType::Dictionary ? 2 * uint64_t{object.count} : object.count;
}

}  // namespace

bool CheckPlistGraph(const PropertyList& plist, uint32_t top, const ArchiveLimits& limits,
                     std::string* error) {
  // Depth-first walk with an explicit stack (files may nest deeply). A node is
  // unvisited, on the current path, or finished; meeting a node on the path is
  // a cycle. Finished nodes are not walked again, so the walk is linear in the
  // number of references even when containers are shared.
  enum class State : uint8_t { Unvisited, OnPath, Finished };
  std::vector<State> state(plist.size(), State::Unvisited);
  struct Frame {
    uint32_t node;
    uint64_t next;  // next reference to follow
  };
  std::vector<Frame> path;

  auto enter = [&](uint32_t node) -> bool {
    if (state[node] == State::Finished || !IsContainer(plist.typeAt(node))) return true;
    if (state[node] == State::OnPath) {
      if (error) *error = "object " + std::to_string(node) + " contains itself";
      return false;
    }
    if (path.size() >= limits.maxDepth) {
      if (error) *error = "containers nest deeper than " + std::to_string(limits.maxDepth);
      return false;
    }
    state[node] = State::OnPath;
    path.push_back({node, 0});
    return true;
  };

  if (!enter(top)) return false;
  while (!path.empty()) {
    Frame& frame = path.back();
    const PlistObject& object = plist.at(frame.node);
    if (frame.next == ReferenceCount(object)) {
      state[frame.node] = State::Finished;
      path.pop_back();
      continue;
    }
    const uint32_t child = plist.elementAt(frame.node, static_cast<uint32_t>(frame.next++));
    if (!enter(child)) return false;
  }
  return true;
}

}  // namespace paintdoc
