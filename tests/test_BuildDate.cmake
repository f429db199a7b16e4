# The date in a program is that of its build: builds of one tree, nothing touched, on days of SOURCE_DATE_EPOCH.
#
#   cmake -DMODULE=BuildDate.cmake -DFOLDER=DIR -P test_BuildDate.cmake

file(REMOVE_RECURSE ${FOLDER})
file(WRITE ${FOLDER}/CMakeLists.txt "cmake_minimum_required(VERSION 3.25)
project(dated LANGUAGES CXX)
include(${MODULE})
add_executable(dated dated.cpp)
target_link_libraries(dated PRIVATE quazel_build_date)
")
file(WRITE ${FOLDER}/dated.cpp "#include \"BuildDate.h\"
#include <cstdio>
int main() { std::puts(QUAZEL_BUILD_DATE); }
")
function(quietly)
    execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    set(output ${output} PARENT_SCOPE)
endfunction()

quietly(${CMAKE_COMMAND} -G Ninja -S ${FOLDER} -B ${FOLDER}/build)
foreach(day "1699056000;Nov 4 2023;built" "1700000000;Nov 14 2023;built" "1700006399;Nov 14 2023;left alone")
    list(POP_FRONT day epoch)
    set(ENV{SOURCE_DATE_EPOCH} ${epoch})
    quietly(${CMAKE_COMMAND} --build ${FOLDER}/build)
    set(work "left alone")
    if(output MATCHES "Building CXX")
        set(work "built")
    endif()
    quietly(${FOLDER}/build/dated)
    if(NOT "${output};${work}" STREQUAL "${day}")
        message(SEND_ERROR "\"${output}\", ${work}, instead of ${day}")
    endif()
endforeach()
