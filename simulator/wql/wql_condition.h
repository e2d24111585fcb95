// The WHERE clause of a WQL statement and what it says of an instance.
#pragma once

#include <string>
#include <vector>

#include "simulator/repository/cim_instance.h"
#include "simulator/repository/text_scan.h"

namespace quista::simulator {

/// What a property is compared with.
struct WqlLiteral {
    enum class Kind { text, integer, boolean };

    Kind kind = Kind::text;
    std::wstring text;
    ScannedInteger integer;
    bool truth = false;
};

enum class WqlOperator { equal, notEqual, less, lessOrEqual, greater, greaterOrEqual };

/// A comparison with NULL is neither true nor false, and stays so under NOT.
enum class WqlTruth { no = -1, unknown = 0, yes = 1 };

class WqlCondition {
  public:
    enum class Kind { comparison, isNull, conjunction, disjunction, negation };

    static WqlCondition comparison(std::wstring property, WqlOperator comparison,
                                   WqlLiteral literal);
    static WqlCondition isNull(std::wstring property);
    /// AND and OR of any number of conditions.
    static WqlCondition joined(Kind kind, std::vector<WqlCondition> parts);
    static WqlCondition negationOf(WqlCondition part);

    bool isValidFor(const CimClass& definition) const;
    WqlTruth evaluate(const CimInstance& instance) const;

  private:
    WqlTruth compare(const CimInstance& instance) const;

    Kind kind_ = Kind::comparison;
    std::wstring property_;
    WqlOperator operator_ = WqlOperator::equal;
    WqlLiteral literal_;
    std::vector<WqlCondition> parts_;
};

}  // namespace quista::simulator
