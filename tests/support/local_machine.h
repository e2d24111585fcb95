// A private HKEY_LOCAL_MACHINE, so that tests of registry values disturb neither the machine nor
// tests that run at the same time.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace quista::test {

/// For the object's life the process sees an empty scratch key as HKEY_LOCAL_MACHINE.
class LocalMachine {
  public:
    LocalMachine();
    ~LocalMachine();
    LocalMachine(const LocalMachine&) = delete;
    LocalMachine& operator=(const LocalMachine&) = delete;

    /// Makes a key with its parents.
    void makeKey(const std::wstring& key);
    void setText(const std::wstring& key, const std::wstring& name, const std::wstring& text);
    void setNumber(const std::wstring& key, const std::wstring& name, DWORD number);
    /// Any value, its bytes as given.
    void setValue(const std::wstring& key, const std::wstring& name, DWORD type, const void* data,
                  std::size_t size);
    void eraseValue(const std::wstring& key, const std::wstring& name);

    /// A value's bytes; nothing when it is missing or of another type.
    std::optional<std::string> value(const std::wstring& key, const std::wstring& name,
                                     DWORD type) const;

  private:
    std::wstring scratchPath_;
    HKEY scratch_ = nullptr;
};

}  // namespace quista::test
