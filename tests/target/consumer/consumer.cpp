// Somebody else's program in C++, against the installed library: types, token tables and package tables.
#include <apconf/apconf.h>

#include <iostream>
#include <iterator>
#include <string>

int main()
{
    uint32_t address = 0;
    if (convert_ptype_to_value(PTYPE_IPV4, &address, "192.0.2.1", nullptr) != 0 || address != 0xC0000201) return 1;
    if (get_ptype_value_string(PTYPE_IPV4, &address) != std::string("192.0.2.1")) return 1;
    if (std::size(param_types) != 83 || get_ptype_by_name("STATUS") != PTYPE_STATUS) return 1;
    if (get_enum_id(STATUS_pairs, static_cast<int>(std::size(STATUS_pairs)), "enable") < 0) return 1;

    size_t commands = 0;
    while (lib_pkg_bss[commands].name) ++commands;
    std::cout << "lib_pkg_bss: " << commands << " records\n";
    cmd_node *const config = search_child_cmd(register_root_cmd(lib_pkg_root), "config");
    return config && config->children == lib_pkg_config && commands > 0 ? 0 : 1;
}
