#include "plugin/plugin_registry.h"

#include "platform/values/log.h"
#include "plugin/plugin_uuid.h"

namespace paintdoc {

PlugInRegistry& PlugInRegistry::shared() {
  static PlugInRegistry registry;
  return registry;
}

void PlugInRegistry::addInstanceForFactory(const PaintdocUUIDBytes& factoryID) {
  std::lock_guard lock(mutex_);
  ++instances_[StringFromUUID(factoryID)];
  ++additions_;
}

void PlugInRegistry::removeInstanceForFactory(const PaintdocUUIDBytes& factoryID) {
  std::lock_guard lock(mutex_);
  const std::string key = StringFromUUID(factoryID);
  auto found = instances_.find(key);
  if (found == instances_.end() || found->second == 0) {
    Log("Error: no instance of factory " + key + " is registered");
    return;
  }
  if (--found->second == 0) instances_.erase(found);
  ++removals_;
}

int PlugInRegistry::instanceCount(const PaintdocUUIDBytes& factoryID) const {
  std::lock_guard lock(mutex_);
  auto found = instances_.find(StringFromUUID(factoryID));
  return found == instances_.end() ? 0 : found->second;
}

int PlugInRegistry::additions() const {
  std::lock_guard lock(mutex_);
  return additions_;
}

int PlugInRegistry::removals() const {
  std::lock_guard lock(mutex_);
  return removals_;
}

void PlugInRegistry::reset() {
  std::lock_guard lock(mutex_);
  instances_.clear();
  additions_ = 0;
  removals_ = 0;
}

}  // namespace paintdoc

extern "C" void PaintdocPlugInAddInstanceForFactory(const PaintdocUUIDBytes* factoryID) {
  if (factoryID != nullptr) paintdoc::PlugInRegistry::shared().addInstanceForFactory(*factoryID);
}

extern "C" void PaintdocPlugInRemoveInstanceForFactory(const PaintdocUUIDBytes* factoryID) {
  if (factoryID != nullptr) paintdoc::PlugInRegistry::shared().removeInstanceForFactory(*factoryID);
}
