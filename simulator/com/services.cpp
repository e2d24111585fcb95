#include "simulator/com/services.h"

#include <algorithm>
#include <utility>

#include "simulator/com/class_object.h"
#include "simulator/com/embedded_objects.h"
#include "simulator/com/method_execution.h"
#include "simulator/com/query_execution.h"
#include "simulator/driver/published_classes.h"
#include "simulator/driver/put_rules.h"
#include "simulator/repository/text_case.h"

namespace quista::simulator {
namespace {

/// The flags with which a client may ask for an enumeration.
constexpr LONG kEnumerationFlags =
    LONG{WBEM_FLAG_SHALLOW} | LONG{WBEM_FLAG_PROTOTYPE} | LONG{WBEM_FLAG_RETURN_IMMEDIATELY} |
    LONG{WBEM_FLAG_FORWARD_ONLY} | LONG{WBEM_FLAG_ENSURE_LOCATABLE} | LONG{WBEM_FLAG_DIRECT_READ} |
    LONG{WBEM_FLAG_USE_AMENDED_QUALIFIERS};

bool hasOnly(LONG flags, LONG allowed) {
    return (flags & ~allowed) == 0;
}

std::optional<PutMode> putModeOf(LONG flags) {
    constexpr LONG kHowToPut =
        LONG{WBEM_FLAG_RETURN_IMMEDIATELY} | LONG{WBEM_FLAG_USE_AMENDED_QUALIFIERS};
    switch (flags & ~kHowToPut) {
        case WBEM_FLAG_CREATE_OR_UPDATE:
            return PutMode::createOrUpdate;
        case WBEM_FLAG_UPDATE_ONLY:
            return PutMode::updateOnly;
        case WBEM_FLAG_CREATE_ONLY:
            return PutMode::createOnly;
        default:
            return std::nullopt;
    }
}

bool hasForbiddenNull(const CimInstance& instance) {
    return std::ranges::any_of(instance.definition().properties, [&](const CimProperty& property) {
        return property.qualifiers.isSet(L"not_null") && instance.find(property.name)->isNull();
    });
}

}  // namespace

Services::Services(std::shared_ptr<Host> host, std::wstring nameSpace)
    : ServicesBase(std::move(host)), nameSpace_(std::move(nameSpace)) {}

Call Services::pathCall(const wchar_t* method, const wchar_t* text,
                        const std::optional<ObjectPath>& path) const {
    Call made = call(method);
    made.path = textOf(text);
    made.detail = made.path;
    if (path) made.className = path->className;
    return made;
}

const std::wstring& Services::nameSpaceOf(const ObjectPath& path) const {
    return path.nameSpace.empty() ? nameSpace_ : path.nameSpace;
}

HRESULT STDMETHODCALLTYPE Services::OpenNamespace(const BSTR name, LONG, IWbemContext*,
                                                  IWbemServices** services,
                                                  IWbemCallResult** result) {
    clearOutput(services);
    clearOutput(result);
    Call made = call(L"OpenNamespace");
    made.className = textOf(name);
    return host()->run(made, [&] {
        if (name == nullptr || services == nullptr) return wbem(WBEM_E_INVALID_PARAMETER);
        return connect(host(), nameSpace_ + L"\\" + name, services);
    });
}

HRESULT STDMETHODCALLTYPE Services::GetObject(const BSTR text, LONG, IWbemContext*,
                                              IWbemClassObject** object, IWbemCallResult** result) {
    clearOutput(object);
    clearOutput(result);
    return guarded([&] {
        const bool isEmpty = textOf(text).empty();
        const std::optional<ObjectPath> path = parseObjectPath(textOf(text));
        return host()->run(pathCall(L"GetObject", text, path), [&] {
            if (isEmpty) {
                const auto nothing = std::make_shared<const CimClass>();
                deliver(makeClassObject(host(), stateOfClass(nothing, nameSpace_)), object);
                return S_OK;
            }
            if (!path) return wbem(WBEM_E_INVALID_OBJECT_PATH);
            return getObject(*path, object);
        });
    });
}

HRESULT Services::getObject(const ObjectPath& path, IWbemClassObject** object) {
    const std::wstring& nameSpace = nameSpaceOf(path);
    if (!repository().hasNamespace(nameSpace)) return wbem(WBEM_E_INVALID_NAMESPACE);
    ObjectState state;
    if (path.isClass()) {
        state = stateOfClass(repository().findClass(nameSpace, path.className), nameSpace);
    } else if (CimInstancePtr instance = repository().findInstance(nameSpace, path)) {
        state = stateOfInstance(std::move(instance), nameSpace);
    }
    if (state.definition == nullptr) return wbem(WBEM_E_NOT_FOUND);
    // A client that only asks whether the object exists leaves the output out.
    if (object != nullptr) deliver(makeClassObject(host(), std::move(state)), object);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE Services::DeleteClass(const BSTR className, LONG, IWbemContext*,
                                                IWbemCallResult** result) {
    clearOutput(result);
    Call made = call(L"DeleteClass");
    made.className = textOf(className);
    return host()->run(made, [&] {
        if (className == nullptr) return wbem(WBEM_E_INVALID_PARAMETER);
        return wbem(loseClass(repository(), nameSpace_, className));
    });
}

HRESULT STDMETHODCALLTYPE Services::CreateClassEnum(const BSTR superclass, LONG flags,
                                                    IWbemContext*, IEnumWbemClassObject** classes) {
    clearOutput(classes);
    Call made = call(L"CreateClassEnum");
    made.className = textOf(superclass);
    return host()->run(made, [&] {
        if (classes == nullptr || !hasOnly(flags, kEnumerationFlags)) {
            return wbem(WBEM_E_INVALID_PARAMETER);
        }
        return createClassEnum(textOf(superclass), flags, classes);
    });
}

HRESULT Services::createClassEnum(std::wstring_view superclass, LONG flags,
                                  IEnumWbemClassObject** classes) {
    if (!superclass.empty() && repository().findClass(nameSpace_, superclass) == nullptr) {
        return answerUnknownClass(superclass, flags, classes);
    }
    ResultSet results{.className = std::wstring(superclass)};
    const bool deep = (flags & WBEM_FLAG_SHALLOW) == 0;
    for (CimClassPtr& definition : repository().subclasses(nameSpace_, superclass, deep)) {
        results.objects.push_back(stateOfClass(std::move(definition), nameSpace_));
    }
    answer(std::move(results), flags, classes);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE Services::PutInstance(IWbemClassObject* instance, LONG flags,
                                                IWbemContext*, IWbemCallResult** result) {
    clearOutput(result);
    return guarded([&] {
        const ComOwner<ClassObject> object = ClassObject::behind(instance);
        Call made = call(L"PutInstance");
        std::wstring path;
        if (object != nullptr) {
            made.className = object->state().definition->name;
            if (object->state().isInstance()) path = relativePath(*object->state().instance);
            made.path = path;
            made.detail = path;
        }
        return host()->run(made, [&] {
            if (object == nullptr) return wbem(WBEM_E_INVALID_PARAMETER);
            return putInstance(object->state(), flags);
        });
    });
}

HRESULT Services::putInstance(const ObjectState& state, LONG flags) {
    const std::optional<PutMode> mode = putModeOf(flags);
    if (!mode) return wbem(WBEM_E_INVALID_PARAMETER);
    if (!state.isInstance()) return wbem(WBEM_E_INVALID_OBJECT);
    if (hasForbiddenNull(*state.instance)) return wbem(WBEM_E_ILLEGAL_NULL);
    return putByRules(repository(), nameSpace_, *state.instance, *mode);
}

HRESULT STDMETHODCALLTYPE Services::DeleteInstance(const BSTR text, LONG, IWbemContext*,
                                                   IWbemCallResult** result) {
    clearOutput(result);
    return guarded([&] {
        const std::optional<ObjectPath> path = parseObjectPath(textOf(text));
        return host()->run(pathCall(L"DeleteInstance", text, path), [&] {
            if (!path || path->isClass()) return wbem(WBEM_E_INVALID_OBJECT_PATH);
            return wbem(repository().deleteInstance(nameSpaceOf(*path), *path));
        });
    });
}

HRESULT STDMETHODCALLTYPE Services::CreateInstanceEnum(const BSTR className, LONG flags,
                                                       IWbemContext*,
                                                       IEnumWbemClassObject** instances) {
    clearOutput(instances);
    Call made = call(L"CreateInstanceEnum");
    made.className = textOf(className);
    return host()->run(made, [&] {
        if (textOf(className).empty() || instances == nullptr ||
            !hasOnly(flags, kEnumerationFlags)) {
            return wbem(WBEM_E_INVALID_PARAMETER);
        }
        return createInstanceEnum(className, flags, instances);
    });
}

HRESULT Services::createInstanceEnum(std::wstring_view className, LONG flags,
                                     IEnumWbemClassObject** instances) {
    const CimClassPtr definition = repository().findClass(nameSpace_, className);
    if (definition == nullptr) return answerUnknownClass(className, flags, instances);
    ResultSet results{.className = definition->name};
    const bool deep = (flags & WBEM_FLAG_SHALLOW) == 0;
    for (CimInstancePtr& instance : repository().instances(nameSpace_, className, deep)) {
        results.objects.push_back(stateOfInstance(std::move(instance), nameSpace_));
    }
    answer(std::move(results), flags, instances);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE Services::ExecQuery(const BSTR language, const BSTR query, LONG flags,
                                              IWbemContext*, IEnumWbemClassObject** instances) {
    clearOutput(instances);
    return guarded([&] {
        const WqlResult parsed = parseWql(textOf(query));
        Call made = call(L"ExecQuery");
        made.detail = textOf(query);
        if (parsed.status == WqlStatus::ok) made.className = parsed.query.className();
        return host()->run(made, [&] {
            if (textOf(language).empty() || textOf(query).empty() || instances == nullptr ||
                !hasOnly(flags, kEnumerationFlags)) {
                return wbem(WBEM_E_INVALID_PARAMETER);
            }
            if (!equalNoCase(language, L"WQL")) return wbem(WBEM_E_INVALID_QUERY_TYPE);
            if (parsed.status != WqlStatus::ok) return resultOf(parsed.status);
            const std::wstring& className = parsed.query.className();
            const CimClassPtr definition = repository().findClass(nameSpace_, className);
            if (definition == nullptr) return answerUnknownClass(className, flags, instances);
            if (!fits(parsed.query, *definition)) return wbem(WBEM_E_INVALID_QUERY);
            answer(execute(parsed.query, definition, repository(), nameSpace_), flags, instances);
            return S_OK;
        });
    });
}

HRESULT STDMETHODCALLTYPE Services::ExecMethod(const BSTR text, const BSTR method, LONG,
                                               IWbemContext*, IWbemClassObject* in,
                                               IWbemClassObject** out, IWbemCallResult** result) {
    clearOutput(out);
    clearOutput(result);
    return guarded([&] {
        const std::optional<ObjectPath> path = parseObjectPath(textOf(text));
        Call made = pathCall(L"ExecMethod", text, path);
        made.property = textOf(method);
        made.detail = made.property;
        return host()->run(made, [&] {
            if (text == nullptr || method == nullptr) return wbem(WBEM_E_INVALID_PARAMETER);
            if (!path) return wbem(WBEM_E_INVALID_OBJECT_PATH);
            return executeMethod(host(), nameSpaceOf(*path), *path, method, in, out);
        });
    });
}

HRESULT Services::answerUnknownClass(std::wstring_view className, LONG flags,
                                     IEnumWbemClassObject** results) {
    const bool isSemisynchronous = (flags & WBEM_FLAG_RETURN_IMMEDIATELY) != 0;
    if (!isSemisynchronous || host()->unknownClassAtCreation) return wbem(WBEM_E_INVALID_CLASS);
    answer({.className = std::wstring(className), .deferredError = wbem(WBEM_E_INVALID_CLASS)},
           flags, results);
    return S_OK;
}

void Services::answer(ResultSet results, LONG flags, IEnumWbemClassObject** enumerator) {
    results.isForwardOnly = (flags & WBEM_FLAG_FORWARD_ONLY) != 0;
    *enumerator = new Enumerator(host(), std::make_shared<const ResultSet>(std::move(results)));
}

HRESULT connect(const std::shared_ptr<Host>& host, std::wstring_view nameSpace,
                IWbemServices** services) {
    std::optional<std::wstring> normalized = normalizeNamespace(nameSpace);
    if (!normalized || !host->repository.hasNamespace(*normalized)) {
        return wbem(WBEM_E_INVALID_NAMESPACE);
    }
    *services = new Services(host, std::move(*normalized));
    return S_OK;
}

}  // namespace quista::simulator
