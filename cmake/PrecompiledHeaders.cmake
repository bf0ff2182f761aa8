# The headers that most sources include, compiled once for a target: reading them takes half of a compilation. Sources
# name what they use all the same, which the linter checks: it reads them without this.
set(KEL_PRECOMPILED algorithm array cstdint map memory optional span sstream string string_view utility vector)

# Precompiles them for a target's C++ sources, with further ones.
function(kel_precompile target)
  foreach(header IN LISTS KEL_PRECOMPILED ARGN)
    target_precompile_headers(${target} PRIVATE "$<$<COMPILE_LANGUAGE:CXX>:<${header}$<ANGLE-R>>")
  endforeach()
endfunction()
