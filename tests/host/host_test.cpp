#include "host/host_test.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "support/log_capture.h"

namespace apconf_test
{

namespace fs = std::filesystem;

namespace
{

// Once in a process: loading twice would give every node its parameters twice.
void load_tree()
{
    static const bool loaded = [] {
        fs::copy_file(APCONF_SOURCE_DIR "/etc/config_cmd_tree.xml", "/etc/config_cmd_tree.xml",
                      fs::copy_options::overwrite_existing);
        register_root_cmd(lib_pkg_root);
        const log_capture log;
        EXPECT_EQ(command_tree_parser(), 0);
        EXPECT_THAT(log.texts(3), testing::IsEmpty()) << "the schema and the tables disagree";
        apconf_host::install_handlers();
        init_cmd_tree_data();
        return true;
    }();
    ASSERT_TRUE(loaded);
}

void make_empty_queue()
{
    fs::remove_all(CMQ_DIR);
    for (const char *directory : {CMQ_NEW_DIR, CMQ_OLD_DIR, CMQ_BAD_DIR}) fs::create_directories(directory);
    std::ofstream(CMQ_MAX_INDEX) << "1 ";
    std::ofstream(CMQ_CUR_INDEX) << "1 ";
}

json_object *step_into(json_object *value, const std::string &name)
{
    if (json_object_is_type(value, json_type_array))
        return json_object_array_get_idx(value, strtoul(name.c_str(), nullptr, 10));
    return apconf_host::member(value, name.c_str());
}

}  // namespace

json_ptr parse(std::string text)
{
    std::replace(text.begin(), text.end(), '\'', '"');
    json_ptr value(json_tokener_parse(text.c_str()));
    EXPECT_TRUE(value) << text;
    return value;
}

std::string text_of(json_object *value)
{
    return json_object_to_json_string_ext(value, JSON_C_TO_STRING_PLAIN | JSON_C_TO_STRING_NOSLASHESCAPE);
}

void host_test::SetUp()
{
    load_tree();
    make_empty_queue();
}

void host_test::TearDown()
{
    apconf_host::release_configuration();
}

std::vector<std::string> host_test::apply(const std::string &message, apconf_host::role as)
{
    const json_ptr parsed = parse(message);
    apconf_host::outcome outcome;
    outcome.as = as;
    apconf_host::apply_message(parsed.get(), outcome);
    changes = outcome.changes;
    std::vector<std::string> lines;
    for (const auto &refusal : outcome.refusals) lines.push_back(to_text(refusal));
    return lines;
}

std::vector<std::string> host_test::configure(const std::string &body, apconf_host::role as)
{
    return apply("{'ACTION':'set','config':" + body + "}", as);
}

std::vector<std::string> host_test::set(const std::string &path, const std::string &param, apconf_host::role as)
{
    return apply("{'ACTION':'set','CPATH':{'path':'" + path + "','param':" + param + "}}", as);
}

std::string host_test::running()
{
    return text_of(json_ptr(apconf_host::running_configuration()).get());
}

std::string host_test::running(const std::string &place)
{
    const json_ptr everything(apconf_host::running_configuration());
    json_object *here = apconf_host::member(everything.get(), "config");
    for (size_t from = 0; here && from <= place.size();) {
        const size_t slash = std::min(place.find('/', from), place.size());
        here = step_into(here, place.substr(from, slash - from));
        from = slash + 1;
    }
    return text_of(here);
}

}  // namespace apconf_test
