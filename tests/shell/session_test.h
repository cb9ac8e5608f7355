// A session over the default vocabulary, with an access point that only notes what it is asked.
#pragma once

#include <memory>
#include <optional>

#include "host/host_test.h"
#include "host/shell/session.h"

namespace apconf_test
{

class noting_access_point : public apconf_host::access_point
{
public:
    json_ptr running(const std::string &path) override;
    apconf_host::committed commit(json_object *batch) override;
    apconf_host::committed commit_to_be_confirmed(json_object *batch, int seconds) override;
    std::string confirm() override;

    std::map<std::string, std::string> configuration;  // by path, written as for parse()
    std::vector<std::string> asked;                    // paths
    std::vector<std::string> batches;
    apconf_host::committed answer = {"message 7 is applied\n"};
    int seconds = 0;  // of the last commit that is to be confirmed
    std::optional<std::string> failure;
};

class session_test : public host_test
{
protected:
    void SetUp() override;
    void TearDown() override;

    // What the line prints, and what is wrong with it below a caret under the place.
    std::string execute(const std::string &line);

    // The answers to a text that arrives at once, without pauses.
    std::string paste(const std::string &text);

    // The candidate as lines.
    std::string changes() { return execute("show changes"); }

    // What Tab types, or the candidates that it shows joined by blanks, or the help.
    std::string tab(const std::string &line);

    noting_access_point access_point_;
    std::unique_ptr<apconf_host::vocabulary> vocabulary_;
    std::unique_ptr<apconf_host::session> session_;
};

}  // namespace apconf_test
