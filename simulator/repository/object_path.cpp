#include "simulator/repository/object_path.h"

#include <utility>

#include "simulator/repository/text_case.h"
#include "simulator/repository/text_scan.h"

namespace quista::simulator {
namespace {

bool isSlash(wchar_t character) {
    return character == L'\\' || character == L'/';
}

bool isThisServer(std::wstring_view server) {
    return server == L"." || equalNoCase(server, L"localhost") || equalNoCase(server, kServerName);
}

/// Takes `\\server\` off the text; false when it names another server or nothing follows.
bool takeServer(std::wstring_view& text) {
    if (text.size() < 2 || !isSlash(text[0]) || !isSlash(text[1])) return true;
    text.remove_prefix(2);
    const std::size_t end = text.find_first_of(L"\\/");
    if (end == std::wstring_view::npos || !isThisServer(text.substr(0, end))) return false;
    text.remove_prefix(end + 1);
    return true;
}

/// Walks along the part of a path that follows the namespace.
class PathParser {
  public:
    explicit PathParser(std::wstring_view text) : rest_(text) {}

    bool parse(ObjectPath& path) {
        path.className = takeName();
        if (path.className.empty()) return false;
        if (rest_.empty()) return true;
        if (take(L'=')) return parseSoleKey(path);
        return take(L'.') && parseKeys(path);
    }

  private:
    bool take(wchar_t expected) {
        if (rest_.empty() || rest_.front() != expected) return false;
        rest_.remove_prefix(1);
        return true;
    }

    std::wstring takeName() {
        std::size_t length = 0;
        while (length < rest_.size() &&
               (length == 0 ? isNameStart(rest_[length]) : isNamePart(rest_[length])))
            ++length;
        std::wstring name(rest_.substr(0, length));
        rest_.remove_prefix(length);
        return name;
    }

    bool parseSoleKey(ObjectPath& path) {
        if (take(L'@')) {
            path.isSingleton = true;
            return rest_.empty();
        }
        std::optional<CimValue> value = takeValue();
        if (!value) return false;
        path.keys.push_back({std::wstring(), std::move(*value)});
        return rest_.empty();
    }

    bool parseKeys(ObjectPath& path) {
        do {
            std::wstring name = takeName();
            if (name.empty() || !take(L'=')) return false;
            std::optional<CimValue> value = takeValue();
            if (!value) return false;
            path.keys.push_back({std::move(name), std::move(*value)});
        } while (take(L','));
        return rest_.empty();
    }

    std::optional<CimValue> takeValue() {
        if (take(L'"')) return takeText();
        if (!rest_.empty() && isNameStart(rest_.front())) return takeTruth();
        return takeInteger();
    }

    std::optional<CimValue> takeText() {
        std::wstring text;
        while (!rest_.empty()) {
            if (take(L'"')) return CimValue::ofText(std::move(text));
            if (take(L'\\') && rest_.empty()) return std::nullopt;
            text += rest_.front();
            rest_.remove_prefix(1);
        }
        return std::nullopt;
    }

    std::optional<CimValue> takeTruth() {
        const std::wstring word = takeName();
        if (equalNoCase(word, L"TRUE")) return CimValue::ofBoolean(true);
        if (equalNoCase(word, L"FALSE")) return CimValue::ofBoolean(false);
        return std::nullopt;
    }

    std::optional<CimValue> takeInteger() {
        const std::wstring_view digits = rest_.substr(0, rest_.find(L','));
        const std::optional<ScannedInteger> integer = scanDecimal(digits);
        if (!integer) return std::nullopt;
        rest_.remove_prefix(digits.size());
        return integerOfType(integer->negative ? CimType::sint64 : CimType::uint64,
                             integer->negative, integer->magnitude);
    }

    std::wstring_view rest_;
};

/// Splits the namespace off the text and normalizes it; false when it is badly written.
bool takeNamespace(std::wstring_view& text, std::wstring& nameSpace) {
    const bool hasServer = text.size() >= 2 && isSlash(text[0]) && isSlash(text[1]);
    // Behind a server the namespace reaches to the first colon; elsewhere a colon that comes after
    // the class belongs to a key.
    const std::size_t colon = text.find(L':');
    if (!hasServer && colon >= text.find_first_of(L".=\"")) return true;
    if (colon == std::wstring_view::npos) return !hasServer;
    std::optional<std::wstring> normalized = normalizeNamespace(text.substr(0, colon));
    if (!normalized) return false;
    nameSpace = std::move(*normalized);
    text.remove_prefix(colon + 1);
    return true;
}

std::wstring quoted(std::wstring_view text) {
    std::wstring quoted = L"\"";
    for (const wchar_t character : text) {
        if (character == L'\\' || character == L'"') quoted += L'\\';
        quoted += character;
    }
    return quoted + L'"';
}

/// The value as a path writes it; empty when no path can.
std::wstring keyText(const CimValue& value) {
    if (const auto* text = value.asText()) return quoted(*text);
    if (const auto* number = value.asSigned()) return std::to_wstring(*number);
    if (const auto* number = value.asUnsigned()) return std::to_wstring(*number);
    if (const auto* truth = value.asBoolean()) return *truth ? L"TRUE" : L"FALSE";
    return {};
}

}  // namespace

std::optional<std::wstring> normalizeNamespace(std::wstring_view text) {
    if (!takeServer(text)) return std::nullopt;
    std::wstring normalized;
    bool afterSlash = true;
    for (const wchar_t character : text) {
        if (isSlash(character) ? afterSlash : !isNamePart(character)) return std::nullopt;
        afterSlash = isSlash(character);
        normalized += afterSlash ? L'\\' : character;
    }
    if (afterSlash) return std::nullopt;
    return normalized;
}

std::optional<ObjectPath> parseObjectPath(std::wstring_view text) {
    ObjectPath path;
    if (!takeNamespace(text, path.nameSpace)) return std::nullopt;
    if (!PathParser(text).parse(path)) return std::nullopt;
    return path;
}

std::wstring relativePath(const CimInstance& instance) {
    const CimClass& definition = instance.definition();
    std::wstring path = definition.name;
    wchar_t separator = L'.';
    for (std::size_t i = 0; i < definition.properties.size(); ++i) {
        if (!definition.properties[i].isKey()) continue;
        const std::wstring text = keyText(instance.values()[i]);
        if (text.empty()) return {};
        path += separator + definition.properties[i].name + L'=' + text;
        separator = L',';
    }
    if (separator == L',') return path;
    return definition.isSingleton() ? path + L"=@" : std::wstring();
}

}  // namespace quista::simulator
