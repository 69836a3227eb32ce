// Every archivable class by name: its superclass and a factory. Archives use it
// to write class chains and to build objects by name; model code uses it for
// "is a kind of" questions about classes that live in higher modules.
//
// Classes are registered explicitly by each module's registration function
// (no static initialisers: the library is also linked statically).
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace paintdoc {

// The root of every archivable class.
class Object {
 public:
  virtual ~Object() = default;
  // The class name as archives record it ("DrawRectangle").
  virtual std::string className() const = 0;
};

// The superclass of the root classes as archives name it.
struct RootObject {
  static constexpr const char* kClassName = "NSObject";
};

// Declares an archivable class's name and its superclass in one place: the
// archived name (kClassName, answered by className()) and the `Superclass`
// alias from which RegisterClass<T>() reads the superclass's name, so that the
// registered class chain follows the C++ bases and cannot drift from them.
#define PAINTDOC_CLASS(Name, Base)                               \
 public:                                                         \
  static constexpr const char* kClassName = #Name;               \
  using Superclass = Base;                                       \
  std::string className() const override { return kClassName; }

struct ClassInfo {
  std::string name;
  std::string superclass;  // empty for a root class
  std::function<std::shared_ptr<Object>()> factory;  // may be empty (abstract)
};

class ClassRegistry {
 public:
  static ClassRegistry& shared();

  // Registering a name again replaces its entry.
  void registerClass(ClassInfo info);
  bool contains(std::string_view name) const;
  const ClassInfo* find(std::string_view name) const;
  // The class and its superclasses, most specific first ({} for an unknown name).
  std::vector<std::string> classChain(std::string_view name) const;
  bool isKindOf(std::string_view name, std::string_view ancestor) const;
  // A new instance, or null for an unknown or abstract class.
  std::shared_ptr<Object> create(std::string_view name) const;

 private:
  mutable std::mutex mutex_;
  std::map<std::string, ClassInfo, std::less<>> classes_;
};

// Registers T under its name and its superclass's name. A decoded object
// starts from T's default construction; its archive supplies the rest.
template <class T>
void RegisterClass() {
  ClassRegistry::shared().registerClass(
      {T::kClassName, T::Superclass::kClassName, [] { return std::make_shared<T>(); }});
}

}  // namespace paintdoc
