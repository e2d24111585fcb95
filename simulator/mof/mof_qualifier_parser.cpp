// Qualifier lists of MOF.
#include <utility>

#include "simulator/mof/mof_parser.h"
#include "simulator/mof/mof_text.h"
#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

/// Flavors that say what holds without them.
constexpr std::wstring_view kIdleFlavors[] = {L"NotToInstance", L"NotToSubclass", L"EnableOverride",
                                              L"Overridable", L"Restricted"};

std::optional<QualifierFlavor> flavorNamed(std::wstring_view name) {
    for (const MofFlavor& known : kMofFlavors)
        if (equalNoCase(known.name, name)) return known.flavor;
    for (const std::wstring_view idle : kIdleFlavors)
        if (equalNoCase(idle, name)) return QualifierFlavor::none;
    return std::nullopt;
}

bool isEmbedding(const CimQualifier& qualifier) {
    return equalNoCase(qualifier.name, L"EmbeddedInstance") ||
           equalNoCase(qualifier.name, L"EmbeddedObject");
}

}  // namespace

MofParser::Qualifiers MofParser::parseQualifiers() {
    Qualifiers qualifiers;
    if (!tokens_.acceptMark(L'[')) return qualifiers;
    do {
        const MofPosition position = tokens_.peek().position;
        CimQualifier qualifier = parseQualifier();
        if (qualifiers.items.find(qualifier.name))
            tokens_.fail(position, L"qualifier " + qualifier.name + L" is given twice");
        if (isEmbedding(qualifier)) qualifiers.embeddedAt = position;
        qualifiers.items.put(std::move(qualifier));
    } while (tokens_.acceptMark(L','));
    tokens_.expectMark(L']');
    return qualifiers;
}

CimQualifier MofParser::parseQualifier() {
    CimQualifier qualifier;
    qualifier.name = tokens_.expectName(L"the name of a qualifier").text;
    qualifier.value = CimValue::ofBoolean(true);
    if (tokens_.atMark(L'{')) {
        qualifier.value = convertQualifierLiteral(parseList(), tokens_.file());
    } else if (tokens_.acceptMark(L'(')) {
        qualifier.value = convertQualifierLiteral(parseLiteral(), tokens_.file());
        tokens_.expectMark(L')');
    }
    if (tokens_.acceptMark(L':')) qualifier.flavors = parseFlavors();
    return qualifier;
}

QualifierFlavor MofParser::parseFlavors() {
    QualifierFlavor flavors = QualifierFlavor::none;
    do {
        const MofToken name = tokens_.expectName(L"a flavor");
        const std::optional<QualifierFlavor> flavor = flavorNamed(name.text);
        if (!flavor) tokens_.fail(name.position, L"unknown flavor " + name.text);
        flavors = flavors | *flavor;
    } while (tokens_.peek().kind == MofTokenKind::name);
    return flavors;
}

}  // namespace quista::simulator
