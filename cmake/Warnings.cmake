# Every target of the project builds warning-free on g++ and clang.
function(paintdoc_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Werror)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # g++ 12 reports false -Wrestrict overlaps inside std::string concatenation
    # at -O3 (GCC bug 105329); the warning says nothing about our code.
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
endfunction()
