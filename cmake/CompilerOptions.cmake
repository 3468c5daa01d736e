# Compiler settings shared by every target of the tree.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# Libraries export only what their headers mark; the plug-in and both hosts
# are exchangeable only as far as nothing else is visible.
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTORCC ON)
set(CMAKE_AUTOUIC ON)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    # The sloppiness that precompiled headers need.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime "${CCACHE_PROGRAM}")
endif()

add_compile_options(
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror
    # A fused multiply-add rounds once where the model's formulas round twice:
    # results must not depend on what the compiler fuses.
    -ffp-contract=off)
add_compile_definitions(QT_NO_CAST_FROM_ASCII QT_NO_KEYWORDS)

# --as-needed keeps the measuring tool free of the widget libraries that only
# the graph adapters of the engine's library use.
add_link_options(-Wl,-z,defs -Wl,--as-needed)

if(VELMORA_SANITIZE)
    # Conversions of doubles out of range are undefined, but not part of `undefined`.
    add_compile_options(-fsanitize=address,undefined,float-cast-overflow
        -fno-sanitize-recover=undefined,float-cast-overflow -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
if(VELMORA_RACE_CHECK)
    # The second switches off a short cut of shared_ptr that reads its counts
    # without the lock prefix by which the checker knows an atomic access.
    add_compile_definitions(VELMORA_RACE_CHECK _GLIBCXX_TSAN=1)
    add_compile_options(-include "${CMAKE_SOURCE_DIR}/cmake/RaceCheck.h")
endif()

# bin/ programs, lib/ host libraries; the tests' second host has its own folder.
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
