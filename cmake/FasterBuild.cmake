# The headers that most sources include, compiled once for a target: reading them takes half of a compilation. Sources
# name what they use all the same, which the linter checks: it reads them without this.
set(KEL_PRECOMPILED algorithm array cstdint map memory optional span sstream string string_view utility vector)

# Precompiles them for a target's C++ sources, with further ones.
function(kel_precompile target)
  foreach(header IN LISTS KEL_PRECOMPILED ARGN)
    target_precompile_headers(${target} PRIVATE "$<$<COMPILE_LANGUAGE:CXX>:<${header}$<ANGLE-R>>")
  endforeach()
endfunction()

option(KEL_UNITY "Compile the sources of a folder as one" ON)

# Compiles a target's sources by folder instead of one by one, which takes half the time: each header is read once for the
# folder. Names in unnamed namespaces are therefore unique in a folder; folders for which they are not are named after the
# target, and their sources are compiled by themselves. With -DKEL_UNITY=OFF all are.
function(kel_unite target)
  if(NOT KEL_UNITY)
    return()
  endif()
  get_target_property(sources ${target} SOURCES)
  foreach(source IN LISTS sources)
    get_filename_component(folder ${source} DIRECTORY)
    file(RELATIVE_PATH folder ${CMAKE_SOURCE_DIR} ${folder})
    if(NOT folder IN_LIST ARGN)
      string(MAKE_C_IDENTIFIER "${folder}" group)
      set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${group})
    endif()
  endforeach()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # A source is a header of the folder's, whose unnamed namespaces GCC takes for those of several sources.
    target_compile_options(${target} PRIVATE -Wno-subobject-linkage)
  endif()
endfunction()
