# Compiler and linker settings shared by the library, the DLL and the tests.
add_library(kel_settings INTERFACE)
target_compile_definitions(kel_settings INTERFACE
  UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0601)

if(MSVC)
  target_compile_options(kel_settings INTERFACE /W4 /WX /permissive- /utf-8 /guard:cf /wd4996)
else()
  target_compile_options(kel_settings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -ffunction-sections -fdata-sections)
  # Static, so that the DLL needs nothing but the system's own libraries.
  target_link_options(kel_settings INTERFACE -static -Wl,--gc-sections)
  # GNU ld, though lld would leave a third of the DLL out: Debian's libstdc++.a is stripped of the symbols that tie
  # unwind data to its function, lld leaves such data out, and an exception through the function ends the host.
  target_link_options(kel_settings INTERFACE
    $<$<CONFIG:MinSizeRel>:-s> -Wl,--dynamicbase -Wl,--no-insert-timestamp -Wl,--nxcompat -Wl,--high-entropy-va)
endif()

if(KEL_CHECKED)
  target_compile_options(kel_settings INTERFACE
    -O1 -fsanitize=undefined -fsanitize-undefined-trap-on-error)
  target_compile_definitions(kel_settings INTERFACE _GLIBCXX_ASSERTIONS)
endif()
