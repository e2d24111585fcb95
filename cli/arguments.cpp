#include "cli/arguments.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

namespace quista::cli {

CLI::Option* addSerial(CLI::App& app, std::string& serial, const std::string& help) {
    return app.add_option("SERIAL", serial, help)
        ->check(CLI::Validator(checkNotEmpty, ""))
        ->type_name("");
}

std::string checkNotEmpty(const std::string& text) {
    return text.empty() ? "it is empty" : "";
}

}  // namespace quista::cli
