# A room of the house: a static library whose public include folder is its own folder, so that a file
# sees the headers of the rooms it links and no others. The link lines are the architecture.
add_library(korvi_flags INTERFACE)
target_compile_features(korvi_flags INTERFACE cxx_std_20)
target_compile_options(korvi_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
if(KORVI_SANITIZE)
    target_compile_options(korvi_flags INTERFACE -fsanitize=address,undefined -fno-omit-frame-pointer
        -fno-sanitize-recover=undefined)
    target_link_options(korvi_flags INTERFACE -fsanitize=address,undefined)
endif()
if(KORVI_SANITIZE_THREADS)
    target_compile_options(korvi_flags INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
    target_link_options(korvi_flags INTERFACE -fsanitize=thread)
endif()
if(KORVI_FUZZ)
    # -fsanitize=fuzzer-no-link: coverage in the code under test, main() only in the harness.
    target_compile_options(korvi_flags INTERFACE -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined)
    target_link_options(korvi_flags INTERFACE -fsanitize=address,undefined)
endif()

# korvi_room(NAME SOURCES... [LINK targets...] [PRIVATE_LINK targets...])
function(korvi_room name)
    cmake_parse_arguments(arg "" "" "SOURCES;LINK;PRIVATE_LINK" ${ARGN})
    add_library(${name} STATIC ${arg_SOURCES})
    target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${arg_LINK} PRIVATE korvi_flags ${arg_PRIVATE_LINK})
endfunction()

# korvi_test(NAME SOURCES... LINK targets... [LABELS ...]): one GoogleTest program, one ctest entry.
function(korvi_test name)
    cmake_parse_arguments(arg "" "" "SOURCES;LINK;LABELS;ENV" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ${arg_LINK} korvi_flags GTest::gmock)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 300 LABELS "${arg_LABELS}" ENVIRONMENT
        "QT_QPA_PLATFORM=offscreen;ASAN_OPTIONS=detect_leaks=1;LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/cmake/lsan.supp:print_suppressions=0;TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1;${arg_ENV}")
endfunction()
