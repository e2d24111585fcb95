// What the tool knows of MPIO itself, of the DSM in it and of their driver files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/report.h"
#include "cli/session.h"

namespace quista::cli {

struct Controller {
    std::uint64_t number = 0;  ///< place in MPIO's list, from 1
    std::string dsm;           ///< name of the DSM that serves it
    std::uint32_t state = 0;
    std::uint32_t identifierType = 0;
};

struct DriverFile {
    std::string name;
    /// None when the file does not exist or has no version.
    std::optional<std::string> version;
    std::optional<std::string> date;
};

struct Framework {
    bool isMpioPresent = false;
    bool isDsmInstalled = false;
    bool isDsmLoaded = false;
    std::optional<std::uint64_t> mpioDisks;  ///< of all DSMs
    std::vector<Controller> controllers;
    std::vector<DriverFile> files;
};

/// What is missing goes into the report.
Framework readFramework(Session& session, Report& report);

}  // namespace quista::cli
