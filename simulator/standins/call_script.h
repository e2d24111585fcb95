// What a stand-in library is told to answer, and what it was asked.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quista::simulator {

/// Prescribes what calls of one function give instead of the host's own answer.
struct Answer {
    std::string function{};    ///< such as "HBA_GetFcpTargetMapping"
    std::uint32_t result = 0;  ///< what the call returns: a status, a count or a handle
    unsigned occurrence = 1;   ///< the first call that is answered so, counted from 1
    unsigned count = 1;        ///< how many calls from there on; 0 means all
    /// Number of records that a call with records reports, whatever it delivers.
    std::optional<std::uint32_t> reported{};
    /// Number of records that it delivers, whatever room the caller says there is.
    std::optional<std::uint32_t> delivered{};
    /// Size in bytes that a call with a size reports.
    std::optional<std::uint32_t> size{};
};

/// Keeps prescribed answers and records calls.
class CallScript {
  public:
    void prescribe(const Answer& answer) { answers_.push_back(answer); }

    void clear() {
        answers_.clear();
        counts_.clear();
        calls_.clear();
    }

    /// Records a call under its function's name and the arguments that tell it from others.
    /// @return the answer prescribed for it; null when there is none
    const Answer* record(const std::string& function, const std::string& arguments = "") {
        calls_.push_back(arguments.empty() ? function : function + " " + arguments);
        const unsigned call = ++counts_[function];
        const Answer* found = nullptr;
        for (const Answer& answer : answers_) {
            const bool begun = answer.function == function && call >= answer.occurrence;
            if (begun && (answer.count == 0 || call < answer.occurrence + answer.count)) {
                found = &answer;
            }
        }
        return found;
    }

    const std::vector<std::string>& calls() const { return calls_; }

  private:
    std::vector<Answer> answers_;
    std::map<std::string, unsigned> counts_;
    std::vector<std::string> calls_;
};

}  // namespace quista::simulator
