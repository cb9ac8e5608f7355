# The warnings that the whole project is built with.
add_library(apconf_warnings INTERFACE)
target_compile_options(apconf_warnings INTERFACE -Wall -Wextra -Wshadow -Wconversion -Werror)
