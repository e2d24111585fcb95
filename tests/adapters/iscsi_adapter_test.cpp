#include "tests/adapters/iscsi_adapter_test.h"

#include <cstring>

#include "tests/support/guarded_buffer.h"

namespace quista::test {

namespace {

std::string textOf(const GuardedBuffer& buffer) {
    return {buffer.as<char>(), strnlen(buffer.as<char>(), buffer.size())};
}

}  // namespace

void PrintTo(const FoundSession& found, std::ostream* out) {
    *out << "{status " << found.status << ", address \"" << found.address << "\", name \""
         << found.name << "\"}";
}

IscsiMapping mapping(const std::wstring& initiator, const IscsiSessionId& session) {
    return {initiator, L"\\\\.\\scsi3:", 0, 1, session};
}

FoundSession findSession(unsigned port, unsigned bus, unsigned target) {
    GuardedBuffer address(256);
    GuardedBuffer name(256);
    address.fill('?');
    name.fill('?');
    const int status = GetISCSIAdapterInfo(port, bus, target, address.as<char>(), name.as<char>());
    return {status, textOf(address), textOf(name)};
}

void IscsiAdapterTest::setPath(const IscsiMapping& path,
                               const std::vector<std::wstring>& addresses) {
    library->setMappings({path});
    IscsiSession session{path.session, {}};
    for (const std::wstring& address : addresses) session.initiatorAddresses.emplace_back(address);
    library->setSessions({session});
}

}  // namespace quista::test
