# Everything the tree builds on; the Debian packages are listed in
# packaging/debian-packages.txt.

find_package(Threads REQUIRED)
find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui Widgets PrintSupport LinguistTools)
find_package(QCustomPlot REQUIRED)
find_package(fmt REQUIRED)
find_package(nlohmann_json REQUIRED)
if(VELMORA_BUILD_TESTS)
    find_package(Qt5 5.15 REQUIRED COMPONENTS Test)
endif()
if(VELMORA_BUILD_BENCH)
    find_package(benchmark REQUIRED)
endif()
find_path(VALIJSON_INCLUDE_DIR valijson/validator.hpp REQUIRED)
