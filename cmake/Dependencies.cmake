# System libraries the platform layer is built on, one interface target a
# group so that each platform module links only what it uses.
find_package(PkgConfig REQUIRED)
pkg_check_modules(PD_CAIRO REQUIRED IMPORTED_TARGET cairo)
pkg_check_modules(PD_TEXT REQUIRED IMPORTED_TARGET pangocairo pango fontconfig)
# Font lookup alone (face traits), for code that does not lay out text.
pkg_check_modules(PD_FONTCONFIG REQUIRED IMPORTED_TARGET fontconfig)
pkg_check_modules(PD_CODECS REQUIRED IMPORTED_TARGET libpng libjpeg libtiff-4 libwebp libwebpdemux lcms2)
find_library(GIF_LIBRARY NAMES gif REQUIRED)
find_path(GIF_INCLUDE_DIR gif_lib.h REQUIRED)
find_package(OpenMP REQUIRED COMPONENTS CXX)
find_package(Threads REQUIRED)

add_library(paintdoc_deps_codecs INTERFACE)
target_link_libraries(paintdoc_deps_codecs INTERFACE PkgConfig::PD_CODECS ${GIF_LIBRARY})
target_include_directories(paintdoc_deps_codecs INTERFACE ${GIF_INCLUDE_DIR})
