#include "tests/support/import_patch.h"

#include <cstring>
#include <gtest/gtest.h>

namespace quista::test {

namespace {

/// What lies at an address relative to the image.
template <typename Content>
Content* at(BYTE* image, ULONGLONG offset) {
    return reinterpret_cast<Content*>(image + offset);
}

IMAGE_THUNK_DATA* findInModule(BYTE* image, const IMAGE_IMPORT_DESCRIPTOR& imports,
                               const char* name) {
    auto* slot = at<IMAGE_THUNK_DATA>(image, imports.FirstThunk);
    auto* import = at<IMAGE_THUNK_DATA>(image, imports.OriginalFirstThunk);
    for (; import->u1.AddressOfData != 0; ++import, ++slot) {
        if (IMAGE_SNAP_BY_ORDINAL(import->u1.Ordinal)) continue;
        const auto* entry = at<IMAGE_IMPORT_BY_NAME>(image, import->u1.AddressOfData);
        if (std::strcmp(reinterpret_cast<const char*>(entry->Name), name) == 0) return slot;
    }
    return nullptr;
}

/// The place in the library's import table where the address of a function is kept.
IMAGE_THUNK_DATA* findSlot(const char* name) {
    auto* image = reinterpret_cast<BYTE*>(GetModuleHandleW(L"quista.dll"));
    if (image == nullptr) return nullptr;
    const auto offset = static_cast<DWORD>(at<IMAGE_DOS_HEADER>(image, 0)->e_lfanew);
    const auto& directory = at<IMAGE_NT_HEADERS>(image, offset)
                                ->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    auto* imports = at<IMAGE_IMPORT_DESCRIPTOR>(image, directory.VirtualAddress);
    for (; imports->Name != 0; ++imports) {
        if (auto* slot = findInModule(image, *imports, name)) return slot;
    }
    return nullptr;
}

}  // namespace

ImportPatch::ImportPatch(const char* name, ULONG_PTR replacement) : slot_(findSlot(name)) {
    EXPECT_NE(slot_, nullptr) << "the library does not import " << name;
    if (slot_ == nullptr) return;
    original_ = slot_->u1.Function;
    write(replacement);
}

ImportPatch::~ImportPatch() {
    if (slot_ != nullptr) write(original_);
}

void ImportPatch::write(ULONG_PTR address) {
    DWORD protection = 0;
    VirtualProtect(slot_, sizeof *slot_, PAGE_READWRITE, &protection);
    slot_->u1.Function = address;
    VirtualProtect(slot_, sizeof *slot_, protection, &protection);
}

}  // namespace quista::test
