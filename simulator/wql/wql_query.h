// WQL: the SELECT statements that WMI's clients send.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/repository/cim_instance.h"

namespace quista::simulator {

/// A node of the WHERE clause.
class WqlCondition;

enum class WqlStatus {
    ok,
    invalid,     ///< not a statement of the language
    tooComplex,  ///< nested deeper than any sensible query
};

/// A parsed statement `SELECT ... FROM class [WHERE ...]`.
class WqlQuery {
  public:
    const std::wstring& className() const { return className_; }
    /// The selected properties; empty for `*`.
    const std::vector<std::wstring>& properties() const { return properties_; }

    /// Whether the WHERE clause makes sense for the class: it has all the properties, and they can
    /// be compared with the literals. WMI refuses a query that does not as invalid.
    bool isValidFor(const CimClass& definition) const;
    /// Whether the WHERE clause holds; a NULL property matches no comparison.
    bool matches(const CimInstance& instance) const;

  private:
    friend class WqlParser;

    std::wstring className_;
    std::vector<std::wstring> properties_;
    std::shared_ptr<const WqlCondition> condition_;  ///< null without WHERE
};

struct WqlResult {
    WqlStatus status = WqlStatus::invalid;
    WqlQuery query;  ///< meaningful when the status is ok
};

WqlResult parseWql(std::wstring_view text);

}  // namespace quista::simulator
