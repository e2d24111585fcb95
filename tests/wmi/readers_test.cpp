// Readers of single properties: the value, the fallback and the line that a failure leaves.
#include "wmi/readers.h"

#include <cstddef>
#include <cwchar>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quista/status.h"
#include "tests/support/allocation_spy.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/log_file.h"
#include "tests/support/work_folder.h"
#include "tests/wmi/fake_object.h"
#include "tests/wmi/value.h"

namespace quista::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Size of the block that a BSTR of this text takes.
std::size_t blockSizeOf(const std::wstring& text) {
    const AllocationScope scope;
    BSTR bstr = SysAllocString(text.c_str());
    const std::size_t size = scope.survivors().at(0);
    SysFreeString(bstr);
    return size;
}

class ReaderTest : public testing::Test {
  protected:
    LogLine numberLine(const std::string& property, HRESULT result) const {
        return {"DsmGetPathInfoBval reported and error while retrieving " + property,
                static_cast<unsigned long>(result)};
    }
    LogLine textLine(const std::string& property, HRESULT result) const {
        return {"DsmGetWbemInfoGetStringVal reported an error while retrieving " + property,
                static_cast<unsigned long>(result)};
    }

    WorkFolder folder;
    LogFile log;
    FakeObject embedded;
    FakeObject object;
};

// ---- Numbers

class NumberReaderTest : public ReaderTest {};

TEST_F(NumberReaderTest, ByteIsTheLowByteOfAnyType) {
    object.set(L"Byte", Value::bits(VT_UI1, 0xFE));
    object.set(L"Long", Value::bits(VT_I4, 0x12345678));
    object.set(L"True", Value::boolean(VARIANT_TRUE));
    object.set(L"Negative", Value::bits(VT_I2, 0xFFFF));
    EXPECT_EQ(DsmGetPathInfoBval(&object, L"Byte"), 0xFE);
    EXPECT_EQ(DsmGetPathInfoBval(&object, L"Long"), 0x78);
    EXPECT_EQ(DsmGetPathInfoBval(&object, L"True"), 0xFF);
    EXPECT_EQ(DsmGetPathInfoBval(&object, L"Negative"), 0xFF);
    EXPECT_THAT(object.reads(), ElementsAre(L"Byte", L"Long", L"True", L"Negative"));
    EXPECT_FALSE(log.exists());
}

TEST_F(NumberReaderTest, LongIsTheLow32BitsOfAnyType) {
    object.set(L"Long", Value::bits(VT_I4, 0x12345678));
    object.set(L"Negative", Value::bits(VT_I4, -1));
    object.set(L"Byte", Value::bits(VT_UI1, 0xFE));
    object.set(L"Short", Value::bits(VT_I2, 0xFFFE));
    object.set(L"Wide", Value::bits(VT_I8, 0x1122334455667788));
    EXPECT_EQ(DsmGetPathInfoLval(&object, L"Long"), 0x12345678u);
    EXPECT_EQ(DsmGetPathInfoLval(&object, L"Negative"), 0xFFFFFFFFu);
    EXPECT_EQ(DsmGetPathInfoLval(&object, L"Byte"), 0xFEu);
    EXPECT_EQ(DsmGetPathInfoLval(&object, L"Short"), 0xFFFEu) << "no sign is extended";
    EXPECT_EQ(DsmGetPathInfoLval(&object, L"Wide"), 0x55667788u);
    EXPECT_FALSE(log.exists());
}

TEST_F(NumberReaderTest, StringGivesItsPointersBitsAndIsFreed) {
    object.text(L"Text", L"7");
    const AllocationScope scope;
    static_cast<void>(DsmGetPathInfoBval(&object, L"Text"));
    static_cast<void>(DsmGetPathInfoLval(&object, L"Text"));
    EXPECT_THAT(scope.survivors(), IsEmpty());
    EXPECT_FALSE(log.exists()) << "the type is not looked at";
}

TEST_F(NumberReaderTest, NullPropertyIsTheBareValueField) {
    object.set(L"Null", Value::bits(VT_NULL));
    EXPECT_EQ(DsmGetPathInfoBval(&object, L"Null"), 0);
    EXPECT_EQ(DsmGetPathInfoLval(&object, L"Null"), 0u);
    EXPECT_FALSE(log.exists());
}

TEST_F(NumberReaderTest, MissingPropertyIsZeroAndLogged) {
    EXPECT_EQ(DsmGetPathInfoBval(&object, L"PortNumber"), 0);
    EXPECT_THAT(log.take(), ElementsAre(numberLine("PortNumber", kNotFound)));
    // The 32-bit reader reports under the byte reader's name.
    EXPECT_EQ(DsmGetPathInfoLval(&object, L"DsmId"), 0u);
    EXPECT_THAT(log.take(), ElementsAre(numberLine("DsmId", kNotFound)));
}

TEST_F(NumberReaderTest, ValueOfAFailedReadCounts) {
    object.set(L"Number", Value::bits(VT_I4, 0x01020304), kFailed);
    EXPECT_EQ(DsmGetPathInfoBval(&object, L"Number"), 4);
    EXPECT_EQ(DsmGetPathInfoLval(&object, L"Number"), 0x01020304u);
    EXPECT_THAT(log.take(),
                ElementsAre(numberLine("Number", kFailed), numberLine("Number", kFailed)));
}

TEST_F(NumberReaderTest, PositiveResultIsAFailureToo) {
    object.set(L"Number", Value::bits(VT_I4, 5), WBEM_S_TIMEDOUT);
    EXPECT_EQ(DsmGetPathInfoLval(&object, L"Number"), 5u);
    EXPECT_THAT(log.take(), ElementsAre(numberLine("Number", WBEM_S_TIMEDOUT)));
}

TEST_F(NumberReaderTest, ResultOneIsNeverLogged) {
    object.set(L"Number", Value::bits(VT_I4, 5), S_FALSE);
    EXPECT_EQ(DsmGetPathInfoBval(&object, L"Number"), 5);
    EXPECT_EQ(DsmGetPathInfoLval(&object, L"Number"), 5u);
    EXPECT_FALSE(log.exists());
}

TEST_F(NumberReaderTest, NoMemoryForTheNameGivesTheFallback) {
    object.number(L"A property", 5);
    const std::size_t size = blockSizeOf(L"A property");
    const AllocationScope scope;
    scope->failBlocks(size, 1, 1);
    EXPECT_EQ(DsmGetPathInfoBval(&object, L"A property"), 0xFF);
    scope->failBlocks(size, 1, 1);
    EXPECT_EQ(DsmGetPathInfoLval(&object, L"A property"), 0xFFFFu);
    EXPECT_THAT(object.reads(), IsEmpty());
    EXPECT_THAT(log.take(), ElementsAre(numberLine("A property", DSM_NO_MEMORY),
                                        numberLine("A property", DSM_NO_MEMORY)));
}

TEST_F(NumberReaderTest, NullObjectIsAFailedRead) {
    EXPECT_EQ(DsmGetPathInfoBval(nullptr, L"Lun"), 0);
    EXPECT_EQ(DsmGetPathInfoLval(nullptr, L"DsmId"), 0u);
    EXPECT_THAT(log.take(),
                ElementsAre(numberLine("Lun", E_POINTER), numberLine("DsmId", E_POINTER)));
}

// ---- Texts

class TextReaderTest : public ReaderTest {
  protected:
    /// Reads into a field of `room` characters that ends at a guard page. Checks that exactly the
    /// text was written, without a terminator.
    void expectText(const wchar_t* property, std::uint32_t maximum, const std::wstring& expected) {
        const GuardedBuffer field(maximum * sizeof(wchar_t));
        EXPECT_EQ(DsmGetWbemInfoGetStringVal(&object, property, field.as<wchar_t>(), maximum),
                  S_OK);
        ASSERT_LE(expected.size(), maximum);
        EXPECT_EQ(std::wstring(field.as<wchar_t>(), expected.size()), expected);
        const std::size_t written = expected.size() * sizeof(wchar_t);
        EXPECT_TRUE(field.untouched(written, field.size() - written)) << "no terminator is written";
        EXPECT_FALSE(log.exists());
    }

    /// A read that fails writes nothing.
    HRESULT failingRead(IWbemClassObject* from, const wchar_t* property) {
        const GuardedBuffer field(10 * sizeof(wchar_t));
        const HRESULT result = DsmGetWbemInfoGetStringVal(from, property, field.as<wchar_t>(), 10);
        EXPECT_TRUE(field.untouched());
        return result;
    }
};

TEST_F(TextReaderTest, StringIsCopiedBare) {
    object.text(L"Name", L"filer-01");
    expectText(L"Name", 65, L"filer-01");
    EXPECT_THAT(object.reads(), ElementsAre(L"Name"));
}

TEST_F(TextReaderTest, StringIsCutAtTheMaximum) {
    object.text(L"Name", L"0123456789");
    expectText(L"Name", 5, L"01234");
    expectText(L"Name", 9, L"012345678");
    expectText(L"Name", 10, L"0123456789");
    expectText(L"Name", 11, L"0123456789");
}

TEST_F(TextReaderTest, MaximumOfZeroCopiesNothing) {
    object.text(L"Name", L"x");
    EXPECT_EQ(DsmGetWbemInfoGetStringVal(&object, L"Name", nullptr, 0), S_OK);
}

TEST_F(TextReaderTest, EmptyStringCopiesNothing) {
    object.text(L"Name", L"");
    object.set(L"Null string", Value::bits(VT_BSTR));
    expectText(L"Name", 10, L"");
    expectText(L"Null string", 10, L"");
}

TEST_F(TextReaderTest, LongStringStaysInItsField) {
    object.text(L"Name", std::wstring(100000, L'x'));
    expectText(L"Name", 65, std::wstring(65, L'x'));
}

TEST_F(TextReaderTest, CharacterArrayIsText) {
    object.set(L"Name", Value::shorts({'L', 'U', 'N', 0, 0}));
    object.set(L"Control", Value::shorts({0x41, 0x01, 0x00}));
    object.set(L"Zeros", Value::shorts({0, 0}));
    object.set(L"None", Value::shorts({}));
    expectText(L"Name", 65, L"LUN");
    expectText(L"Control", 65, L"41:01");
    expectText(L"Control", 4, L"41:0");
    expectText(L"Zeros", 65, L"");
    expectText(L"None", 65, L"<empty>");
}

TEST_F(TextReaderTest, OtherValuesAreInvalidEntries) {
    object.set(L"Null", Value::bits(VT_NULL));
    object.set(L"Number", Value::bits(VT_I4, 7));
    object.set(L"Boolean", Value::boolean(VARIANT_TRUE));
    object.set(L"Bytes", Value::bytes({1, 2}));
    object.set(L"Texts", Value::texts({L"a", L"b"}));
    for (const wchar_t* property : {L"Null", L"Number", L"Boolean", L"Bytes", L"Texts"}) {
        expectText(property, 65, L"Invalid Entry");
    }
    expectText(L"Null", 7, L"Invalid");
}

TEST_F(TextReaderTest, EmptyValueIsAnInvalidEntry) {
    object.set(L"Empty", Value());
    expectText(L"Empty", 65, L"Invalid Entry");
}

TEST_F(TextReaderTest, EmbeddedObjectIsAnInvalidEntry) {
    object.set(L"Object", Value::object(&embedded));
    const ULONG held = embedded.references();
    expectText(L"Object", 65, L"Invalid Entry");
    EXPECT_EQ(embedded.references(), held) << "what Get handed out is released";
}

TEST_F(TextReaderTest, StringIsKept) {
    object.text(L"Name", L"kept text");
    wchar_t field[20] = {};
    const AllocationScope scope;
    EXPECT_EQ(DsmGetWbemInfoGetStringVal(&object, L"Name", field, 19), S_OK);
    EXPECT_THAT(scope.survivingTexts(), ElementsAre(L"kept text"));
    EXPECT_EQ(scope.survivors().size(), 1u);
}

TEST_F(TextReaderTest, ArraysAreFreed) {
    object.set(L"Characters", Value::shorts({'a', 'b'}));
    object.set(L"Control", Value::shorts({1}));
    object.set(L"Bytes", Value::bytes({1, 2}));
    wchar_t field[20] = {};
    const AllocationScope scope;
    for (const wchar_t* property : {L"Characters", L"Control", L"Bytes"}) {
        EXPECT_EQ(DsmGetWbemInfoGetStringVal(&object, property, field, 19), S_OK);
    }
    EXPECT_THAT(scope.survivors(), IsEmpty());
}

TEST_F(TextReaderTest, FailureIsLoggedAndReturned) {
    EXPECT_EQ(failingRead(&object, L"FilerName"), kNotFound);
    EXPECT_THAT(log.take(), ElementsAre(textLine("FilerName", kNotFound)));
}

TEST_F(TextReaderTest, ValueOfAFailedReadIsNotUsed) {
    object.set(L"Name", Value::text(L"x"), kFailed);
    const AllocationScope scope;
    EXPECT_EQ(failingRead(&object, L"Name"), kFailed);
    EXPECT_THAT(scope.survivors(), IsEmpty()) << "it is cleared";
    EXPECT_THAT(log.take(), ElementsAre(textLine("Name", kFailed)));
}

TEST_F(TextReaderTest, PositiveResultIsAFailureAndOneIsNotLogged) {
    object.set(L"Name", Value::text(L"x"), S_FALSE);
    object.set(L"Late", Value::text(L"x"), WBEM_S_TIMEDOUT);
    EXPECT_EQ(failingRead(&object, L"Name"), S_FALSE);
    EXPECT_FALSE(log.exists());
    EXPECT_EQ(failingRead(&object, L"Late"), static_cast<HRESULT>(WBEM_S_TIMEDOUT));
    EXPECT_THAT(log.take(), ElementsAre(textLine("Late", WBEM_S_TIMEDOUT)));
}

TEST_F(TextReaderTest, NoMemoryForTheNameGivesItsCode) {
    const std::size_t size = blockSizeOf(L"A property");
    const AllocationScope scope;
    scope->failBlocks(size, 1, 1);
    EXPECT_EQ(failingRead(&object, L"A property"), static_cast<HRESULT>(DSM_NO_MEMORY));
    EXPECT_THAT(object.reads(), IsEmpty());
    EXPECT_THAT(log.take(), ElementsAre(textLine("A property", DSM_NO_MEMORY)));
}

TEST_F(TextReaderTest, NullObjectIsAFailedRead) {
    EXPECT_EQ(failingRead(nullptr, L"Name"), E_POINTER);
    EXPECT_THAT(log.take(), ElementsAre(textLine("Name", E_POINTER)));
}

// ---- SCSI address

class ScsiAddressReaderTest : public ReaderTest {
  protected:
    GuardedBuffer record{sizeof(_KORVADSM_PATHINFO)};
    _KORVADSM_PATHINFO& path = *record.as<_KORVADSM_PATHINFO>();
};

TEST_F(ScsiAddressReaderTest, FourBytesAreReadInOrder) {
    object.number(L"PortNumber", 2).number(L"ScsiPathId", 3).number(L"TargetId", 0x104);
    object.set(L"Lun", Value::bits(VT_UI1, 5));
    EXPECT_EQ(DsmGetPathScsiAddress(&object, &path), DSM_SUCCESS);
    EXPECT_THAT(object.reads(), ElementsAre(L"PortNumber", L"ScsiPathId", L"TargetId", L"Lun"));
    EXPECT_EQ(path.PortNumber, 2);
    EXPECT_EQ(path.ScsiPathId, 3);
    EXPECT_EQ(path.TargetId, 4) << "the low byte counts";
    EXPECT_EQ(path.Lun, 5);
    constexpr std::size_t kFirst = offsetof(_KORVADSM_PATHINFO, PortNumber);
    EXPECT_TRUE(record.untouched(0, kFirst));
    EXPECT_TRUE(record.untouched(kFirst + 4, record.size() - kFirst - 4));
    EXPECT_FALSE(log.exists());
}

TEST_F(ScsiAddressReaderTest, FailedReadsAreLoggedAndDoNotCount) {
    object.number(L"TargetId", 4);
    EXPECT_EQ(DsmGetPathScsiAddress(&object, &path), DSM_SUCCESS);
    EXPECT_EQ(path.PortNumber, 0);
    EXPECT_EQ(path.ScsiPathId, 0);
    EXPECT_EQ(path.TargetId, 4);
    EXPECT_EQ(path.Lun, 0);
    EXPECT_THAT(log.take(),
                ElementsAre(numberLine("PortNumber", kNotFound),
                            numberLine("ScsiPathId", kNotFound), numberLine("Lun", kNotFound)));
}

}  // namespace
}  // namespace quista::test
