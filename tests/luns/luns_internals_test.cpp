// What no export reaches: the name lookup of the path operations, and the console lines.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/console.h"
#include "luns/instance_lookup.h"
#include "tests/luns/luns_test.h"
#include "tests/support/console_capture.h"
#include "tests/support/guarded_buffer.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// ---- GetInstance_for_SerialNo

constexpr const char* kPlace = "GetInstance_for_SerialNo";
constexpr const char* kNext = "GetInstance_for_SerialNo: IEnumWbemClassObject::Next";
constexpr const char* kSerialPlace = "ParseLunInfoSerialNumber::Get(SerialNumber)";
constexpr const char* kQueryS1 =
    "ExecQuery SELECT * FROM KORVADSM_LUNINFO WHERE SerialNumber = \"S1\"";
constexpr std::size_t kScratchBlock = 2048;

class NameLookupTest : public LunsTest {
  protected:
    unsigned long find(std::wstring serial) {
        buffer_.fill();
        return GetInstance_for_SerialNo(serial.data(), buffer_.as<wchar_t>());
    }
    std::wstring name() const { return buffer_.as<wchar_t>(); }
    bool untouched() const { return buffer_.untouched(); }

  private:
    GuardedBuffer buffer_{256 * sizeof(wchar_t)};
};

TEST_F(NameLookupTest, NameIsEscapedAndQuoted) {
    openWith({lunWith(L"S0", {}), lunWith(L"S1", {})});
    const LiveObjectsCheck objects(host);
    const AllocationScope memory;
    EXPECT_EQ(find(L"S1"), 0u);
    EXPECT_EQ(name(), L"\"MPIO\\\\Disk&Ven_KORVA\\\\S1\"");
    EXPECT_THAT(queries(), ElementsAre(kQueryS1, "Next"));
    EXPECT_THAT(reads(), ElementsAre("LUN.SerialNumber", "LUN.InstanceName"));
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(memory.survivors(), IsEmpty()) << "the scratch block is freed";
}

TEST_F(NameLookupTest, SerialNumberIsComparedExactly) {
    openWith({namedLun(L"a", L"s1"), namedLun(L"b", L"S1")});
    EXPECT_EQ(find(L"S1"), 0u);
    EXPECT_EQ(name(), L"\"b\"");
    EXPECT_THAT(queries(), ElementsAre(kQueryS1, "Next", "Next"));
}

TEST_F(NameLookupTest, LongNameIsCutInsideItsQuotes) {
    openWith({namedLun(std::wstring(400, L'n'), L"S1")});
    EXPECT_EQ(find(L"S1"), 0u);
    EXPECT_EQ(name(), L"\"" + std::wstring(253, L'n') + L"\"");
}

TEST_F(NameLookupTest, LongSerialNumberIsFound) {
    const std::wstring serial(300, L'x');
    openWith({namedLun(L"a", serial)});
    EXPECT_EQ(find(serial), 0u);
    EXPECT_EQ(name(), L"\"a\"");
}

TEST_F(NameLookupTest, NoMatchGives27) {
    openWith({namedLun(L"a", L"s1")});
    const LiveObjectsCheck objects(host);
    EXPECT_EQ(find(L"S1"), 27u);
    EXPECT_TRUE(untouched());
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kNext, 1}, LogLine{kPlace, 27}));
}

TEST_F(NameLookupTest, FailureOfNextIsANoMatch) {
    openWith({namedLun(L"a", L"S1")});
    for (const unsigned long code : {0x80041002ul, 0x00040004ul, 0x80004005ul}) {
        SCOPED_TRACE(code);
        const LiveObjectsCheck objects(host);
        host->clearFaults();
        host.failNext(kLunClass, resultOf(code));
        EXPECT_EQ(find(L"S1"), 27u);
        EXPECT_THAT(log.take(), ElementsAre(LogLine{kNext, code}, LogLine{kPlace, 27}));
    }
}

TEST_F(NameLookupTest, UnreadableSerialNumberDoesNotEndTheSearch) {
    openWith({namedLun(L"a", L"S1"), namedLun(L"b", L"S1")});
    host.failGet(kLunClass, L"SerialNumber", resultOf(0x80041002), 1, 1);
    EXPECT_EQ(find(L"S1"), 0u);
    EXPECT_EQ(name(), L"\"b\"");
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kSerialPlace, 0x80041002}));
}

TEST_F(NameLookupTest, UnreadableNameIsANoMatch) {
    openWith({namedLun(L"a", L"S1")});
    host.failGet(kLunClass, L"InstanceName", resultOf(0x80041002));
    EXPECT_EQ(find(L"S1"), 27u);
    EXPECT_TRUE(untouched());
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kPlace, 27}));
}

TEST_F(NameLookupTest, FailedQueryGives14) {
    openWith({namedLun(L"a", L"S1")});
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        const AllocationScope memory;
        host->clearFaults();
        host.failQuery(kLunClass, resultOf(code));
        EXPECT_EQ(find(L"S1"), 14u);
        EXPECT_EQ(log.take(), failureOf(kPlace, code));
        EXPECT_THAT(memory.survivors(), IsEmpty());
    }
}

TEST_F(NameLookupTest, DoubleQuoteMakesTheQueryInvalid) {
    openWith({namedLun(L"a", L"S\"1")});
    EXPECT_EQ(find(L"S\"1"), 14u);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kPlace, 0x80041017}));
}

TEST_F(NameLookupTest, NoSessionIsAFailedQuery) {
    EXPECT_EQ(find(L"S1"), 14u);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kPlace, kNullPointer}));
}

TEST_F(NameLookupTest, NoMemoryForTheScratchBlockGives7) {
    openWith({namedLun(L"a", L"S1")});
    const AllocationScope memory;
    memory->failBlocks(kScratchBlock);
    EXPECT_EQ(find(L"S1"), 7u);
    EXPECT_THAT(queries(), IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{kPlace, 7}));
}

// ---- ParseLunInfoSerialNumber

class SerialNumberTest : public LunsTest {};

TEST_F(SerialNumberTest, TextIsBareAndCut) {
    openWith({lunWith(L"S12345", {})});
    const auto lun = onlyLun();
    const AllocationScope memory;
    const std::pair<std::size_t, std::wstring> cases[] = {
        {20, L"S12345"}, {7, L"S12345"}, {6, L"S1234"}, {1, L""}};
    for (const auto& [capacity, text] : cases) {
        const GuardedBuffer buffer(capacity * sizeof(wchar_t));
        EXPECT_EQ(ParseLunInfoSerialNumber(lun.get(), buffer.as<wchar_t>(), capacity), 0u);
        EXPECT_EQ(buffer.as<wchar_t>(), text);
    }
    EXPECT_THAT(memory.survivors(), IsEmpty());
}

TEST_F(SerialNumberTest, OtherTypesAreTheirDisplayTexts) {
    openWith({lunWith(L"S1", {})});
    const auto lun = onlyLun();
    const std::pair<Value, std::wstring> values[] = {{Value::bits(VT_NULL), L"Invalid Entry"},
                                                     {Value::bits(VT_I4, 5), L"Invalid Entry"},
                                                     {Value::shorts({L'S', L'2', 0}), L"S2"},
                                                     {Value::text(L""), L""}};
    for (const auto& [value, text] : values) {
        host->clearFaults();
        host.replaceValue(kLunClass, L"SerialNumber", value.get());
        wchar_t serial[32] = {};
        EXPECT_EQ(ParseLunInfoSerialNumber(lun.get(), serial, std::size(serial)), 0u);
        EXPECT_EQ(serial, text);
    }
}

TEST_F(SerialNumberTest, FailureGives15) {
    openWith({lunWith(L"S1", {})});
    const auto lun = onlyLun();
    for (const unsigned long code : kFailures) {
        SCOPED_TRACE(code);
        host->clearFaults();
        host.failGet(kLunClass, L"SerialNumber", resultOf(code));
        const GuardedBuffer buffer(16);
        EXPECT_EQ(ParseLunInfoSerialNumber(lun.get(), buffer.as<wchar_t>(), 8), 15u);
        EXPECT_TRUE(buffer.untouched());
        EXPECT_EQ(log.take(), failureOf(kSerialPlace, code));
    }
}

// ---- Console lines

/// With gConsoleTrace on the library prints what it otherwise keeps to itself.
class LunConsoleTest : public LunsTest {
  protected:
    ~LunConsoleTest() override { gConsoleTrace = 0; }

    /// What a call prints, with the switch on or off.
    template <typename Call>
    static std::string printed(unsigned char trace, Call call) {
        ConsoleCapture console;
        gConsoleTrace = trace;
        call();
        gConsoleTrace = 0;
        return console.stop();
    }
};

constexpr const char* kLunPathLine = "LunPath: \"/vol/vol1/lun1\"\r\n";

TEST_F(LunConsoleTest, LunPathIsPrinted) {
    openWith({lunWith(L"S1", {fibreChannelPath(1)})});
    const auto lun = onlyLun();
    const auto call = [&] { EXPECT_EQ(parse(lun.get()).status, 0u); };
    EXPECT_EQ(printed(1, call), kLunPathLine);
    EXPECT_EQ(printed(0, call), "");
}

TEST_F(LunConsoleTest, PathsThatAreNoArrayArePrinted) {
    openWith({lunWith(L"S1", {fibreChannelPath(1)})});
    const auto lun = onlyLun();
    host.replaceValue(kLunClass, L"Paths", Value::bits(VT_NULL).get());
    const auto call = [&] { EXPECT_EQ(parse(lun.get()).status, 14u); };
    EXPECT_EQ(printed(1, call),
              kLunPathLine + std::string("ERROR: PathInfo is not an ARRAY!!\r\n"));
    EXPECT_EQ(printed(0, call), "");
}

TEST_F(LunConsoleTest, InconsistentCountIsPrinted) {
    for (const auto& [count, status, line] :
         {std::tuple{3, 0u,
                     "WARNING: Inconsistent information: NumberPaths=3, number of Path "
                     "object=2\r\n"},
          std::tuple{1, 14u,
                     "WARNING: Inconsistent information: NumberPaths=1, number of Path "
                     "object=2\r\n"}}) {
        SCOPED_TRACE(count);
        host->removeInstances(kWmi, kLunClass);
        openWith({lunWith(L"S1", {fibreChannelPath(1), fibreChannelPath(2)})
                      .number(L"NumberOfPaths", count)});
        const auto lun = onlyLun();
        const auto call = [&, expected = status] { EXPECT_EQ(parse(lun.get()).status, expected); };
        EXPECT_EQ(printed(1, call), kLunPathLine + std::string(line));
        EXPECT_EQ(printed(0, call), "");
        closeSession();
    }
}

TEST_F(LunConsoleTest, FailedLookupIsPrintedWithItsSerialNumber) {
    openWith({});
    const auto call = [&] {
        std::wstring serial = L"S1";
        _KORVADSM_DISKINFO* info = nullptr;
        EXPECT_EQ(DSMGetDiskInfoKORVA(serial.data(), &info), 27u);
    };
    const std::string lines = printed(1, call);
    EXPECT_TRUE(lines.ends_with("ERROR: Failed CallGetDiskInfo() for S/N: \"S1\"\r\n")) << lines;
    EXPECT_EQ(printed(0, call), "");
}

TEST_F(LunConsoleTest, DescriptorPathsThatAreNoArrayArePrinted) {
    openWith({lunWith(L"S1", {fibreChannelPath(1)})});
    host.replaceValue(kLunClass, L"Paths", Value::bits(VT_NULL).get());
    const auto call = [&] {
        std::wstring serial = L"S1";
        wchar_t name[256] = {};
        _MPIO_GET_DESCRIPTOR* descriptor = nullptr;
        _DSM_LOAD_BALANCE_TYPE policy{};
        EXPECT_EQ(KORVA_GetInstance_for_Serial(serial.data(), name, &descriptor, &policy, nullptr),
                  0u);
        CoTaskMemFree(descriptor);
    };
    EXPECT_EQ(printed(1, call), "ERROR: PdoInformation is not an ARRAY!!\r\n");
    EXPECT_EQ(printed(0, call), "");
}

}  // namespace
}  // namespace quista::test
