#include "cli/command.h"

namespace quista::cli {

Commands makeCommands() {
    Commands commands;
    commands.push_back(makeStatusCommand());
    commands.push_back(makeLunsCommand());
    commands.push_back(makeLunCommand());
    commands.push_back(makePathsCommand());
    commands.push_back(makeDisksCommand());
    commands.push_back(makeAdaptersCommand());
    commands.push_back(makeTopologyCommand());
    addPathCommands(commands);
    addPolicyCommands(commands);
    addReservationCommands(commands);
    addSettingCommands(commands);
    commands.push_back(makeRepairCommand());
    commands.push_back(makeSimulateNewCommand());
    commands.push_back(makeErrorsCommand());
    return commands;
}

const char* groupSummary(std::string_view group) {
    if (group == "path") return "Steer one path";
    if (group == "policy") return "Show and set load-balance policies";
    if (group == "reservation") return "Show and set the persistent reservation key";
    if (group == "timers") return "Show and set MPIO's timers";
    if (group == "parameters") return "Show and set the parameters of the DSM";
    if (group == "simulate") return "Make simulated hosts";
    return "";
}

}  // namespace quista::cli
