#include <filesystem>
#include <sstream>

#include "host/tool/problem.h"
#include "shell/session_test.h"

namespace apconf_test
{

json_ptr noting_access_point::running(const std::string &path)
{
    asked.push_back(path);
    if (failure) throw apconf_host::failure(*failure);
    const auto found = configuration.find(path);
    return parse(found == configuration.end() ? "{}" : found->second);
}

apconf_host::committed noting_access_point::commit(json_object *batch)
{
    if (failure) throw apconf_host::failure(*failure);
    batches.push_back(text_of(batch));
    return answer;
}

apconf_host::committed noting_access_point::commit_to_be_confirmed(json_object *batch, int within)
{
    seconds = within;
    return commit(batch);
}

std::string noting_access_point::confirm()
{
    if (failure) throw apconf_host::failure(*failure);
    return "message 7 is confirmed\n";
}

void session_test::SetUp()
{
    host_test::SetUp();
    std::filesystem::copy_file(APCONF_SOURCE_DIR "/etc/cmd_tree_help.txt", "/etc/cmd_tree_help.txt",
                               std::filesystem::copy_options::overwrite_existing);
    load_help_map(apconf_host::vocabulary::default_help);
    vocabulary_ = std::make_unique<apconf_host::vocabulary>();
    session_ = std::make_unique<apconf_host::session>(*vocabulary_, access_point_);
}

void session_test::TearDown()
{
    free_help_map();
    host_test::TearDown();
}

std::string session_test::execute(const std::string &line)
{
    session_->pause();
    return paste(line);
}

std::string session_test::paste(const std::string &text)
{
    std::istringstream lines(text);
    std::string answers;
    for (std::string line; std::getline(lines, line);) {
        const apconf_host::reply reply = session_->execute(line);
        answers += reply.output;
        if (!reply.wrong) continue;
        if (reply.wrong->column) answers += std::string(*reply.wrong->column, ' ') + "^\n";
        answers += reply.wrong->text + "\n";
    }
    return answers;
}

std::string session_test::tab(const std::string &line)
{
    const apconf_host::completion found = session_->complete(line);
    if (!found.insertion.empty()) return found.insertion;
    std::string candidates;
    for (const std::string &candidate : found.candidates) candidates += (candidates.empty() ? "" : " ") + candidate;
    return candidates + found.help;
}

}  // namespace apconf_test
