# The headers that most sources include, compiled once per target: reading them takes half of a compilation. Sources
# still have to include what they use; the linter, which runs without this, checks that.
set(KEL_PRECOMPILED algorithm array cstdint map memory optional span sstream string string_view utility vector)

# Precompiles these headers, and any further arguments, for a target's C++ sources.
function(kel_precompile target)
  foreach(header IN LISTS KEL_PRECOMPILED ARGN)
    target_precompile_headers(${target} PRIVATE "$<$<COMPILE_LANGUAGE:CXX>:<${header}$<ANGLE-R>>")
  endforeach()
endfunction()

option(KEL_UNITY "Compile the sources of a folder as one" ON)

# Compiles a target's sources by folder instead of one by one, which takes half the time: each header is read once per
# folder. Names in unnamed namespaces therefore have to be unique in a folder; the arguments after the target name the
# folders where they are not, whose sources are compiled separately. With -DKEL_UNITY=OFF all sources are.
function(kel_unite target)
  if(NOT KEL_UNITY)
    return()
  endif()
  get_target_property(sources ${target} SOURCES)
  foreach(source IN LISTS sources)
    get_filename_component(folder ${source} ABSOLUTE)
    get_filename_component(folder ${folder} DIRECTORY)
    file(RELATIVE_PATH folder ${CMAKE_SOURCE_DIR} ${folder})
    if(NOT folder IN_LIST ARGN)
      string(MAKE_C_IDENTIFIER "${folder}" group)
      set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${group})
    endif()
  endforeach()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # The combined source includes the others, and GCC warns about unnamed namespaces in included files.
    target_compile_options(${target} PRIVATE -Wno-subobject-linkage)
  endif()
endfunction()
