#include "platform/values/class_registry.h"

namespace paintdoc {

ClassRegistry& ClassRegistry::shared() {
  static ClassRegistry registry;
  return registry;
}

void ClassRegistry::registerClass(ClassInfo info) {
  std::lock_guard lock(mutex_);
  std::string name = info.name;
  classes_.insert_or_assign(std::move(name), std::move(info));
}

bool ClassRegistry::contains(std::string_view name) const { return find(name) != nullptr; }

const ClassInfo* ClassRegistry::find(std::string_view name) const {
  std::lock_guard lock(mutex_);
  const auto it = classes_.find(name);
  return it == classes_.end() ? nullptr : &it->second;
}

std::vector<std::string> ClassRegistry::classChain(std::string_view name) const {
  std::vector<std::string> chain;
  std::lock_guard lock(mutex_);
  std::string current(name);
  // The chain ends at a root class or at a superclass nobody registered; the
  // length bound keeps a mistaken cycle from looping.
  while (!current.empty() && chain.size() < classes_.size() + 1) {
    const auto it = classes_.find(current);
    if (it == classes_.end()) {
      if (!chain.empty()) chain.push_back(current);
      break;
    }
    chain.push_back(current);
    current = it->second.superclass;
  }
  return chain;
}

bool ClassRegistry::isKindOf(std::string_view name, std::string_view ancestor) const {
  for (const std::string& c : classChain(name)) {
    if (c == ancestor) return true;
  }
  return false;
}

std::shared_ptr<Object> ClassRegistry::create(std::string_view name) const {
  std::function<std::shared_ptr<Object>()> factory;
  {
    std::lock_guard lock(mutex_);
    const auto it = classes_.find(name);
    if (it == classes_.end() || !it->second.factory) return nullptr;
    factory = it->second.factory;
  }
  return factory();
}

}  // namespace paintdoc
