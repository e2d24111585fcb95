#include "cli/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/failure.h"

namespace quista::cli {
namespace {

using testing::HasSubstr;

std::vector<std::string> wordsOf(const std::string& name) {
    const std::size_t blank = name.find(' ');
    if (blank == std::string::npos) return {name};
    return {name.substr(0, blank), name.substr(blank + 1)};
}

struct Parsed {
    std::string command;
    Options options;
    std::string text;
};

Parsed parse(const std::vector<std::string>& arguments) {
    CommandLine line;
    const Command* command = line.parse(arguments);
    return {command == nullptr ? "" : command->name(), line.options(), line.text()};
}

std::string complaint(const std::vector<std::string>& arguments) {
    try {
        parse(arguments);
    } catch (const UsageError& error) {
        EXPECT_EQ(error.exitCode(), ExitCode::kUsage);
        return error.what();
    }
    return "no complaint";
}

TEST(CommandLineTest, DefaultsAreForPeople) {
    const Parsed parsed = parse({"luns"});
    EXPECT_EQ(parsed.command, "luns");
    EXPECT_FALSE(parsed.options.isJson);
    EXPECT_TRUE(parsed.options.hasHeaders);
    EXPECT_EQ(parsed.options.color, ColorChoice::kAuto);
    EXPECT_EQ(parsed.options.timeLimit(), std::chrono::seconds(120));
    EXPECT_EQ(parsed.options.simulatedHost, "");
}

TEST(CommandLineTest, OptionsStandBeforeOrBehindTheCommand) {
    const std::vector<std::string> options = {
        "--json", "--no-headers", "--color", "always", "--timeout", "7", "--simulate", "standard"};
    for (const bool areBehind : {false, true}) {
        std::vector<std::string> arguments = options;
        arguments.insert(areBehind ? arguments.begin() : arguments.end(), "luns");
        const Parsed parsed = parse(arguments);
        EXPECT_EQ(parsed.command, "luns");
        EXPECT_TRUE(parsed.options.isJson);
        EXPECT_FALSE(parsed.options.hasHeaders);
        EXPECT_EQ(parsed.options.color, ColorChoice::kAlways);
        EXPECT_EQ(parsed.options.timeLimit(), std::chrono::seconds(7));
        EXPECT_EQ(parsed.options.simulatedHost, "standard");
    }
}

TEST(CommandLineTest, TimeoutZeroIsNoLimit) {
    EXPECT_EQ(parse({"luns", "--timeout=0"}).options.timeLimit(), std::nullopt);
}

TEST(CommandLineTest, PathsWithSlashesAreNoOptions) {
    EXPECT_EQ(parse({"--simulate", "/hosts/a.mof", "luns"}).options.simulatedHost, "/hosts/a.mof");
}

TEST(CommandLineTest, SerialNumbersMayLookLikeCommandsOrOptions) {
    EXPECT_EQ(parse({"lun", "paths"}).command, "lun");
    EXPECT_EQ(parse({"lun", "--", "-x"}).command, "lun");
}

TEST(CommandLineTest, VersionIsTextAlone) {
    const Parsed parsed = parse({"--version"});
    EXPECT_EQ(parsed.command, "");
    EXPECT_THAT(parsed.text, testing::MatchesRegex("quistactl \\d+\\.\\d+\\.\\d+\n"));
}

TEST(CommandLineTest, HelpListsEveryCommandAndOption) {
    const std::string help = parse({"--help"}).text;
    for (const auto& command : makeCommands()) {
        const auto words = wordsOf(command->name());
        EXPECT_THAT(
            help, HasSubstr(words.size() == 1 ? command->summary() : groupSummary(words.front())));
    }
    for (const char* option : {"--simulate", "--json", "--no-headers", "--color", "--timeout"}) {
        EXPECT_THAT(help, HasSubstr(option));
    }
}

TEST(CommandLineTest, HelpOfEveryCommandHasAnExampleAndItsFields) {
    for (const auto& command : makeCommands()) {
        std::vector<std::string> arguments = wordsOf(command->name());
        arguments.emplace_back("--help");
        const std::string help = parse(arguments).text;
        EXPECT_THAT(help, HasSubstr("Example:\n  quistactl "));
        EXPECT_THAT(help, HasSubstr(command->example()));
        EXPECT_FALSE(command->fields().empty());
        for (const FieldHelp& field : command->fields()) {
            EXPECT_THAT(help, HasSubstr(std::string(field.help)));
        }
    }
}

struct WrongArguments {
    std::vector<std::string> arguments;
    std::vector<std::string> expected;  ///< parts of the complaint
};

class WrongArgumentsTest : public testing::TestWithParam<WrongArguments> {};

TEST_P(WrongArgumentsTest, OneLineSaysWhatWasWrongAndWhatIsExpected) {
    const std::string line = complaint(GetParam().arguments);
    for (const std::string& part : GetParam().expected) EXPECT_THAT(line, HasSubstr(part));
    EXPECT_EQ(line.find('\n'), std::string::npos);
    EXPECT_THAT(line, HasSubstr("--help"));
}

const WrongArguments kWrongArguments[] = {
    {{}, {"no command given", "status, luns, lun, paths"}},
    {{"--json"}, {"no command given"}},
    {{"lnus"}, {"unknown command 'lnus'", "did you mean 'luns'?"}},
    {{"pathes"}, {"unknown command 'pathes'", "did you mean 'paths'?"}},
    {{"path"}, {"path needs an action (expected one of the actions activate, passivate"}},
    {{"path", "disabel"}, {"unknown action 'disabel'", "did you mean 'disable'?"}},
    {{"path", "luns"}, {"unknown action 'luns'"}},
    {{"path", "disable"}, {"ID is required", "expected quistactl path disable ID [OPTIONS]"}},
    {{"path", "disable", ""}, {"ID", "''"}},
    {{"path", "disable", "twelve"}, {"ID", "'twelve'", "decimal or 0x"}},
    {{"path", "disable", "0x1FFFFFFFF"}, {"ID", "32 bits"}},
    {{"path", "disable", "-2147483649"}, {"ID", "'-2147483649'"}},
    {{"path", "disable", "4294967296"}, {"ID", "'4294967296'"}},
    {{"path", "disable", "1", "2"}, {"unexpected argument '2'"}},
    {{"path", "enable", "1", "--force"}, {"unknown option '--force'"}},
    {{"path", "enable", "1", "--yes"}, {"unknown option '--yes'"}},
    {{"path", "disable", "1", "--dryrun"}, {"'--dryrun'", "did you mean '--dry-run'?"}},
    {{"path", "weight", "1"}, {"N is required", "expected quistactl path weight ID N"}},
    {{"path", "weight", "1", "-1"}, {"N", "'-1'"}},
    {{"path", "weight", "1", "heavy"}, {"N", "'heavy'", "0 to 4294967295"}},
    {{"quite-another"}, {"unknown command 'quite-another' (expected one of"}},
    {{"LUNS"}, {"unknown command 'LUNS'"}},
    {{"luns", "extra"}, {"unexpected argument 'extra'", "expected quistactl luns [OPTIONS]"}},
    {{"luns", "paths"}, {"unexpected argument 'paths'"}},
    {{"lun"}, {"SERIAL is required", "expected quistactl lun SERIAL [OPTIONS]"}},
    {{"lun", ""}, {"SERIAL", "is empty"}},
    {{"lun", "A", "B"}, {"unexpected argument 'B'"}},
    {{"paths", ""}, {"SERIAL", "is empty"}},
    {{"paths", "A", "B"}, {"unexpected argument 'B'", "expected quistactl paths [SERIAL]"}},
    {{"policy", "set", "A"}, {"POLICY is required", "expected quistactl policy set SERIAL POLICY"}},
    {{"policy", "set", "A", "8"}, {"POLICY", "'8'", "Round Robin (2)"}},
    {{"policy", "set", "A", "round"}, {"POLICY", "'round'"}},
    {{"policy", "set", "", "2"}, {"SERIAL", "is empty"}},
    {{"policy", "default", "none"}, {"POLICY", "'none'"}},
    {{"policy", "show"}, {"SERIAL is required"}},
    {{"reservation", "set"}, {"KEY is required"}},
    {{"reservation", "set", "12"}, {"KEY", "16 hexadecimal digits", "'12'"}},
    {{"reservation", "set", "0123456789abcdeg"}, {"KEY", "'0123456789abcdeg'"}},
    {{"reservation", "set", "0123456789abcdef", "--drive"}, {"did you mean '--driver'?"}},
    {{"timers"}, {"timers needs an action (expected one of the actions show, set"}},
    {{"timers", "set", "RetryCount"}, {"VALUE is required"}},
    {{"timers", "set", "Retry", "1"}, {"NAME", "expected one of PathVerifyEnabled", "'Retry'"}},
    {{"timers", "set", "RetryCount", "-1"}, {"VALUE", "'-1'"}},
    {{"timers", "set", "EventLogLevel", "1"}, {"NAME", "'EventLogLevel'"}},
    {{"timers", "show", "RetryCount"}, {"unexpected argument 'RetryCount'"}},
    {{"parameters", "set", "PathVerifyEnabled", "1"}, {"NAME", "expected one of EventLogLevel"}},
    {{"parameters", "set", "RetryCount", "4294967296"}, {"VALUE", "0 to 4294967295"}},
    {{"repair", "now"}, {"unexpected argument 'now'"}},
    {{"simulate", "new"}, {"FILE is required"}},
    {{"simulate", "new", ""}, {"FILE", "is empty"}},
    {{"simulate", "new", "a.mof", "--from"}, {"--from needs one value"}},
    {{"errors", "12x"}, {"CODE", "'12x'", "decimal or 0x"}},
    {{"errors", "0x"}, {"CODE", "'0x'"}},
    {{"errors", "4294967296"}, {"CODE", "32-bit"}},
    {{"errors", ""}, {"CODE", "''"}},
    {{"luns", "--jsn"}, {"unknown option '--jsn'", "did you mean '--json'?"}},
    {{"--colour", "luns"}, {"unknown option '--colour'", "did you mean '--color'?"}},
    {{"luns", "-j"}, {"unknown option '-j'"}},
    {{"luns", "--timeout"}, {"--timeout needs one value"}},
    {{"luns", "--timeout", "soon"}, {"--timeout", "'soon'", "0 to 86400"}},
    {{"luns", "--timeout", "-1"}, {"--timeout"}},
    {{"luns", "--timeout", "86401"}, {"--timeout", "0 to 86400"}},
    {{"luns", "--timeout", "1", "--timeout", "2"}, {"--timeout needs one value"}},
    {{"luns", "--color", "blue"}, {"--color", "'blue'", "auto, always or never"}},
    {{"luns", "--simulate"}, {"--simulate needs one value"}},
    {{"luns", "--simulate", ""}, {"--simulate", "is empty"}},
    {{"luns", "--json=maybe"}, {"--json"}},
    {{"luns", "--version"}, {"unknown option '--version'"}},
};

INSTANTIATE_TEST_SUITE_P(Table, WrongArgumentsTest, testing::ValuesIn(kWrongArguments));

TEST(CommandLineTest, JsonIsNoticedInAnyCommandLine) {
    EXPECT_TRUE(asksForJson({"nonsense", "--json"}));
    EXPECT_FALSE(asksForJson({"lun", "--", "--json"}));
    EXPECT_FALSE(asksForJson({}));
}

}  // namespace
}  // namespace quista::cli
