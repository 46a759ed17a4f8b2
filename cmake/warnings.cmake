# The warnings our own targets are built with. GCC 12 sees -Wrestrict faults in std::string's own
# operator+ that are none.
function(kiv_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
    $<$<BOOL:${KIV_WERROR}>:-Werror>)
endfunction()
