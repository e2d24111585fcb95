// Reads the error log MPIOlog.dat byte by byte, so that its exact form is checked with every use.
#pragma once

#include <initializer_list>
#include <ostream>
#include <string>
#include <vector>

namespace quista::test {

/// What a test expects of a log entry: where, and which code. Date and time are left out, and the
/// message follows from the code.
struct LogLine {
    std::string place;
    unsigned long code = 0;

    bool operator==(const LogLine&) const = default;
};

using LogLines = std::vector<LogLine>;

std::ostream& operator<<(std::ostream& out, const LogLine& line);

/// One entry of the log as it stands on disk.
struct LogEntry {
    std::string stamp;    ///< "MM/DD/YYYY hh:mm:ss"
    std::string place;    ///< the part before ": " and the code's own message
    std::string message;  ///< as on disk, without the line end that closes the entry
    unsigned long code = 0;
};

/// Splits the bytes of a log into entries. Every byte must belong to a well-formed entry whose
/// message is the one that `expectedMessage` gives; anything else is a failure of the test.
std::vector<LogEntry> parseLog(const std::string& bytes);
/// Places and codes of a log's entries.
LogLines linesOf(const std::string& bytes);

/// The log in the current directory, or in another folder.
class LogFile {
  public:
    LogFile() = default;
    explicit LogFile(const std::wstring& folder) : filePath_(folder + L"\\MPIOlog.dat") {}

    bool exists() const;
    /// The file's bytes; empty when there is no file.
    std::string bytes() const;
    LogLines lines() const { return linesOf(bytes()); }
    /// The lines since the last call, for a test of several steps.
    LogLines take();
    /// Deletes the file.
    void clear();

  private:
    std::wstring filePath_ = L"MPIOlog.dat";
};

}  // namespace quista::test
