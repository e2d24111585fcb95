// Stands in for a system function that the library calls, where the system cannot be made to fail.
#pragma once

#include <windows.h>

namespace quista::test {

/// For the object's life the library under test calls another function in place of one that it
/// imports by name. A function that it does not import is a failure of the test.
class ImportPatch {
  public:
    template <typename Function>
    ImportPatch(const char* name, Function* replacement)
        : ImportPatch(name, reinterpret_cast<ULONG_PTR>(replacement)) {}
    ImportPatch(const char* name, ULONG_PTR replacement);
    ~ImportPatch();
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;

  private:
    void write(ULONG_PTR address);

    IMAGE_THUNK_DATA* slot_;
    ULONG_PTR original_ = 0;
};

}  // namespace quista::test
