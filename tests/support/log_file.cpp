#include "tests/support/log_file.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <iomanip>
#include <regex>
#include <string_view>

#include "tests/support/log_names.h"
#include "tests/support/work_folder.h"

namespace quista::test {

namespace {

constexpr std::string_view kLineEnd = "\r\n";

/// The head of an entry, at the beginning of a line.
const std::regex& headPattern() {
    static const std::regex pattern(
        "(\\d{2}/\\d{2}/\\d{4} \\d{2}:\\d{2}:\\d{2}) Error ([0-9A-F]{8}) in ");
    return pattern;
}

/// The text as text mode writes it.
std::string withCarriageReturns(const std::string& text) {
    std::string result;
    for (const char character : text) {
        if (character == '\n') result += '\r';
        result += character;
    }
    return result;
}

/// Divides what follows an entry's head into place and message.
void splitPlace(LogEntry& entry, std::string_view rest) {
    const std::string message = withCarriageReturns(expectedMessage(entry.code));
    entry.place = rest;
    if (message.empty()) return;
    const std::string tail = ": " + message;
    if (!rest.ends_with(tail)) {
        ADD_FAILURE() << "log entry \"" << rest << "\" does not end in its code's message \""
                      << message << "\"";
        return;
    }
    entry.place = rest.substr(0, rest.size() - tail.size());
    entry.message = message;
}

struct Head {
    std::size_t position;
    std::size_t length;
    LogEntry entry;
};

std::vector<Head> findHeads(const std::string& bytes) {
    std::vector<Head> heads;
    const std::sregex_iterator end;
    for (std::sregex_iterator match(bytes.begin(), bytes.end(), headPattern()); match != end;
         ++match) {
        const auto position = static_cast<std::size_t>(match->position());
        if (position != 0 && bytes[position - 1] != '\n') continue;
        LogEntry entry;
        entry.stamp = (*match)[1];
        entry.code = std::stoul((*match)[2], nullptr, 16);
        heads.push_back({position, static_cast<std::size_t>(match->length()), entry});
    }
    return heads;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const LogLine& line) {
    const auto flags = out.flags();
    out << '"' << line.place << "\" " << std::hex << std::uppercase << std::setw(8)
        << std::setfill('0') << line.code << std::setfill(' ');
    out.flags(flags);
    return out;
}

std::vector<LogEntry> parseLog(const std::string& bytes) {
    const std::vector<Head> heads = findHeads(bytes);
    if (!bytes.empty() && (heads.empty() || heads.front().position != 0)) {
        ADD_FAILURE() << "the log does not begin with an entry:\n" << bytes;
    }
    std::vector<LogEntry> entries;
    for (std::size_t i = 0; i < heads.size(); ++i) {
        const std::size_t begin = heads[i].position + heads[i].length;
        const std::size_t end = i + 1 < heads.size() ? heads[i + 1].position : bytes.size();
        std::string_view rest = std::string_view(bytes).substr(begin, end - begin);
        EXPECT_TRUE(rest.ends_with(kLineEnd)) << "log entry without CR LF: " << rest;
        if (rest.ends_with(kLineEnd)) rest.remove_suffix(kLineEnd.size());
        LogEntry entry = heads[i].entry;
        splitPlace(entry, rest);
        entries.push_back(entry);
    }
    return entries;
}

LogLines linesOf(const std::string& bytes) {
    LogLines lines;
    for (const LogEntry& entry : parseLog(bytes)) lines.push_back({entry.place, entry.code});
    return lines;
}

bool LogFile::exists() const {
    return fileExists(filePath_);
}

std::string LogFile::bytes() const {
    return readFile(filePath_).value_or("");
}

LogLines LogFile::take() {
    const LogLines result = lines();
    clear();
    return result;
}

void LogFile::clear() {
    if (!exists()) return;
    EXPECT_TRUE(DeleteFileW(filePath_.c_str())) << "the log cannot be deleted";
}

}  // namespace quista::test
