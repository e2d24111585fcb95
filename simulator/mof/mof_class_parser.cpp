// Class declarations of MOF.
#include <algorithm>
#include <utility>

#include "simulator/mof/mof_parser.h"
#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

constexpr std::wstring_view kReservedNames[] = {L"class", L"instance", L"of",   L"as",   L"ref",
                                                L"void",  L"null",     L"true", L"false"};

bool isReserved(std::wstring_view name) {
    return typeNamed(name).has_value() ||
           std::any_of(std::begin(kReservedNames), std::end(kReservedNames),
                       [&](std::wstring_view reserved) { return equalNoCase(name, reserved); });
}

template <typename Member>
bool isDeclared(const std::vector<Member>& members, const std::wstring& name) {
    return std::any_of(members.begin(), members.end(),
                       [&](const Member& member) { return equalNoCase(member.name, name); });
}

std::wstring reasonOf(RepositoryStatus status, const CimClass& definition) {
    switch (status) {
        case RepositoryStatus::unknownSuperclass:
            return L"unknown class " + definition.superclass;
        case RepositoryStatus::cyclicInheritance:
            return L"class " + definition.name + L" would inherit from itself";
        case RepositoryStatus::tooManyAncestors:
            return L"class " + definition.name + L" has too many ancestors";
        case RepositoryStatus::typeConflict:
            return L"class " + definition.name +
                   L" declares an inherited property with another type, or a subclass does";
        default:
            break;
    }
    return L"class " + definition.name + L" cannot be stored";
}

}  // namespace

void MofParser::parseClass(Qualifiers qualifiers) {
    tokens_.expectKeyword(L"class");
    const MofToken name = tokens_.expectName(L"a class name");
    if (isReserved(name.text)) tokens_.fail(name.position, name.text + L" is a reserved word");
    CimClass definition;
    definition.name = name.text;
    definition.qualifiers = std::move(qualifiers.items);
    if (tokens_.acceptMark(L':')) {
        const MofToken superclass = tokens_.expectName(L"the name of the superclass");
        requireClass(superclass.text, superclass.position);
        definition.superclass = superclass.text;
    }
    currentClass_ = definition.name;
    tokens_.expectMark(L'{');
    while (!tokens_.acceptMark(L'}')) parseFeature(definition);
    tokens_.expectMark(L';');
    currentClass_.clear();
    storeClass(definition, name.position);
}

void MofParser::storeClass(const CimClass& definition, MofPosition position) {
    const RepositoryStatus status = load_.repository.putClass(load_.nameSpace, definition);
    if (status != RepositoryStatus::ok) tokens_.fail(position, reasonOf(status, definition));
    load_.classes.push_back({load_.nameSpace, definition.name});
}

void MofParser::parseFeature(CimClass& definition) {
    Qualifiers qualifiers = parseQualifiers();
    Declarator declarator = parseDeclarator();
    if (tokens_.atMark(L'('))
        return parseMethod(definition, std::move(declarator), std::move(qualifiers));
    if (!declarator.type) tokens_.fail(declarator.typePosition, L"a property cannot be void");
    parseProperty(definition, std::move(declarator), std::move(qualifiers));
}

void MofParser::parseProperty(CimClass& definition, Declarator declarator, Qualifiers qualifiers) {
    CimProperty property;
    property.name = declarator.name.text;
    if (isDeclared(definition.properties, property.name))
        tokens_.fail(declarator.name.position,
                     L"property " + property.name + L" is declared twice");
    property.type = *declarator.type;
    property.type.isArray = parseArraySuffix();
    applyEmbedding(property.type, qualifiers);
    property.qualifiers = std::move(qualifiers.items);
    if (tokens_.acceptMark(L'=')) {
        const MofLiteral literal = parseLiteral();
        if (property.type.base == CimType::object && literal.kind != MofLiteral::Kind::null)
            tokens_.fail(literal.position, L"an embedded object cannot be a default value");
        property.defaultValue = convertLiteral(literal, property.type, tokens_.file());
    }
    tokens_.expectMark(L';');
    definition.properties.push_back(std::move(property));
}

void MofParser::parseMethod(CimClass& definition, Declarator declarator, Qualifiers qualifiers) {
    CimMethod method;
    method.name = declarator.name.text;
    if (isDeclared(definition.methods, method.name))
        tokens_.fail(declarator.name.position, L"method " + method.name + L" is declared twice");
    method.returnType = declarator.type;
    if (method.returnType) applyEmbedding(*method.returnType, qualifiers);
    method.qualifiers = std::move(qualifiers.items);
    tokens_.expectMark(L'(');
    if (!tokens_.atMark(L')')) {
        do {
            const MofPosition position = tokens_.peek().position;
            CimParameter parameter = parseParameter();
            if (isDeclared(method.parameters, parameter.name))
                tokens_.fail(position, L"parameter " + parameter.name + L" is declared twice");
            method.parameters.push_back(std::move(parameter));
        } while (tokens_.acceptMark(L','));
    }
    tokens_.expectMark(L')');
    tokens_.expectMark(L';');
    definition.methods.push_back(std::move(method));
}

CimParameter MofParser::parseParameter() {
    Qualifiers qualifiers = parseQualifiers();
    Declarator declarator = parseDeclarator();
    if (!declarator.type) tokens_.fail(declarator.typePosition, L"a parameter cannot be void");
    CimParameter parameter;
    parameter.name = declarator.name.text;
    parameter.type = *declarator.type;
    parameter.type.isArray = parseArraySuffix();
    applyEmbedding(parameter.type, qualifiers);
    parameter.isOut = qualifiers.items.isSet(L"out");
    parameter.isIn = qualifiers.items.isSet(L"in") || !parameter.isOut;
    qualifiers.items.remove(L"in");
    qualifiers.items.remove(L"out");
    parameter.qualifiers = std::move(qualifiers.items);
    return parameter;
}

MofParser::Declarator MofParser::parseDeclarator() {
    Declarator declarator;
    MofToken type = tokens_.expectName(L"a type");
    declarator.typePosition = type.position;
    if (equalNoCase(type.text, L"void")) {
        declarator.name = tokens_.expectName(L"a name");
        return declarator;
    }
    if (typeNamed(type.text)) {
        declarator.type = parseType(type);
        declarator.name = tokens_.expectName(L"a name");
        return declarator;
    }
    // `ref` marks a reference only when a name follows; alone it is a name itself.
    declarator.name = tokens_.expectName(L"a name");
    if (equalNoCase(declarator.name.text, L"ref") && tokens_.peek().kind == MofTokenKind::name) {
        declarator.name = tokens_.take();
        declarator.type = CimDeclaredType{CimType::reference, false, type.text};
    } else {
        declarator.type = parseType(type);
    }
    return declarator;
}

CimDeclaredType MofParser::parseType(const MofToken& name) {
    const std::optional<CimType> base = typeNamed(name.text);
    if (!base) {
        requireClass(name.text, name.position);
        return {CimType::object, false, name.text};
    }
    CimDeclaredType type{*base, false, {}};
    if (*base == CimType::object && tokens_.acceptMark(L':')) {
        const MofToken className = tokens_.expectName(L"a class name");
        requireClass(className.text, className.position);
        type.className = className.text;
    }
    return type;
}

/// A declared size is a hint that nobody enforces: arrays may be shorter or longer.
bool MofParser::parseArraySuffix() {
    if (!tokens_.acceptMark(L'[')) return false;
    if (tokens_.peek().kind == MofTokenKind::integer) tokens_.take();
    tokens_.expectMark(L']');
    return true;
}

/// The DMTF's way to write an embedded object is a string with a qualifier.
void MofParser::applyEmbedding(CimDeclaredType& type, Qualifiers& qualifiers) const {
    if (!qualifiers.embeddedAt) return;
    const MofPosition position = *qualifiers.embeddedAt;
    if (type.base != CimType::string)
        tokens_.fail(position, L"only a string can be declared an embedded object");
    type.base = CimType::object;
    if (const CimQualifier* embedded = qualifiers.items.find(L"EmbeddedInstance")) {
        const std::wstring* className = embedded->value.asText();
        if (!className) tokens_.fail(position, L"EmbeddedInstance needs the name of a class");
        requireClass(*className, position);
        type.className = *className;
    }
    qualifiers.items.remove(L"EmbeddedInstance");
    qualifiers.items.remove(L"EmbeddedObject");
}

void MofParser::requireClass(const std::wstring& name, MofPosition position) const {
    if (!currentClass_.empty() && equalNoCase(name, currentClass_)) return;
    if (!load_.repository.findClass(load_.nameSpace, name))
        tokens_.fail(position, L"unknown class " + name);
}

}  // namespace quista::simulator
