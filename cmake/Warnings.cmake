# Every target of the project builds warning-free on g++ and clang.
function(paintdoc_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Werror)
endfunction()
