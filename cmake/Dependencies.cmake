# System libraries the platform layer is built on, gathered into one interface target.
find_package(PkgConfig REQUIRED)
pkg_check_modules(PD_DEPS REQUIRED IMPORTED_TARGET
  cairo pangocairo pango fontconfig libpng libjpeg libtiff-4 libwebp libwebpdemux)
find_library(GIF_LIBRARY NAMES gif REQUIRED)
find_path(GIF_INCLUDE_DIR gif_lib.h REQUIRED)
find_package(OpenMP REQUIRED COMPONENTS CXX)
find_package(Threads REQUIRED)

add_library(paintdoc_deps INTERFACE)
add_library(paintdoc::deps ALIAS paintdoc_deps)
target_link_libraries(paintdoc_deps INTERFACE
  PkgConfig::PD_DEPS ${GIF_LIBRARY} OpenMP::OpenMP_CXX Threads::Threads ${CMAKE_DL_LIBS})
target_include_directories(paintdoc_deps INTERFACE ${GIF_INCLUDE_DIR})
