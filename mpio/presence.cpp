// Whether MPIO is there and the vendor's DSM registered with it.
#include <windows.h>

#include <algorithm>
#include <iterator>
#include <string>

#include "frame/console.h"
#include "frame/guard.h"
#include "frame/task_memory.h"
#include "mpio/controller_parser.h"
#include "quista/mpio.h"

namespace quista {

namespace {

using ControllerBlock = UniqueTaskMemory<_MPIO_CONTROLLER_CONFIGURATION>;

/// A zeroed block; without memory the function says so under the name it goes by.
ControllerBlock allocateBlock(const wchar_t* function) {
    constexpr std::size_t size = sizeof(_MPIO_CONTROLLER_CONFIGURATION);
    ControllerBlock block(allocateTaskMemory<_MPIO_CONTROLLER_CONFIGURATION>(size));
    if (block == nullptr) {
        traceFormatted(L"%ls: Failed to Allocate %d bytes\n", function, static_cast<int>(size));
    }
    return block;
}

/// Parses the configuration; a failure is told under the name of the function.
DWORD parse(_MPIO_CONTROLLER_CONFIGURATION& config, DWORD& entryCount, const wchar_t* function) {
    const DWORD status = ParseMPIOControllerConfig(&config, &entryCount);
    if (status != DSM_SUCCESS) {
        traceFormatted(L"%ls: Failed ParseMPIOControllerConfig()\n", function);
    }
    return status;
}

bool isVendorDsm(const _MPIO_CONTROLLER_INFO& controller) {
    return associatedDsmOf(controller).find(L"Data KORVA DSM") != std::wstring::npos;
}

/// Reads the configuration only to see whether it can be read.
DWORD checkPresence(const wchar_t* function, bool& present) {
    const ControllerBlock block = allocateBlock(function);
    if (block == nullptr) return DSM_NO_MEMORY;
    DWORD entryCount = 0;
    const DWORD status = parse(*block, entryCount, function);
    present = status == DSM_SUCCESS;
    if (present) traceLine(L"MPIO driver is installed\n");
    return status;
}

bool isLoaded() {
    const ControllerBlock block = allocateBlock(L"DSMIsLoaded");
    if (block == nullptr) return false;
    DWORD entryCount = 0;
    if (parse(*block, entryCount, L"DSMIsLoaded") != DSM_SUCCESS) entryCount = 0;
    const auto* first = std::begin(block->ControllerInfo);
    const bool loaded = std::any_of(first, first + entryCount, isVendorDsm);
    traceFormatted(L"MPIO driver is loaded, KORVADSM driver is %ls loaded\n",
                   loaded ? L"" : L"not ");
    return loaded;
}

bool listControllers() {
    _MPIO_CONTROLLER_CONFIGURATION* config = nullptr;
    if (DSMGetControllerConfig(&config) != DSM_SUCCESS || config == nullptr) return false;
    const ControllerBlock block(config);
    // Kept: the count is the one that WMI reported, not the number of entries parsed, and every
    // entry is printed, whatever gConsoleTrace says.
    const auto* first = std::begin(block->ControllerInfo);
    const std::size_t count =
        std::min<std::size_t>(block->NumberControllers, std::size(block->ControllerInfo));
    bool loaded = false;
    std::for_each(first, first + count, [&](const _MPIO_CONTROLLER_INFO& controller) {
        printLine(L" \t\"" + associatedDsmOf(controller) + L"\"\n");
        loaded = loaded || isVendorDsm(controller);
    });
    return loaded;
}

}  // namespace

}  // namespace quista

unsigned long DSMIsMPIOPresent(unsigned char* present) {
    using namespace quista;
    if (present == nullptr) return DSM_INVALID_PARAMETERS;
    return guarded(DSM_WMI_PARSING_ERROR, [&]() -> DWORD {
        bool found = false;
        // Kept: the messages name DSMIsInstalled.
        const DWORD status = checkPresence(L"DSMIsInstalled", found);
        if (status != DSM_NO_MEMORY) *present = found ? 1 : 0;
        return status;
    });
}

unsigned char DSMIsLoaded() {
    return quista::guardedFlag(quista::isLoaded);
}

unsigned char KORVADSMIsLoaded() {
    return quista::guardedFlag(quista::listControllers);
}

unsigned long KORVADSMIsInstalled(unsigned char* installed) {
    using namespace quista;
    if (installed == nullptr) return DSM_INVALID_PARAMETERS;
    return guarded(DSM_WMI_PARSING_ERROR, [&]() -> DWORD {
        bool present = false;
        const DWORD status = checkPresence(L"KORVADSMIsInstalled", present);
        if (status == DSM_NO_MEMORY) return status;
        // A second, independent reading of the configuration, with its listing.
        const bool registered = KORVADSMIsLoaded() != 0;
        // Kept: the misspelt prefix is part of the text.
        traceLine(registered ? L"KORVADSM driver is installed\n"
                             : L"KORAVDSM is not registered with MPIO\n");
        *installed = present && registered ? 1 : 0;
        return status;
    });
}

unsigned long DSMGetControllerConfig(_MPIO_CONTROLLER_CONFIGURATION** config) {
    using namespace quista;
    return guarded(DSM_WMI_PARSING_ERROR, [&]() -> DWORD {
        // Kept: the message names the vendor's function.
        ControllerBlock block = allocateBlock(L"KORVADSMGetControllerConfig");
        if (block == nullptr) return DSM_NO_MEMORY;
        DWORD entryCount = 0;
        const DWORD status = parse(*block, entryCount, L"DSMGetControllerConfig");
        // Kept: after a failure the block is neither freed nor handed out.
        _MPIO_CONTROLLER_CONFIGURATION* result = block.release();
        if (status == DSM_SUCCESS) *config = result;
        return status;
    });
}
