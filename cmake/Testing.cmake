# velmora_add_test(NAME SOURCES file... [LIBRARIES target...] [THREADS] [TIMEOUT seconds])
#
# One Qt Test executable, whose class is in NAME.cpp, and its ctest entry. THREADS marks tests in which two
# threads share data: they are the ones the race preset runs, under the checker.

find_program(VALGRIND_PROGRAM valgrind)

# All that the race preset builds.
add_custom_target(threads-tests)

function(velmora_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "THREADS" "TIMEOUT" "SOURCES;LIBRARIES")
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE Qt5::Test ${arg_LIBRARIES})
    # To look for classes in all sources of so many targets takes longer than many a compilation.
    set_target_properties(${name} PROPERTIES AUTOMOC OFF AUTOUIC OFF)
    qt5_generate_moc("${CMAKE_CURRENT_SOURCE_DIR}/${name}.cpp" "${CMAKE_CURRENT_BINARY_DIR}/${name}.moc"
        TARGET ${name})
    target_sources(${name} PRIVATE "${CMAKE_CURRENT_BINARY_DIR}/${name}.moc")
    target_include_directories(${name} PRIVATE "${CMAKE_CURRENT_BINARY_DIR}")
    velmora_register_test(${name} COMMAND ${name} TIMEOUT "${arg_TIMEOUT}" THREADS ${arg_THREADS})
endfunction()

# velmora_register_test(NAME COMMAND target-or-program arg... [TIMEOUT seconds] [THREADS bool])
function(velmora_register_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "TIMEOUT;THREADS" "COMMAND")
    set(timeout 120)
    if(arg_TIMEOUT)
        set(timeout ${arg_TIMEOUT})
    endif()
    set(checker)
    if(VELMORA_RACE_CHECK AND arg_THREADS)
        set(checker ${VALGRIND_PROGRAM} --tool=helgrind --error-exitcode=9 --fair-sched=try
            --suppressions=${CMAKE_SOURCE_DIR}/tests/tools/helgrind.supp)
        math(EXPR timeout "${timeout} * 5")
    endif()
    list(POP_FRONT arg_COMMAND program)
    if(TARGET ${program})
        set(program $<TARGET_FILE:${program}>)
    endif()
    add_test(NAME ${name} COMMAND ${checker} ${program} ${arg_COMMAND})
    set_tests_properties(${name} PROPERTIES
        TIMEOUT ${timeout}
        ENVIRONMENT "LC_ALL=C.UTF-8;LANGUAGE=;QT_QPA_PLATFORM=offscreen;QT_NO_GLIB=1;LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/tools/lsan.supp;UBSAN_OPTIONS=print_stacktrace=1")
    if(arg_THREADS)
        set_tests_properties(${name} PROPERTIES LABELS threads)
        if(TARGET ${name})
            add_dependencies(threads-tests ${name})
        endif()
    endif()
endfunction()
