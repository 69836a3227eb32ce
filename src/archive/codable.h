// The base of every class that archives itself through keyed coding.
#pragma once

#include "platform/values/class_registry.h"

namespace paintdoc {

class KeyedArchiver;
class KeyedUnarchiver;

class Codable : public Object {
 public:
  // Writes the object's state under its keys; a subclass writes its
  // superclass's keys first and then its own.
  virtual void encodeWithCoder(KeyedArchiver& coder) const = 0;
  // Reads the state of a freshly created instance. Answering false makes the
  // object decode as absent (a newer format, a wrong shape); the rest of the
  // archive still decodes.
  virtual bool initWithCoder(KeyedUnarchiver& coder) = 0;
};

}  // namespace paintdoc
