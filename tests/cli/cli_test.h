// What the tests of command lines share: the default vocabulary and short ways between messages and lines.
#pragma once

#include <memory>

#include "host/cli/line_reader.h"
#include "host/cli/lines.h"
#include "host/host_test.h"

namespace apconf_test
{

class cli_test : public host_test
{
protected:
    void SetUp() override
    {
        host_test::SetUp();
        vocabulary_ = std::make_unique<apconf_host::vocabulary>();
    }

    const apconf_host::vocabulary &words() const { return *vocabulary_; }

    // The message that the lines make, as {"config": {...}}, or every problem as "line:column: text".
    std::string read(const std::string &text) const
    {
        const auto result = apconf_host::read_lines(*vocabulary_, text);
        std::string problems;
        for (const auto &problem : result.problems)
            problems +=
                std::to_string(problem.line) + ":" + std::to_string(problem.column) + ": " + problem.text + "\n";
        return result.message ? text_of(result.message.get()) : problems;
    }

private:
    std::unique_ptr<apconf_host::vocabulary> vocabulary_;
};

}  // namespace apconf_test
