#include "cli/arguments.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <utility>

namespace quista::cli {

std::string checkNotEmpty(const std::string& text) {
    return text.empty() ? "it is empty" : "";
}

void Arguments::required(const char* name, std::string& value, const char* help, Check check) {
    app_.add_option(name, value, help)
        ->required()
        ->check(CLI::Validator(std::move(check), ""))
        ->type_name("");
}

void Arguments::optional(const char* name, std::string& value, const char* help, Check check) {
    app_.add_option(name, value, help)->check(CLI::Validator(std::move(check), ""))->type_name("");
}

void Arguments::option(const char* name, const char* placeholder, std::string& value,
                       const char* help, Check check) {
    app_.add_option(name, value, help)
        ->check(CLI::Validator(std::move(check), ""))
        ->type_name(placeholder)
        ->capture_default_str();
}

void Arguments::flag(const char* name, bool& value, const char* help) {
    app_.add_flag(name, value, help);
}

}  // namespace quista::cli
