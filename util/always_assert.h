// Assertions that stay in release builds: ALWAYS_ASSERT stops the process and names the condition and the file.
#pragma once

#undef NDEBUG
#include <cassert>

#define ALWAYS_ASSERT(condition) assert(condition)
