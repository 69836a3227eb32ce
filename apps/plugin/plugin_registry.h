// The host's record of live plug-in instances by factory, standing in for the
// plug-in model's instance registration. A plug-in registers each instance it
// makes and unregisters it when the instance is freed; hosts and tests read
// the counts. Linking this file into a host program defines the two
// registration functions that the plug-in calls (see plugin_interface.h); a
// host that loads the plug-in with dlopen must export them (-rdynamic).
#pragma once

#include <map>
#include <mutex>
#include <string>

#include "plugin/plugin_interface.h"

namespace paintdoc {

class PlugInRegistry {
 public:
  static PlugInRegistry& shared();

  void addInstanceForFactory(const PaintdocUUIDBytes& factoryID);
  // Logs an "Error: " line when no instance of that factory is registered.
  void removeInstanceForFactory(const PaintdocUUIDBytes& factoryID);

  // Live instances of the factory.
  int instanceCount(const PaintdocUUIDBytes& factoryID) const;
  // Registrations and unregistrations seen since the last reset.
  int additions() const;
  int removals() const;
  void reset();

 private:
  mutable std::mutex mutex_;
  std::map<std::string, int> instances_;  // by the factory's text form
  int additions_ = 0;
  int removals_ = 0;
};

}  // namespace paintdoc
