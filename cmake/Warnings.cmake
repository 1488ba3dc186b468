# Warnings and sanitizers shared by every target of Vorkam.
add_library(vorkam_warnings INTERFACE)
target_compile_options(vorkam_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
  -Woverloaded-virtual)
if(VORKAM_WERROR)
  target_compile_options(vorkam_warnings INTERFACE -Werror)
endif()
if(VORKAM_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()
# The build runs its own tools (the model builder); under the sanitizers they must not fail on
# Qt's caches that live until exit.
set(VORKAM_TOOL_ENV ${CMAKE_COMMAND} -E env ASAN_OPTIONS=detect_leaks=0)
