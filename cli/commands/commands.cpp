#include "cli/command.h"

namespace quista::cli {

Commands makeCommands() {
    Commands commands;
    commands.push_back(makeStatusCommand());
    commands.push_back(makeLunsCommand());
    commands.push_back(makeLunCommand());
    commands.push_back(makePathsCommand());
    commands.push_back(makeDisksCommand());
    addPathCommands(commands);
    commands.push_back(makeErrorsCommand());
    return commands;
}

const char* groupSummary(std::string_view group) {
    if (group == "path") return "Steer one path";
    return "";
}

}  // namespace quista::cli
