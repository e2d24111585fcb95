#include "tests/simulator/hosts/instance_reader.h"

#include <gtest/gtest.h>
#include <memory>

#include "simulator/mof/mof_reader.h"

namespace quista::test {

using simulator::CimInstance;
using simulator::CimInstancePtr;
using simulator::CimValue;
using simulator::MofError;
using simulator::MofFileSource;
using simulator::MofReader;
using simulator::MofResult;
using simulator::Repository;

namespace {

std::wstring hostFile(const std::wstring& name) {
    const std::string folder = QUISTA_HOSTS_FOLDER;
    return std::wstring(folder.begin(), folder.end()) + L"/" + name;
}

void expectLoaded(const MofResult& result) {
    if (result.ok()) return;
    const MofError& error = *result.error;
    ADD_FAILURE() << shown(error.file) << ":" << error.line << ":" << error.column << ": "
                  << shown(error.reason);
}

const CimValue& valueOf(const CimInstance& instance, std::wstring_view property) {
    static const CimValue null;
    const CimValue* value = instance.find(property);
    if (value == nullptr) {
        ADD_FAILURE() << shown(instance.className()) << " has no " << shown(property);
        return null;
    }
    return *value;
}

/// What `content` points to, or a default when the property holds something else.
template <class Type>
Type expected(const Type* content, const CimInstance& instance, std::wstring_view property) {
    if (content != nullptr) return *content;
    ADD_FAILURE() << shown(instance.className()) << "." << shown(property)
                  << " is NULL or of another type";
    return Type{};
}

}  // namespace

Repository loadHostFiles(const std::vector<std::wstring>& files) {
    Repository repository;
    MofFileSource source;
    for (const std::wstring& file : files) {
        expectLoaded(MofReader(repository, source).loadFile(hostFile(file)));
    }
    return repository;
}

Repository loadHostText(const std::wstring& mof) {
    Repository repository;
    MofFileSource source;
    expectLoaded(MofReader(repository, source).loadText(mof, L"generated host"));
    return repository;
}

bool hasAutoRecover(const std::wstring& file) {
    Repository repository = loadHostFiles({L"classes/pdo.mof"});
    MofFileSource source;
    const MofResult result = MofReader(repository, source).loadFile(hostFile(file));
    expectLoaded(result);
    return result.hasAutoRecover;
}

std::wstring textOf(const CimInstance& instance, std::wstring_view property) {
    return expected(valueOf(instance, property).asText(), instance, property);
}

std::optional<std::wstring> textOrNull(const CimInstance& instance, std::wstring_view property) {
    if (valueOf(instance, property).isNull()) return std::nullopt;
    return textOf(instance, property);
}

std::uint64_t numberOf(const CimInstance& instance, std::wstring_view property) {
    return expected(valueOf(instance, property).asUnsigned(), instance, property);
}

std::int64_t signedNumberOf(const CimInstance& instance, std::wstring_view property) {
    return expected(valueOf(instance, property).asSigned(), instance, property);
}

bool truthOf(const CimInstance& instance, std::wstring_view property) {
    return expected(valueOf(instance, property).asBoolean(), instance, property);
}

std::vector<std::uint8_t> bytesOf(const CimInstance& instance, std::wstring_view property) {
    std::vector<std::uint8_t> bytes;
    for (const CimValue& element :
         expected(valueOf(instance, property).asArray(), instance, property)) {
        bytes.push_back(
            static_cast<std::uint8_t>(expected(element.asUnsigned(), instance, property)));
    }
    return bytes;
}

CimInstancePtr objectOf(const CimInstance& instance, std::wstring_view property) {
    CimInstancePtr object = expected(valueOf(instance, property).asObject(), instance, property);
    if (object != nullptr) return object;
    return std::make_shared<const CimInstance>(std::make_shared<const simulator::CimClass>());
}

std::vector<CimInstancePtr> objectsOf(const CimInstance& instance, std::wstring_view property) {
    std::vector<CimInstancePtr> objects;
    for (const CimValue& element :
         expected(valueOf(instance, property).asArray(), instance, property)) {
        if (const CimInstancePtr* object = element.asObject()) {
            objects.push_back(*object);
        } else {
            ADD_FAILURE() << shown(property) << " holds something that is no object";
        }
    }
    return objects;
}

std::string shown(std::wstring_view text) {
    std::string result;
    for (const wchar_t character : text) {
        result += character < 0x80 ? static_cast<char>(character) : '?';
    }
    return result;
}

}  // namespace quista::test
