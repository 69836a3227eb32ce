// Registers the text classes with the class registry, so that archives can
// name them and build them by name. Called once, in module order, by
// RegisterAllClasses().
#pragma once

namespace paintdoc {

void RegisterTextClasses();

}  // namespace paintdoc
