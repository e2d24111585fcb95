// The session that carries a path, and the results of the discovery library's calls.
#include "tests/adapters/iscsi_adapter_test.h"
#include "tests/support/guarded_buffer.h"

namespace quista::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::StartsWith;

constexpr const wchar_t* kAddress = L"192.168.10.20";
const FoundSession kFound{0, "192.168.10.20", "initiator"};

class IscsiSessionTest : public IscsiAdapterTest {
  protected:
    IscsiSessionTest() { setPath(mapping(), {kAddress}); }

    std::string addressOf(const std::vector<std::optional<std::wstring>>& addresses) {
        library->setSessions({{{1, 2}, addresses}});
        return findSession().address;
    }
    /// The sizing call is the first one, the call for the records the second.
    void answer(const char* function, unsigned call, std::uint32_t result) {
        library->prescribe({.function = function, .result = result, .occurrence = call});
    }
    /// Forgets calls and answers, for the next of several cases.
    void startAgain() {
        library->reset();
        setPath(mapping(), {kAddress});
        log.clear();
    }
};

TEST_F(IscsiSessionTest, AddressOfTheLastConnection) {
    EXPECT_EQ(addressOf({L"10.0.0.1"}), "10.0.0.1");
    EXPECT_EQ(addressOf({L"10.0.0.1", L"10.0.0.2"}), "10.0.0.2");
    EXPECT_EQ(addressOf({L"10.0.0.1", L"10.0.0.2", L"fe80::1"}), "fe80::1");
    EXPECT_EQ(addressOf({std::nullopt, L"10.0.0.2"}), "10.0.0.2");
}

TEST_F(IscsiSessionTest, SessionsWithoutAddress) {
    EXPECT_EQ(addressOf({}), kUntouched);
    EXPECT_EQ(addressOf({L""}), kUntouched);
    EXPECT_EQ(addressOf({std::nullopt}), kUntouched);
    EXPECT_EQ(addressOf({L"10.0.0.1", L""}), kUntouched);
}

TEST_F(IscsiSessionTest, ConnectionsThatAreOnlyClaimed) {
    library->setSessions({{{1, 2}, {}, 3}});
    EXPECT_EQ(findSession().address, kUntouched);
    EXPECT_EQ(findSession().name, "initiator");
}

TEST_F(IscsiSessionTest, Addresses) {
    EXPECT_EQ(addressOf({std::wstring(255, L'a')}), std::string(255, 'a'));
    EXPECT_EQ(addressOf({L"\u00E9\u65E5"}), "\xE9?");
}

/// An address that fills the buffer has no terminator; what is longer is cut there.
TEST_F(IscsiSessionTest, LongAddresses) {
    EXPECT_EQ(addressOf({std::wstring(256, L'a')}), std::string(256, 'a'));
    EXPECT_EQ(addressOf({std::wstring(256, L'a') + L"b"}), std::string(256, 'a'));
}

TEST_F(IscsiSessionTest, WholeIdentifierCounts) {
    const IscsiSession first{{1, 3}, {L"1.1.1.1"}};
    const IscsiSession second{{2, 2}, {L"2.2.2.2"}};
    const IscsiSession third{{1, 2}, {kAddress}};
    const IscsiSession fourth{{1, 2}, {L"4.4.4.4"}};
    library->setSessions({first, second, third, fourth});
    EXPECT_EQ(findSession(), kFound);
    library->setSessions({first, second});
    EXPECT_EQ(findSession(), (FoundSession{0, kUntouched, "initiator"}));
}

TEST_F(IscsiSessionTest, NoSessions) {
    library->setSessions({});
    EXPECT_EQ(findSession(), (FoundSession{0, kUntouched, "initiator"}));
    EXPECT_EQ(library->calls().back(), "GetIScsiSessionListW sizing");
    EXPECT_FALSE(log.exists());
}

TEST_F(IscsiSessionTest, NullBuffers) {
    EXPECT_EQ(GetISCSIAdapterInfo(3, 0, 1, nullptr, nullptr), 0);
}

// ---- Results of the discovery library

TEST_F(IscsiSessionTest, NoMappingsAtAll) {
    library->setMappings({});
    EXPECT_EQ(findSession(), (FoundSession{kNoMappings, kUntouched, kUntouched}));
    EXPECT_THAT(library->calls(), ElementsAre("ReportActiveIScsiTargetMappingsW sizing"));
    EXPECT_FALSE(log.exists());
    EXPECT_TRUE(debug.texts().empty());
}

/// Only the size counts that the first call reports, not its result.
TEST_F(IscsiSessionTest, SizeOfMappingsAfterAnyResult) {
    for (const std::uint32_t result : {0u, 122u, 5u, 0xEFFF0001u}) {
        startAgain();
        answer(kMappingsFunction, 1, result);
        EXPECT_EQ(findSession(), kFound) << result;
    }
    startAgain();
    library->prescribe({.function = kMappingsFunction, .result = 122, .size = 0});
    EXPECT_EQ(findSession().status, kNoMappings);
}

TEST_F(IscsiSessionTest, AcceptedResultsOfMappings) {
    for (const std::uint32_t result : {0u, 4u, 16u, 20u}) {
        startAgain();
        answer(kMappingsFunction, 2, result);
        EXPECT_EQ(findSession(), kFound) << result;
        EXPECT_FALSE(log.exists());
    }
}

TEST_F(IscsiSessionTest, RefusedResultsOfMappings) {
    for (const std::uint32_t result : {1u, 5u, 8u, 15u, 17u, 21u, 122u, 0xEFFF0001u}) {
        startAgain();
        answer(kMappingsFunction, 2, result);
        EXPECT_EQ(findSession(), (FoundSession{kDiscoveryFailed, kUntouched, kUntouched}))
            << result;
        EXPECT_THAT(log.lines(), ElementsAre(kMappingsFailed));
        EXPECT_THAT(library->calls(), Not(Contains(StartsWith(kSessionsFunction))));
    }
}

TEST_F(IscsiSessionTest, SizeOfSessionsAfterTwoResults) {
    for (const std::uint32_t result : {0u, 122u}) {
        startAgain();
        answer(kSessionsFunction, 1, result);
        EXPECT_EQ(findSession(), kFound) << result;
    }
    for (const std::uint32_t result : {1u, 4u, 16u, 20u, 5u, 0xEFFF0001u}) {
        startAgain();
        answer(kSessionsFunction, 1, result);
        EXPECT_EQ(findSession(), (FoundSession{kDiscoveryFailed, kUntouched, kUntouched}))
            << result;
        EXPECT_THAT(log.lines(), ElementsAre(kSessionsFailed));
        EXPECT_EQ(library->calls().back(), "GetIScsiSessionListW sizing");
    }
    startAgain();
    library->prescribe({.function = kSessionsFunction, .result = 122, .size = 0});
    EXPECT_EQ(findSession(), (FoundSession{0, kUntouched, "initiator"}));
}

TEST_F(IscsiSessionTest, RefusedResultsOfSessions) {
    for (const std::uint32_t result : {1u, 4u, 16u, 20u, 122u, 0xEFFF0002u}) {
        startAgain();
        answer(kSessionsFunction, 2, result);
        EXPECT_EQ(findSession(), (FoundSession{kDiscoveryFailed, kUntouched, kUntouched}))
            << result;
        EXPECT_THAT(log.lines(), ElementsAre(kSessionsFailed));
    }
}

/// The sessions are fetched for a path without mapping too, and their failure is told.
TEST_F(IscsiSessionTest, SessionsFailWithoutMatch) {
    answer(kSessionsFunction, 1, 5);
    EXPECT_EQ(findSession(9), (FoundSession{kDiscoveryFailed, kUntouched, kUntouched}));
    EXPECT_THAT(log.lines(), ElementsAre(kSessionsFailed));
}

/// Records beyond the buffer are not read, whatever their number is said to be.
TEST_F(IscsiSessionTest, CountsBeyondTheBuffer) {
    library->prescribe({.function = kMappingsFunction, .occurrence = 2, .reported = 0xFFFFFFFF});
    EXPECT_EQ(findSession(9), (FoundSession{0, kUntouched, kUntouched}));
    startAgain();
    library->prescribe({.function = kSessionsFunction, .occurrence = 2, .reported = 0xFFFFFFFF});
    EXPECT_EQ(findSession(), kFound);
}

/// A buffer without a single record is not the same as none.
TEST_F(IscsiSessionTest, BufferWithoutRecords) {
    library->prescribe({.function = kMappingsFunction, .occurrence = 2, .reported = 0});
    EXPECT_EQ(findSession(), (FoundSession{0, kUntouched, kUntouched}));
    EXPECT_THAT(library->calls(), Contains(StartsWith(kSessionsFunction)));
}

TEST_F(IscsiSessionTest, SizeBelowOneRecord) {
    library->prescribe({.function = kMappingsFunction, .result = 122, .size = 8});
    answer(kMappingsFunction, 2, 0);
    EXPECT_EQ(findSession(), (FoundSession{0, kUntouched, kUntouched}));
}

// ---- With lengths

FoundSession findSessionEx(unsigned long port, int length) {
    GuardedBuffer address(static_cast<std::size_t>(length));
    GuardedBuffer name(static_cast<std::size_t>(length));
    const unsigned long status =
        GetISCSIAdapterInfoEx(port, 0, 1, address.as<char>(), length, name.as<char>(), length);
    return {static_cast<int>(status),
            {address.as<char>(), address.size()},
            {name.as<char>(), name.size()}};
}

std::string padded(std::string text, std::size_t length) {
    text.resize(length);
    return text;
}

TEST_F(IscsiSessionTest, LengthsOfTheCallersBuffers) {
    for (const std::size_t length : {256u, 300u, 14u}) {
        EXPECT_EQ(findSessionEx(3, static_cast<int>(length)),
                  (FoundSession{0, padded("192.168.10.20", length), padded("initiator", length)}));
    }
    EXPECT_EQ(findSessionEx(3, 9), (FoundSession{0, "192.168.1", "initiator"}));
    EXPECT_EQ(findSessionEx(3, 1), (FoundSession{0, "1", "i"}));
}

TEST_F(IscsiSessionTest, FullTextsInTheCallersBuffers) {
    setPath(mapping(std::wstring(255, L'n')), {std::wstring(256, L'a')});
    EXPECT_EQ(findSessionEx(3, 256),
              (FoundSession{0, std::string(256, 'a'), padded(std::string(255, 'n'), 256)}));
    EXPECT_EQ(findSessionEx(3, 300), (FoundSession{0, padded(std::string(256, 'a'), 300),
                                                   padded(std::string(255, 'n'), 300)}));
}

TEST_F(IscsiSessionTest, NothingFoundInTheCallersBuffers) {
    const std::string nothing(256, '0');
    EXPECT_EQ(findSessionEx(9, 256), (FoundSession{0, nothing, nothing}));
    EXPECT_EQ(findSessionEx(9, 300), (FoundSession{0, padded(nothing, 300), padded(nothing, 300)}));
    library->setSessions({});
    EXPECT_EQ(findSessionEx(3, 256), (FoundSession{0, nothing, padded("initiator", 256)}));
}

TEST_F(IscsiSessionTest, FailuresInTheCallersBuffers) {
    const std::string nothing(256, '0');
    answer(kSessionsFunction, 1, 5);
    EXPECT_EQ(findSessionEx(3, 256), (FoundSession{kDiscoveryFailed, nothing, nothing}));
    EXPECT_EQ(GetISCSIAdapterInfoEx(3, 0, 1, nullptr, 256, nullptr, 256), 0u);
    library->setMappings({});
    EXPECT_EQ(findSessionEx(3, 256), (FoundSession{kNoMappings, nothing, nothing}));
    EXPECT_EQ(GetISCSIAdapterInfoEx(3, 0, 1, nullptr, 0, nullptr, 0), 0xFFFFFFFFu);
}

TEST_F(IscsiSessionTest, NoLengthLeavesTheCallersBufferAlone) {
    for (const int length : {0, -1, -2147483647 - 1}) {
        char address = '?';
        char name = '?';
        EXPECT_EQ(GetISCSIAdapterInfoEx(3, 0, 1, &address, length, &name, length), 0u);
        EXPECT_EQ(address, '?');
        EXPECT_EQ(name, '?');
    }
}

}  // namespace
}  // namespace quista::test
