# QUAZEL_BUILD_DATE: the date that stands before every record of the diagnostic log, such as "Nov 4 2023": month,
# day without a leading zero and year, with single spaces. It is taken when the program is configured, from
# SOURCE_DATE_EPOCH where that is set so that builds reproduce, or by hand with -DQUAZEL_BUILD_DATE="Nov 4 2023".

set(QUAZEL_BUILD_DATE "" CACHE STRING "Date in the diagnostic log; empty takes the day of configuring")

if(NOT QUAZEL_BUILD_DATE)
    # string(TIMESTAMP) reads SOURCE_DATE_EPOCH by itself. The month's name does not depend on the locale here.
    string(TIMESTAMP _now "%m;%d;%Y" UTC)
    list(GET _now 0 _month)
    list(GET _now 1 _day)
    list(GET _now 2 _year)
    set(_months Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec)
    math(EXPR _month "${_month} - 1")
    list(GET _months ${_month} _month)
    math(EXPR _day "${_day}")
    # A normal variable hides the cache entry, so a later configuring takes its own day.
    set(QUAZEL_BUILD_DATE "${_month} ${_day} ${_year}")
endif()

if(NOT QUAZEL_BUILD_DATE MATCHES "^(Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) [1-9][0-9]? [0-9][0-9][0-9][0-9]$")
    message(FATAL_ERROR "QUAZEL_BUILD_DATE is \"${QUAZEL_BUILD_DATE}\", not of the form \"Nov 4 2023\"")
endif()
