// The manual page names what the tool has.
#include <gmock/gmock.h>

#include "cli/command.h"
#include "cli/lun_fields.h"
#include "tests/support/work_folder.h"

namespace quista::test {
namespace {

using testing::HasSubstr;

// The commands of a group share a section.
std::string group(const std::string& name) {
    return name.substr(0, name.find(' '));
}

class ManualTest : public testing::Test {
  protected:
    std::string manual = readFile(QUISTA_MANUAL).value_or("");
};

TEST_F(ManualTest, EveryCommandHasASection) {
    for (const auto& command : cli::makeCommands()) {
        const std::string name = "`quistactl " + std::string(command->name());
        const bool isHeading =
            manual.find("\n### " + name) != std::string::npos ||
            manual.find("\n### `quistactl " + group(command->name())) != std::string::npos;
        EXPECT_TRUE(isHeading) << command->name();
        EXPECT_NE(manual.find(name), std::string::npos) << command->name();
    }
}

TEST_F(ManualTest, EveryFieldIsDescribed) {
    for (const auto& command : cli::makeCommands()) {
        for (const cli::FieldHelp& field : command->fields()) {
            EXPECT_THAT(manual, HasSubstr("`" + std::string(field.key) + "`")) << command->name();
        }
    }
    for (const cli::FieldHelp& field : cli::fieldHelp(cli::summaryFields())) {
        EXPECT_THAT(manual, HasSubstr("`" + std::string(field.key) + "`"));
    }
}

TEST_F(ManualTest, EveryOptionIsDescribed) {
    for (const char* option :
         {"--simulate", "--json", "--no-headers", "--color", "--timeout", "--version", "--help"}) {
        EXPECT_THAT(manual, HasSubstr("`" + std::string(option)));
    }
}

}  // namespace
}  // namespace quista::test
