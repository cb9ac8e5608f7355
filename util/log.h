// Log lines: one syslog call each, opening with the reporting function's name and a line number.
#pragma once

#include <syslog.h>

// LOG_AS names another function than the one the call stands in, for code that serves many.
#define LOG_AS(function, priority, format, ...) \
    syslog(priority, "[%s:%d] " format "\n", function, __LINE__ __VA_OPT__(, ) __VA_ARGS__)
#define LOG(priority, format, ...) LOG_AS(__func__, priority, format __VA_OPT__(, ) __VA_ARGS__)
