// Instances of MOF and the values of their properties.
#include <utility>

#include "simulator/mof/mof_parser.h"
#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

/// Instances within instances: real hosts need four levels.
constexpr unsigned kMaxNesting = 32;
/// What one instance may hold in all. Aliases can be nested so that a short text means more objects
/// than any memory holds.
constexpr std::size_t kMaxObjects = 1000000;

std::wstring nullKeys(const CimInstance& instance) {
    std::wstring names;
    const std::vector<CimProperty>& properties = instance.definition().properties;
    for (std::size_t i = 0; i < properties.size(); ++i)
        if (properties[i].isKey() && instance.values()[i].isNull())
            names += L" " + properties[i].name;
    return names;
}

std::wstring reasonOf(RepositoryStatus status, const CimInstance& instance) {
    switch (status) {
        case RepositoryStatus::noKey:
            return L"missing key: class " + instance.className() + L" declares none";
        case RepositoryStatus::nullKey:
            return L"missing key: no value for" + nullKeys(instance);
        case RepositoryStatus::alreadyExists:
            return L"duplicate key: " + relativePath(instance) +
                   L" exists in another class of the same keys";
        default:
            break;
    }
    return L"the instance of " + instance.className() + L" cannot be stored";
}

}  // namespace

void MofParser::parseInstanceStatement() {
    const MofPosition position = tokens_.peek().position;
    const ParsedInstance parsed = parseInstance();
    tokens_.expectMark(L';');
    storeInstance(parsed, position);
}

/// `instance of CLASS [as $Alias] { ... }`, of a statement as well as of a value.
MofParser::ParsedInstance MofParser::parseInstance() {
    tokens_.expectKeyword(L"instance");
    tokens_.expectKeyword(L"of");
    const MofToken name = tokens_.expectName(L"a class name");
    if (nesting_ == kMaxNesting) tokens_.fail(name.position, L"instances are nested too deeply");
    const CimClassPtr definition = load_.repository.findClass(load_.nameSpace, name.text);
    if (!definition) tokens_.fail(name.position, L"unknown class " + name.text);
    if (definition->isAbstract())
        tokens_.fail(name.position, L"class " + name.text + L" is abstract");

    const std::optional<MofToken> alias = parseAlias();
    CimInstance instance(definition);
    ++nesting_;
    MofExtent extent = parseAssignments(instance);
    --nesting_;
    extent.add({0, 1});
    ++extent.depth;
    if (extent.depth > kMaxNesting) tokens_.fail(name.position, L"instances are nested too deeply");
    if (extent.objects > kMaxObjects)
        tokens_.fail(name.position, L"the instance holds too many others");

    const MofObject object{std::make_shared<const CimInstance>(std::move(instance)), extent};
    if (alias && !load_.aliases.try_emplace(foldCase(alias->text), object).second)
        tokens_.fail(alias->position, L"alias $" + alias->text + L" is defined twice");
    return {object, alias.has_value()};
}

std::optional<MofToken> MofParser::parseAlias() {
    if (!tokens_.acceptKeyword(L"as")) return std::nullopt;
    if (tokens_.peek().kind != MofTokenKind::alias) tokens_.failExpecting(L"an alias");
    return tokens_.take();
}

/// The braces of an instance; gives what its values hold.
MofExtent MofParser::parseAssignments(CimInstance& instance) {
    tokens_.expectMark(L'{');
    MofExtent extent;
    std::set<std::wstring> assigned;
    while (!tokens_.acceptMark(L'}')) extent.add(parseAssignment(instance, assigned));
    return extent;
}

MofExtent MofParser::parseAssignment(CimInstance& instance, std::set<std::wstring>& assigned) {
    if (tokens_.atMark(L'['))
        tokens_.fail(tokens_.peek().position, L"qualifiers in instances are not supported");
    const MofToken name = tokens_.expectName(L"the name of a property");
    const CimProperty* property = instance.definition().findProperty(name.text);
    if (!property)
        tokens_.fail(name.position,
                     L"unknown property " + name.text + L" of class " + instance.className());
    if (!assigned.insert(foldCase(name.text)).second)
        tokens_.fail(name.position, L"property " + name.text + L" is assigned twice");
    tokens_.expectMark(L'=');
    const MofLiteral literal = parseLiteral();
    instance.set(property->name, convertLiteral(literal, property->type, tokens_.file()));
    tokens_.expectMark(L';');
    return literal.extent;
}

/// An instance without a key is of use only under its alias, as part of others.
void MofParser::storeInstance(const ParsedInstance& parsed, MofPosition position) {
    const CimInstance& instance = *parsed.object.instance;
    const std::wstring path = relativePath(instance);
    if (!path.empty() && !load_.storedPaths.insert(foldCase(load_.nameSpace + L":" + path)).second)
        tokens_.fail(position, L"duplicate key: " + path);
    const RepositoryStatus status = load_.repository.putInstance(load_.nameSpace, instance);
    if (status == RepositoryStatus::ok) return;
    if (status == RepositoryStatus::noKey && parsed.hasAlias) return;
    tokens_.fail(position, reasonOf(status, instance));
}

MofLiteral MofParser::parseLiteral() {
    return tokens_.atMark(L'{') ? parseList() : parseScalar();
}

MofLiteral MofParser::parseList() {
    MofLiteral list;
    list.kind = MofLiteral::Kind::list;
    list.position = tokens_.peek().position;
    tokens_.expectMark(L'{');
    if (tokens_.acceptMark(L'}')) return list;
    do {
        list.elements.push_back(parseScalar());
        list.extent.add(list.elements.back().extent);
    } while (tokens_.acceptMark(L','));
    tokens_.expectMark(L'}');
    return list;
}

MofLiteral MofParser::parseScalar() {
    MofLiteral literal;
    literal.position = tokens_.peek().position;
    switch (tokens_.peek().kind) {
        case MofTokenKind::name:
        case MofTokenKind::alias:
            return parseNamedLiteral();
        case MofTokenKind::integer:
            literal.kind = MofLiteral::Kind::integer;
            break;
        case MofTokenKind::real:
            literal.kind = MofLiteral::Kind::real;
            break;
        case MofTokenKind::character:
            literal.kind = MofLiteral::Kind::character;
            break;
        case MofTokenKind::string:
            literal.kind = MofLiteral::Kind::text;
            literal.text = tokens_.expectString(L"a string");
            return literal;
        default:
            tokens_.failExpecting(L"a value");
    }
    const MofToken token = tokens_.take();
    literal.negative = token.negative;
    literal.magnitude = token.magnitude;
    literal.real = token.real;
    return literal;
}

MofLiteral MofParser::parseNamedLiteral() {
    MofLiteral literal;
    literal.position = tokens_.peek().position;
    if (tokens_.acceptKeyword(L"null")) return literal;
    if (tokens_.atKeyword(L"true") || tokens_.atKeyword(L"false")) {
        literal.kind = MofLiteral::Kind::boolean;
        literal.truth = tokens_.atKeyword(L"true");
        tokens_.take();
        return literal;
    }
    literal.kind = MofLiteral::Kind::object;
    if (tokens_.atKeyword(L"instance")) {
        const MofObject object = parseInstance().object;
        literal.object = object.instance;
        literal.extent = object.extent;
        return literal;
    }
    if (tokens_.peek().kind != MofTokenKind::alias) tokens_.failExpecting(L"a value");
    const MofToken alias = tokens_.take();
    const auto known = load_.aliases.find(foldCase(alias.text));
    if (known == load_.aliases.end()) tokens_.fail(alias.position, L"unknown alias $" + alias.text);
    literal.object = known->second.instance;
    literal.extent = known->second.extent;
    literal.isAlias = true;
    return literal;
}

}  // namespace quista::simulator
