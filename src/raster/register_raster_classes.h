// Registers the raster layer classes: images, filters, fills, freehand tools and selections with the class registry, so that archives can
// name them and build them by name. Called once, in module order, by
// RegisterAllClasses().
#pragma once

namespace paintdoc {

void RegisterRasterClasses();

}  // namespace paintdoc
