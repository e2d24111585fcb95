#include "simulator/wql/wql_query.h"

#include <utility>

#include "simulator/repository/text_case.h"
#include "simulator/wql/wql_condition.h"
#include "simulator/wql/wql_lexer.h"

namespace quista::simulator {
namespace {

/// Parentheses within parentheses.
constexpr unsigned kMaxNesting = 64;

constexpr std::wstring_view kKeywords[] = {L"select", L"from", L"where", L"and",  L"or",
                                           L"not",    L"is",   L"null",  L"true", L"false"};

bool isKeyword(std::wstring_view name) {
    for (const std::wstring_view keyword : kKeywords)
        if (equalNoCase(keyword, name)) return true;
    return false;
}

std::optional<WqlOperator> operatorOf(std::wstring_view mark) {
    if (mark == L"=") return WqlOperator::equal;
    if (mark == L"<>" || mark == L"!=") return WqlOperator::notEqual;
    if (mark == L"<") return WqlOperator::less;
    if (mark == L"<=") return WqlOperator::lessOrEqual;
    if (mark == L">") return WqlOperator::greater;
    if (mark == L">=") return WqlOperator::greaterOrEqual;
    return std::nullopt;
}

/// The operator that says the same with its sides exchanged.
WqlOperator mirrored(WqlOperator comparison) {
    switch (comparison) {
        case WqlOperator::less:
            return WqlOperator::greater;
        case WqlOperator::lessOrEqual:
            return WqlOperator::greaterOrEqual;
        case WqlOperator::greater:
            return WqlOperator::less;
        case WqlOperator::greaterOrEqual:
            return WqlOperator::lessOrEqual;
        default:
            return comparison;
    }
}

}  // namespace

/// Parses by recursive descent; throws the status of a statement that it refuses.
class WqlParser {
  public:
    explicit WqlParser(std::wstring_view text) : lexer_(text), current_(lexer_.next()) {}

    WqlQuery parse() {
        WqlQuery query;
        expectKeyword(L"select");
        if (!acceptMark(L"*")) {
            do {
                query.properties_.push_back(expectName());
            } while (acceptMark(L","));
        }
        expectKeyword(L"from");
        query.className_ = expectName();
        if (acceptKeyword(L"where"))
            query.condition_ = std::make_shared<const WqlCondition>(parseDisjunction());
        if (current_.kind != WqlTokenKind::end) throw WqlStatus::invalid;
        return query;
    }

  private:
    using Kind = WqlCondition::Kind;

    WqlToken take() { return std::exchange(current_, lexer_.next()); }

    bool acceptMark(std::wstring_view mark) {
        if (current_.kind != WqlTokenKind::mark || current_.text != mark) return false;
        take();
        return true;
    }

    bool atKeyword(std::wstring_view keyword) const {
        return current_.kind == WqlTokenKind::name && equalNoCase(current_.text, keyword);
    }

    bool acceptKeyword(std::wstring_view keyword) {
        if (!atKeyword(keyword)) return false;
        take();
        return true;
    }

    void expectKeyword(std::wstring_view keyword) {
        if (!acceptKeyword(keyword)) throw WqlStatus::invalid;
    }

    std::wstring expectName() {
        if (current_.kind != WqlTokenKind::name || isKeyword(current_.text))
            throw WqlStatus::invalid;
        return take().text;
    }

    WqlOperator expectOperator() {
        const std::optional<WqlOperator> comparison =
            current_.kind == WqlTokenKind::mark ? operatorOf(current_.text) : std::nullopt;
        if (!comparison) throw WqlStatus::invalid;
        take();
        return *comparison;
    }

    WqlCondition parseDisjunction() {
        std::vector<WqlCondition> parts;
        do {
            parts.push_back(parseConjunction());
        } while (acceptKeyword(L"or"));
        return parts.size() == 1 ? std::move(parts.front())
                                 : WqlCondition::joined(Kind::disjunction, std::move(parts));
    }

    WqlCondition parseConjunction() {
        std::vector<WqlCondition> parts;
        do {
            parts.push_back(parseNegation());
        } while (acceptKeyword(L"and"));
        return parts.size() == 1 ? std::move(parts.front())
                                 : WqlCondition::joined(Kind::conjunction, std::move(parts));
    }

    WqlCondition parseNegation() {
        bool isNegated = false;
        while (acceptKeyword(L"not")) isNegated = !isNegated;
        WqlCondition condition = parsePrimary();
        return isNegated ? WqlCondition::negationOf(std::move(condition)) : condition;
    }

    WqlCondition parsePrimary() {
        if (acceptMark(L"(")) {
            if (++nesting_ > kMaxNesting) throw WqlStatus::tooComplex;
            WqlCondition condition = parseDisjunction();
            --nesting_;
            if (!acceptMark(L")")) throw WqlStatus::invalid;
            return condition;
        }
        if (current_.kind == WqlTokenKind::name && !isKeyword(current_.text))
            return parsePropertyFirst();
        WqlLiteral literal = parseLiteral();
        const WqlOperator comparison = mirrored(expectOperator());
        return WqlCondition::comparison(expectName(), comparison, std::move(literal));
    }

    WqlCondition parsePropertyFirst() {
        std::wstring property = expectName();
        if (acceptKeyword(L"is")) {
            const bool isNegated = acceptKeyword(L"not");
            expectKeyword(L"null");
            WqlCondition condition = WqlCondition::isNull(std::move(property));
            return isNegated ? WqlCondition::negationOf(std::move(condition)) : condition;
        }
        const WqlOperator comparison = expectOperator();
        return WqlCondition::comparison(std::move(property), comparison, parseLiteral());
    }

    WqlLiteral parseLiteral() {
        WqlLiteral literal;
        if (current_.kind == WqlTokenKind::string) {
            literal.text = take().text;
        } else if (current_.kind == WqlTokenKind::integer) {
            literal.kind = WqlLiteral::Kind::integer;
            literal.integer = take().integer;
        } else if (atKeyword(L"true") || atKeyword(L"false")) {
            literal.kind = WqlLiteral::Kind::boolean;
            literal.truth = atKeyword(L"true");
            take();
        } else {
            throw WqlStatus::invalid;
        }
        return literal;
    }

    WqlLexer lexer_;
    WqlToken current_;
    unsigned nesting_ = 0;
};

bool WqlQuery::isValidFor(const CimClass& definition) const {
    return !condition_ || condition_->isValidFor(definition);
}

bool WqlQuery::matches(const CimInstance& instance) const {
    return !condition_ || condition_->evaluate(instance) == WqlTruth::yes;
}

WqlResult parseWql(std::wstring_view text) {
    try {
        return {WqlStatus::ok, WqlParser(text).parse()};
    } catch (const WqlStatus status) {
        return {status, {}};
    }
}

}  // namespace quista::simulator
