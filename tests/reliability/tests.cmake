# Reliability: power cuts in the middle of every kind of write. vorkam_powercut kills a child
# process at random moments inside each operation and checks the books it leaves, once as a
# killed process and once with the unflushed writes lost as well (--cache, through the preloaded
# pagecache library); CTest runs a short round per operation (`--trials 200` is the long one).
add_library(vorkam_pagecache MODULE reliability/pagecache.c)
# Preloaded into a sanitized program, the library itself is plain C without the sanitizers.
set_target_properties(vorkam_pagecache PROPERTIES AUTOMOC OFF AUTOUIC OFF COMPILE_OPTIONS "-O2;-Wall;-Wextra;-Wno-format-truncation" LINK_OPTIONS ""
  LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
target_link_libraries(vorkam_pagecache PRIVATE dl)
add_executable(vorkam_powercut reliability/vorkam_powercut.cpp)
target_link_libraries(vorkam_powercut PRIVATE vorkam_logic vorkam_warnings)
target_compile_definitions(vorkam_powercut PRIVATE VORKAM_BIN_DIR="${VORKAM_BIN_DIR}"
  VORKAM_PAGECACHE="$<TARGET_FILE:vorkam_pagecache>")
set_target_properties(vorkam_powercut PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
add_dependencies(vorkam_powercut vorkam_data vorkam_pagecache)
foreach(op tosite poisto tili vaihto jarjestely palautus)
  foreach(mode kill cache)
    set(flags)
    if(mode STREQUAL cache)
      set(flags --cache)
    endif()
    add_test(NAME powercut_${mode}_${op} COMMAND vorkam_powercut --trials 20 --operation ${op} ${flags})
    set_tests_properties(powercut_${mode}_${op} PROPERTIES
      ENVIRONMENT "QT_QPA_PLATFORM=offscreen;HOME=${VORKAM_TEST_HOME};XDG_CONFIG_HOME=${VORKAM_TEST_HOME}/.config;ASAN_OPTIONS=detect_leaks=0;UBSAN_OPTIONS=print_stacktrace=1"
      TIMEOUT 300)
  endforeach()
endforeach()
# Damaged and foreign files through the start-up, the settings window, the restore and
# vorkam_report.
vorkam_add_test(tst_DamagedFiles SOURCES reliability/tst_DamagedFiles.cpp)
add_dependencies(tst_DamagedFiles vorkam_report vorkam_data)
