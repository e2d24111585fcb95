#include "cli/command.h"

namespace quista::cli {

Commands makeCommands() {
    Commands commands;
    commands.push_back(makeLunsCommand());
    commands.push_back(makeLunCommand());
    commands.push_back(makePathsCommand());
    commands.push_back(makeErrorsCommand());
    return commands;
}

}  // namespace quista::cli
