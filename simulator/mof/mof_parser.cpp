#include "simulator/mof/mof_parser.h"

#include <algorithm>
#include <filesystem>

#include "simulator/mof/mof_encoding.h"
#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

constexpr std::size_t kMaxIncludes = 32;

/// Pragmas that steer a compiler and mean nothing to a repository in memory.
constexpr std::wstring_view kIdlePragmas[] = {L"noautorecover", L"classflags", L"instanceflags",
                                              L"locale"};

std::wstring relativeTo(const std::wstring& includingFile, const std::wstring& path) {
    const std::filesystem::path base = std::filesystem::path(includingFile).parent_path();
    return (base / std::filesystem::path(path)).lexically_normal().generic_wstring();
}

}  // namespace

void MofParser::parse() {
    while (!tokens_.atEnd()) parseStatement();
}

void MofParser::parseStatement() {
    if (tokens_.atMark(L'#')) return parsePragma();
    if (tokens_.atKeyword(L"qualifier")) return parseQualifierDeclaration();
    if (tokens_.atKeyword(L"instance")) return parseInstanceStatement();
    if (!tokens_.atMark(L'[') && !tokens_.atKeyword(L"class"))
        tokens_.failExpecting(L"a class, an instance or a pragma");
    Qualifiers qualifiers = parseQualifiers();
    if (tokens_.atKeyword(L"instance"))
        tokens_.fail(tokens_.peek().position, L"qualifiers of instances are not supported");
    parseClass(std::move(qualifiers));
}

void MofParser::parsePragma() {
    tokens_.expectMark(L'#');
    tokens_.expectKeyword(L"pragma");
    const MofToken name = tokens_.expectName(L"the name of a pragma");
    if (equalNoCase(name.text, L"autorecover")) {
        load_.hasAutoRecover = true;
    } else if (equalNoCase(name.text, L"namespace")) {
        const MofPosition position = tokens_.peek().position;
        load_.nameSpace = parsePragmaString();
        if (!load_.repository.addNamespace(load_.nameSpace))
            tokens_.fail(position, L"badly written namespace " + load_.nameSpace);
    } else if (equalNoCase(name.text, L"include")) {
        const std::wstring path = parsePragmaString();
        include(relativeTo(tokens_.file(), path), name.position);
    } else if (std::any_of(std::begin(kIdlePragmas), std::end(kIdlePragmas),
                           [&](std::wstring_view idle) { return equalNoCase(name.text, idle); })) {
        parsePragmaArguments();
    } else {
        tokens_.fail(name.position, L"unsupported pragma " + name.text);
    }
}

void MofParser::parsePragmaArguments() {
    if (!tokens_.acceptMark(L'(')) return;
    do {
        if (tokens_.peek().kind == MofTokenKind::string)
            tokens_.take();
        else
            tokens_.expectName(L"an argument of the pragma");
    } while (tokens_.acceptMark(L','));
    tokens_.expectMark(L')');
}

std::wstring MofParser::parsePragmaString() {
    tokens_.expectMark(L'(');
    std::wstring text = tokens_.expectString(L"a string");
    tokens_.expectMark(L')');
    return text;
}

void MofParser::include(const std::wstring& path, MofPosition position) {
    std::vector<std::wstring>& openFiles = load_.openFiles;
    const std::wstring folded = foldCase(path);
    if (std::find(openFiles.begin(), openFiles.end(), folded) != openFiles.end())
        tokens_.fail(position, L"the file " + path + L" includes itself");
    if (openFiles.size() > kMaxIncludes) tokens_.fail(position, L"includes are nested too deeply");
    const std::optional<std::string> bytes = load_.source.read(path);
    if (!bytes) tokens_.fail(position, L"cannot read the included file " + path);
    openFiles.push_back(folded);
    const std::wstring text = decodeMof(*bytes, path);
    MofParser(load_, text, path).parse();
    openFiles.pop_back();
}

/// Declarations of qualifiers tell how to treat them; here they are kept as they are written, so
/// the declaration is checked and has no effect.
void MofParser::parseQualifierDeclaration() {
    tokens_.expectKeyword(L"qualifier");
    tokens_.expectName(L"the name of a qualifier");
    tokens_.expectMark(L':');
    const MofToken typeToken = tokens_.expectName(L"a type");
    const std::optional<CimType> base = typeNamed(typeToken.text);
    if (!base) tokens_.fail(typeToken.position, L"unknown type " + typeToken.text);
    CimDeclaredType type{*base, parseArraySuffix(), {}};
    if (tokens_.acceptMark(L'=')) convertLiteral(parseLiteral(), type, tokens_.file());
    while (tokens_.acceptMark(L',')) {
        if (!tokens_.acceptKeyword(L"scope") && !tokens_.acceptKeyword(L"flavor"))
            tokens_.failExpecting(L"Scope or Flavor");
        skipNameList();
    }
    tokens_.expectMark(L';');
}

void MofParser::skipNameList() {
    tokens_.expectMark(L'(');
    do {
        tokens_.expectName(L"a name");
    } while (tokens_.acceptMark(L','));
    tokens_.expectMark(L')');
}

}  // namespace quista::simulator
