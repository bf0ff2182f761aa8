# Makes a target of a library that consists of headers only, which are in the folder of /usr/include that holds `header`.
# A link of its own keeps the host's other headers off the path of a cross-compiler.
function(kel_header_library target header)
  if(TARGET ${target})
    return()
  endif()
  find_path(KEL_${target}_ROOT ${header} PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  get_filename_component(folder ${header} DIRECTORY)
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/${target})
  file(CREATE_LINK ${KEL_${target}_ROOT}/${folder} ${CMAKE_BINARY_DIR}/${target}/${folder} SYMBOLIC)
  add_library(${target} INTERFACE)
  target_include_directories(${target} SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/${target})
endfunction()
