#!/usr/bin/env bash
# test_BuildDate.sh MODULE: checks that a program has the date of its latest build, by building an unchanged tree with
# two values of SOURCE_DATE_EPOCH.
source "$(dirname "$0")/support/expect.sh"
cd "$HOME"
cat >CMakeLists.txt <<END
cmake_minimum_required(VERSION 3.25)
project(dated LANGUAGES CXX)
include($1)
add_executable(dated dated.cpp)
target_link_libraries(dated PRIVATE quazel_build_date)
END
printf '#include "BuildDate.h"\nint main() { return __builtin_puts(QUAZEL_BUILD_DATE) < 0; }' >dated.cpp
cmake -G Ninja -S . -B build
build() { SOURCE_DATE_EPOCH=$1 cmake --build build && build/dated; }
expect 0 $'\nNov 4 2023' build 1699056000
expect 0 $'\nNov 14 2023' build 1700006399
