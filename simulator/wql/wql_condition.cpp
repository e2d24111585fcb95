#include "simulator/wql/wql_condition.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

int compareMagnitudes(std::uint64_t left, std::uint64_t right) {
    if (left == right) return 0;
    return left < right ? -1 : 1;
}

int compareIntegers(ScannedInteger left, ScannedInteger right) {
    const bool leftNegative = left.negative && left.magnitude != 0;
    const bool rightNegative = right.negative && right.magnitude != 0;
    if (leftNegative != rightNegative) return leftNegative ? -1 : 1;
    const int order = compareMagnitudes(left.magnitude, right.magnitude);
    return leftNegative ? -order : order;
}

ScannedInteger integerOf(std::int64_t number) {
    const auto bits = static_cast<std::uint64_t>(number);
    return {number < 0, number < 0 ? std::uint64_t{0} - bits : bits};
}

/// The literal as a number; texts of digits count, as WMI writes 64-bit integers so.
std::optional<ScannedInteger> integerOf(const WqlLiteral& literal) {
    if (literal.kind == WqlLiteral::Kind::integer) return literal.integer;
    if (literal.kind == WqlLiteral::Kind::text) return scanDecimal(literal.text);
    return std::nullopt;
}

/// The literal as a boolean; 0 and 1 count.
std::optional<bool> booleanOf(const WqlLiteral& literal) {
    if (literal.kind == WqlLiteral::Kind::boolean) return literal.truth;
    if (literal.kind == WqlLiteral::Kind::integer && !literal.integer.negative &&
        literal.integer.magnitude <= 1)
        return literal.integer.magnitude == 1;
    return std::nullopt;
}

int compareReal(double left, ScannedInteger right) {
    const auto magnitude = static_cast<double>(right.magnitude);
    const double number = right.negative ? -magnitude : magnitude;
    if (left == number) return 0;
    return left < number ? -1 : 1;
}

bool holds(WqlOperator comparison, int order) {
    switch (comparison) {
        case WqlOperator::equal:
            return order == 0;
        case WqlOperator::notEqual:
            return order != 0;
        case WqlOperator::less:
            return order < 0;
        case WqlOperator::lessOrEqual:
            return order <= 0;
        case WqlOperator::greater:
            return order > 0;
        case WqlOperator::greaterOrEqual:
            return order >= 0;
    }
    return false;
}

/// How the value stands to the literal; nothing when they cannot be compared.
std::optional<int> order(const CimValue& value, const WqlLiteral& literal) {
    if (const auto* text = value.asText()) {
        if (literal.kind != WqlLiteral::Kind::text) return std::nullopt;
        return compareNoCase(*text, literal.text);
    }
    if (const auto* truth = value.asBoolean()) {
        const std::optional<bool> other = booleanOf(literal);
        if (!other) return std::nullopt;
        return static_cast<int>(*truth) - static_cast<int>(*other);
    }
    const std::optional<ScannedInteger> number = integerOf(literal);
    if (!number) return std::nullopt;
    if (const auto* own = value.asSigned()) return compareIntegers(integerOf(*own), *number);
    if (const auto* own = value.asUnsigned()) return compareIntegers({false, *own}, *number);
    if (const auto* own = value.asReal()) return compareReal(*own, *number);
    return std::nullopt;
}

bool isComparable(const CimDeclaredType& type, WqlOperator comparison, const WqlLiteral& literal) {
    if (type.isArray || type.base == CimType::object) return false;
    if (isText(type.base)) return literal.kind == WqlLiteral::Kind::text;
    if (type.base == CimType::boolean) {
        const bool isEquality =
            comparison == WqlOperator::equal || comparison == WqlOperator::notEqual;
        return isEquality && booleanOf(literal).has_value();
    }
    return integerOf(literal).has_value();
}

WqlTruth negated(WqlTruth truth) {
    return static_cast<WqlTruth>(-static_cast<int>(truth));
}

}  // namespace

WqlCondition WqlCondition::comparison(std::wstring property, WqlOperator comparison,
                                      WqlLiteral literal) {
    WqlCondition condition;
    condition.property_ = std::move(property);
    condition.operator_ = comparison;
    condition.literal_ = std::move(literal);
    return condition;
}

WqlCondition WqlCondition::isNull(std::wstring property) {
    WqlCondition condition;
    condition.kind_ = Kind::isNull;
    condition.property_ = std::move(property);
    return condition;
}

WqlCondition WqlCondition::joined(Kind kind, std::vector<WqlCondition> parts) {
    WqlCondition condition;
    condition.kind_ = kind;
    condition.parts_ = std::move(parts);
    return condition;
}

WqlCondition WqlCondition::negationOf(WqlCondition part) {
    std::vector<WqlCondition> parts;
    parts.push_back(std::move(part));
    return joined(Kind::negation, std::move(parts));
}

bool WqlCondition::isValidFor(const CimClass& definition) const {
    if (kind_ != Kind::comparison && kind_ != Kind::isNull)
        return std::all_of(parts_.begin(), parts_.end(),
                           [&](const WqlCondition& part) { return part.isValidFor(definition); });
    const CimProperty* property = definition.findProperty(property_);
    if (!property) return false;
    return kind_ == Kind::isNull || isComparable(property->type, operator_, literal_);
}

WqlTruth WqlCondition::evaluate(const CimInstance& instance) const {
    switch (kind_) {
        case Kind::comparison:
            return compare(instance);
        case Kind::negation:
            return negated(parts_.front().evaluate(instance));
        case Kind::isNull: {
            const CimValue* value = instance.find(property_);
            if (!value) return WqlTruth::unknown;
            return value->isNull() ? WqlTruth::yes : WqlTruth::no;
        }
        case Kind::conjunction: {
            WqlTruth truth = WqlTruth::yes;
            for (const WqlCondition& part : parts_)
                truth = std::min(truth, part.evaluate(instance));
            return truth;
        }
        case Kind::disjunction: {
            WqlTruth truth = WqlTruth::no;
            for (const WqlCondition& part : parts_)
                truth = std::max(truth, part.evaluate(instance));
            return truth;
        }
    }
    return WqlTruth::unknown;
}

WqlTruth WqlCondition::compare(const CimInstance& instance) const {
    const CimValue* value = instance.find(property_);
    if (!value || value->isNull()) return WqlTruth::unknown;
    const std::optional<int> relation = order(*value, literal_);
    if (!relation) return WqlTruth::unknown;
    return holds(operator_, *relation) ? WqlTruth::yes : WqlTruth::no;
}

}  // namespace quista::simulator
