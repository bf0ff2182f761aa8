# Cross-builds for 64-bit Windows with clang, on MinGW-w64's headers and libraries: it shows what a compiler other than GCC
# refuses. Not for releases: lld leaves unwind data of Debian's libstdc++ out (CompilerSettings.cmake), and some failed allocations
# then end in wrong results; the same objects, linked with GNU ld, pass.
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)

set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET x86_64-w64-windows-gnu)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-windows-gnu)

# Clang does not find the folder of Debian's GCC for POSIX threads by itself.
execute_process(COMMAND ${triple}-g++-posix -print-libgcc-file-name OUTPUT_VARIABLE libgcc OUTPUT_STRIP_TRAILING_WHITESPACE)
get_filename_component(gcc_folder ${libgcc} DIRECTORY)
# GCC's library emulates variables of threads, and so has to what uses them.
set(CMAKE_CXX_FLAGS_INIT
  "-isystem ${gcc_folder}/include/c++ -isystem ${gcc_folder}/include/c++/${triple} -femulated-tls")
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-fuse-ld=lld -L${gcc_folder} -lwinpthread")
endforeach()
