// Registers the draw classes of this module: the base, rectangles, lines and groups with the class registry, so that archives can
// name them and build them by name. Called once, in module order, by
// RegisterAllClasses().
#pragma once

namespace paintdoc {

void RegisterDrawClasses();

}  // namespace paintdoc
