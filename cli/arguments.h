// Checks of arguments that several commands take.
#pragma once

#include <string>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace quista::cli {

/// Declares the positional argument SERIAL, a LUN's serial number.
CLI::Option* addSerial(CLI::App& app, std::string& serial, const std::string& help);

/// What is wrong with an argument that must have a text; empty when nothing is.
std::string checkNotEmpty(const std::string& text);

}  // namespace quista::cli
