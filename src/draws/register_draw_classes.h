// Registers every draw class under its archived name with its superclass, so
// that archives can record class chains and build draws by name.
#pragma once

namespace paintdoc {

// Registers the whole draw class tree. Registering again replaces the entries
// with identical ones, so repeated calls are harmless.
void RegisterDrawClasses();

}  // namespace paintdoc
