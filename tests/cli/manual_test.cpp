// The manual page names what the tool has.
#include <gmock/gmock.h>

#include "cli/command.h"
#include "cli/lun_fields.h"
#include "tests/support/work_folder.h"

namespace quista::test {
namespace {

using testing::HasSubstr;

class ManualTest : public testing::Test {
  protected:
    std::string manual = readFile(QUISTA_MANUAL).value_or("");
};

TEST_F(ManualTest, EveryCommandHasASection) {
    for (const auto& command : cli::makeCommands()) {
        EXPECT_THAT(manual, HasSubstr("\n### `quistactl " + std::string(command->name())));
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
