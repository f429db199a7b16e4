# QUAZEL_BUILD_DATE: the date at the start of every record of the diagnostic log, such as "Nov 4 2023": month, day
# without a leading zero and year, separated by single spaces. It is the day of the build, or of SOURCE_DATE_EPOCH if
# set, for reproducible builds.
#
# Targets that link quazel_build_date include it as "BuildDate.h". Every build runs this file as a script, which
# rewrites the header only if the day has changed.

if(NOT CMAKE_SCRIPT_MODE_FILE)
    set(_folder ${CMAKE_BINARY_DIR}/generated)
    add_custom_target(build_date_header
        COMMAND ${CMAKE_COMMAND} -DHEADER=${_folder}/BuildDate.h -P ${CMAKE_CURRENT_LIST_FILE}
        BYPRODUCTS ${_folder}/BuildDate.h
        VERBATIM)
    add_library(quazel_build_date INTERFACE)
    add_dependencies(quazel_build_date build_date_header)
    target_include_directories(quazel_build_date INTERFACE ${_folder})
    return()
endif()

# string(TIMESTAMP) uses SOURCE_DATE_EPOCH if set. The month names here don't depend on the locale.
string(TIMESTAMP _now "%m;%d;%Y" UTC)
list(GET _now 0 _month)
list(GET _now 1 _day)
list(GET _now 2 _year)
set(_months Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec)
math(EXPR _month "${_month} - 1")
list(GET _months ${_month} _month)
math(EXPR _day "${_day}")
file(CONFIGURE OUTPUT ${HEADER} CONTENT "#define QUAZEL_BUILD_DATE \"${_month} ${_day} ${_year}\"\n" @ONLY)
