// The manual page names what the tool has.
#include <gtest/gtest.h>

#include "cli/command.h"
#include "cli/lun_fields.h"
#include "tests/support/work_folder.h"

namespace quista::test {
namespace {

// The commands of a group share a section.
std::string group(const std::string& name) {
    return name.substr(0, name.find(' '));
}

class ManualTest : public testing::Test {
  protected:
    /// Whether the manual has this word as code. Not a matcher, which would print the manual.
    bool names(const std::string& word) const {
        return manual.find("`" + word) != std::string::npos;
    }
    bool describes(const cli::FieldHelp& field) const {
        return field.key.empty() || names(std::string(field.key) + "`");
    }

    std::string manual = readFile(QUISTA_MANUAL).value_or("");
};

TEST_F(ManualTest, EveryCommandHasASection) {
    for (const auto& command : cli::makeCommands()) {
        const std::string name = "`quistactl " + std::string(command->name());
        const bool isHeading =
            manual.find("\n### " + name) != std::string::npos ||
            manual.find("\n### `quistactl " + group(command->name())) != std::string::npos;
        EXPECT_TRUE(isHeading) << command->name();
        EXPECT_TRUE(names("quistactl " + std::string(command->name()))) << command->name();
    }
}

TEST_F(ManualTest, EveryFieldIsDescribed) {
    for (const auto& command : cli::makeCommands()) {
        for (const cli::FieldHelp& field : command->fields()) {
            EXPECT_TRUE(describes(field)) << field.key << " of " << command->name();
        }
    }
    for (const cli::FieldHelp& field : cli::fieldHelp(cli::summaryFields())) {
        EXPECT_TRUE(describes(field)) << field.key;
    }
}

TEST_F(ManualTest, EveryOptionIsDescribed) {
    for (const char* option :
         {"--simulate", "--json", "--no-headers", "--color", "--timeout", "--version", "--help"}) {
        EXPECT_TRUE(names(option)) << option;
    }
}

}  // namespace
}  // namespace quista::test
