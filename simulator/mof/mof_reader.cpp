#include "simulator/mof/mof_reader.h"

#include <filesystem>
#include <utility>

#include "simulator/mof/mof_encoding.h"
#include "simulator/mof/mof_failure.h"
#include "simulator/mof/mof_parser.h"
#include "simulator/repository/text_case.h"

namespace quista::simulator {

MofResult MofReader::loadFile(const std::wstring& path, std::wstring_view nameSpace) {
    const std::optional<std::string> bytes = source_.read(path);
    if (!bytes) return {MofError{path, 0, 0, L"the file cannot be read"}, false, {}};
    try {
        return loadText(decodeMof(*bytes, path), path, nameSpace);
    } catch (const MofFailure& failure) {
        return {failure.error, false, {}};
    }
}

MofResult MofReader::loadText(std::wstring_view text, const std::wstring& sourceName,
                              std::wstring_view nameSpace) {
    Repository staged = repository_;
    if (!staged.addNamespace(nameSpace))
        return {MofError{sourceName, 1, 1, L"badly written namespace " + std::wstring(nameSpace)},
                false,
                {}};
    MofLoad load{staged, source_, std::wstring(nameSpace), {}, {}, {}, {}, false};
    load.openFiles.push_back(
        foldCase(std::filesystem::path(sourceName).lexically_normal().generic_wstring()));
    try {
        MofParser(load, text, sourceName).parse();
    } catch (const MofFailure& failure) {
        return {failure.error, load.hasAutoRecover, {}};
    }
    repository_ = std::move(staged);
    return {std::nullopt, load.hasAutoRecover, std::move(load.classes)};
}

}  // namespace quista::simulator
