// The method call behind the path operations: what each argument becomes, and what the connection
// is asked.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <initializer_list>
#include <iterator>

#include "control/itl_method.h"
#include "frame/console.h"
#include "tests/control/paths_test.h"
#include "tests/support/console_capture.h"
#include "tests/support/text.h"
#include "tests/wmi/recorded_services.h"

namespace quista::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

struct Argument {
    const wchar_t* name;
    unsigned long long value;
};

/// Class Disk with methods that take arguments of many names; its one instance D\1 has path 1.
class PathArgumentTest : public PathsTest {
  protected:
    PathArgumentTest() {
        host.loadText(
            L"class Disk {\n"
            L"    [key] string InstanceName;\n"
            L"    uint32 KORVADSMLoadBalancePolicy;\n"
            L"    uint32 NumberOfPaths;\n"
            L"    KORVADSM_PATHINFO Paths[];\n"
            L"    [Implemented] void Change([in] uint64 PathId, [in] sint32 DsmID,\n"
            L"        [in] uint32 Weight, [in] boolean Force, [in] uint64 Wide,\n"
            L"        [in] boolean weight2, [out] uint32 ReturnCode);\n"
            L"    [Implemented] void Refresh([out] uint32 ReturnCode);\n"
            L"    [Implemented] void setactive([in] sint32 DsmID, [out] uint32 ReturnCode);\n"
            L"};\n");
        addDisk(1);
        openSession();
    }
    ~PathArgumentTest() override { gConsoleTrace = 0; }

    void addDisk(int policy) {
        host.add(MofObject(L"Disk")
                     .text(L"InstanceName", L"D\\1")
                     .number(L"KORVADSMLoadBalancePolicy", policy)
                     .number(L"NumberOfPaths", 1)
                     .objects(L"Paths", {MofObject(kPathClass).number(L"DsmId", 1)}));
    }

    static DWORD call(const wchar_t* method, std::initializer_list<Argument> arguments) {
        std::vector<BSTR> names;
        std::vector<unsigned long long> values;
        for (const Argument& argument : arguments) {
            names.push_back(SysAllocString(argument.name));
            values.push_back(argument.value);
        }
        const DWORD status = CallMethodforITL(L"Disk", method, names.data(), values.data(),
                                              static_cast<DWORD>(names.size()));
        for (const BSTR name : names) SysFreeString(name);
        return status;
    }
    /// The input of the method `Change` with these arguments.
    std::string inputOf(std::initializer_list<Argument> arguments) {
        const RecordedServices services;
        EXPECT_EQ(call(L"Change", arguments), DSM_SUCCESS);
        return services.calls().empty() ? "" : narrow(services.calls().back().input);
    }
    /// A call whose put of the last argument is refused for its type.
    void expectRefused(std::initializer_list<Argument> arguments) {
        EXPECT_EQ(call(L"Change", arguments), DSM_WMI_FAILURE);
        expectLog(
            {{"CallMethodforITL::Put", 0x80041005}, {"CallMethodforITL::ExecMethod", 0x80041005}});
    }
};

TEST_F(PathArgumentTest, ConnectionIsAskedInOrder) {
    const RecordedServices services;
    EXPECT_EQ(call(L"Change", {{L"DsmID", 1}}), DSM_SUCCESS);
    ASSERT_EQ(services.calls().size(), 3u);
    EXPECT_EQ(services.calls()[0],
              (ServiceCall{L"CreateInstanceEnum", L"Disk", L"", 0x31, L"", L""}));
    EXPECT_EQ(services.calls()[1], (ServiceCall{L"GetObject", L"Disk", L"", 0, L"", L""}));
    const ServiceCall& execution = services.calls()[2];
    EXPECT_EQ(execution.target, L"Disk.InstanceName=\"D\\\\1\"");
    EXPECT_EQ(execution.detail, L"Change");
    EXPECT_EQ(execution.flags, 0);
}

TEST_F(PathArgumentTest, MethodWithoutInputsIsCalledWithoutAnObject) {
    const RecordedServices services;
    setMethodResult(L"Disk", L"Refresh", L"ReturnCode", 0xC0000001);
    EXPECT_EQ(call(L"Refresh", {{L"DsmID", 1}, {L"Weight", 2}}), 0xC0000001);
    ASSERT_EQ(services.calls().size(), 3u);
    EXPECT_EQ(services.calls()[2].input, L"");
    EXPECT_EQ(services.calls()[2].flags, 0);
    EXPECT_EQ(services.calls()[2].target, L"Disk.InstanceName=\"D\\\\1\"");
}

// ---- Types

TEST_F(PathArgumentTest, DsmIdAndWeightAreTheLowHalf) {
    EXPECT_THAT(inputOf({{L"DsmID", 1}, {L"Weight", 0x1FFFFFFFE}}),
                AllOf(HasSubstr("DsmID = 1"), HasSubstr("Weight = 4294967294")));
    EXPECT_THAT(inputOf({{L"Force", 1}, {L"DsmID", 0xFFFFFFFF80000001}}),
                HasSubstr("DsmID = -2147483647"));
    EXPECT_THAT(inputOf({{L"Force", 1}, {L"DsmID", 0x780000001}}),
                HasSubstr("DsmID = -2147483647"));
}

TEST_F(PathArgumentTest, PathIdIsUnsignedDecimalText) {
    EXPECT_THAT(inputOf({{L"DsmID", 1}, {L"PathId", 0xFFFFFFFFFFFFFFFF}}),
                HasSubstr("PathId = \"18446744073709551615\";"));
    EXPECT_THAT(inputOf({{L"PathId", 1}}), HasSubstr("PathId = \"1\";"));
    EXPECT_THAT(inputOf({{L"DsmID", 1}, {L"PathId", 0}}), HasSubstr("PathId = \"0\";"));
}

TEST_F(PathArgumentTest, AnyOtherNameIsABooleanOfTheLowWord) {
    EXPECT_THAT(inputOf({{L"DsmID", 1}, {L"Force", 1}}), HasSubstr("Force = TRUE"));
    EXPECT_THAT(inputOf({{L"DsmID", 1}, {L"Force", 0x10000}}), HasSubstr("Force = FALSE"));
    EXPECT_THAT(inputOf({{L"DsmID", 1}, {L"Force", 0x8000}}), HasSubstr("Force = TRUE"));
    EXPECT_THAT(inputOf({{L"DsmID", 1}, {L"weight2", 5}}), HasSubstr("weight2 = TRUE"));
}

TEST_F(PathArgumentTest, NamesAreComparedWithTheirCase) {
    EXPECT_THAT(inputOf({{L"DsmID", 1}, {L"FORCE", 1}}), HasSubstr("Force = TRUE"));
    expectRefused({{L"DsmID", 1}, {L"pathid", 1}});
}

TEST_F(PathArgumentTest, EachNameHasItsTypes) {
    constexpr VARTYPE kTypes[] = {VT_I4, VT_I4, VT_BOOL, VT_BSTR, VT_BSTR};
    constexpr CIMTYPE kCimTypes[] = {0, 0, 0, CIM_UINT64, CIM_UINT64};
    host->clearTrace();
    call(L"Change", {{L"DsmID", 1}, {L"Weight", 2}, {L"Force", 1}, {L"PathId", 3}, {L"PathId", 4}});
    std::size_t puts = 0;
    for (const simulator::CallRecord& made : host->trace()) {
        if (made.method != L"Put") continue;
        ASSERT_LT(puts, std::size(kTypes));
        EXPECT_EQ(made.valueType, kTypes[puts]) << puts;
        EXPECT_EQ(made.cimType, kCimTypes[puts]) << puts;
        ++puts;
    }
    EXPECT_EQ(puts, std::size(kTypes));
}

TEST_F(PathArgumentTest, TypeOfThePathIdStaysForTheArgumentsAfterIt) {
    // An argument of another declared type is refused once a path identifier came before it.
    expectRefused({{L"PathId", 1}, {L"Weight", 3}});
    expectRefused({{L"PathId", 1}, {L"Force", 1}});
    EXPECT_THAT(inputOf({{L"Weight", 1}, {L"Force", 1}, {L"PathId", 1}}), HasSubstr("Weight = 1"));
}

TEST_F(PathArgumentTest, FirstValueIsThePathWhateverItsName) {
    EXPECT_EQ(call(L"Change", {{L"Weight", 1}, {L"DsmID", 2}}), DSM_SUCCESS);
    EXPECT_EQ(call(L"Change", {{L"Weight", 2}, {L"DsmID", 1}}), DSM_PATH_NOT_FOUND);
    expectLog({{kPathNext, kEnd}});
}

// ---- Failures

TEST_F(PathArgumentTest, MissingNameEndsTheFillingAndTheMethodIsCalled) {
    const RecordedServices services;
    const LiveObjectsCheck live(host);
    EXPECT_EQ(call(L"Change", {{L"DsmID", 1}, {nullptr, 2}, {L"Weight", 3}}), DSM_SUCCESS);
    expectLog({});
    EXPECT_THAT(narrow(services.calls().back().input),
                AllOf(HasSubstr("DsmID = 1"), Not(HasSubstr("Weight = 3"))));
}

TEST_F(PathArgumentTest, MissingNameIsAFailureUntilTheMethodHasAnswered) {
    host.failMethod(L"Disk", L"Change", resultOf(0x80004005));
    EXPECT_EQ(call(L"Change", {{L"DsmID", 1}, {nullptr, 2}}), DSM_WMI_FAILURE);
    expectLog({});
    host->clearFaults();
    setMethodResult(L"Disk", L"Change", L"ReturnCode", 0x40000000);
    EXPECT_EQ(call(L"Change", {{L"DsmID", 1}, {nullptr, 2}}), DSM_ERROR);
}

TEST_F(PathArgumentTest, UnknownArgumentEndsTheFilling) {
    const LiveObjectsCheck live(host);
    const AllocationScope scope;
    EXPECT_EQ(call(L"Change", {{L"DsmID", 1}, {L"Unknown", 1}, {L"Weight", 3}}), DSM_WMI_FAILURE);
    expectLog({{"CallMethodforITL::Put", kNotFoundCode},
               {"CallMethodforITL::ExecMethod", kNotFoundCode}});
    EXPECT_EQ(countCalls(L"Put __PARAMETERS.Weight"), 0u);
    EXPECT_EQ(countCalls(L"ExecMethod Disk.Change"), 0u);
    EXPECT_THAT(scope.survivors(), IsEmpty());
}

TEST_F(PathArgumentTest, NothingStaysBehind) {
    const LiveObjectsCheck live(host);
    const AllocationScope scope;
    EXPECT_EQ(call(L"Change", {{L"DsmID", 1}, {L"Force", 1}, {L"PathId", 7}}), DSM_SUCCESS);
    EXPECT_THAT(scope.survivors(), IsEmpty());
}

// ---- Guard

TEST_F(PathArgumentTest, GuardNamesItsMethodsWithTheirCase) {
    host->removeInstances(kWmi, L"Disk");
    addDisk(5);
    EXPECT_EQ(call(L"SetActive", {{L"DsmID", 1}}), DSM_WEIGHTED_PATH_NO_ACTIVE_PASSIVE);
    EXPECT_EQ(call(L"SetPassive", {{L"DsmID", 1}}), DSM_WEIGHTED_PATH_NO_ACTIVE_PASSIVE);
    EXPECT_EQ(call(L"setactive", {{L"DsmID", 1}}), DSM_SUCCESS);
    EXPECT_EQ(call(L"SetActive2", {{L"DsmID", 1}}), DSM_ERROR);
    expectLog({{"CallMethodforITL::GetMethod", kNotFoundCode}});
}

// ---- Console

TEST_F(PathArgumentTest, ConsoleIsSilentWithoutTrace) {
    ConsoleCapture console;
    host.add(lunOfPaths(L"S1", {1}));
    EXPECT_EQ(KORVADSMEnablePath(1), DSM_SUCCESS);
    EXPECT_EQ(call(L"Change", {{L"DsmID", 1}, {L"Unknown", 1}}), DSM_WMI_FAILURE);
    EXPECT_EQ(console.stop(), "");
}

TEST_F(PathArgumentTest, TraceNamesTheRefusedArgument) {
    gConsoleTrace = 1;
    ConsoleCapture console;
    EXPECT_EQ(call(L"Change", {{L"DsmID", 1}, {L"Unknown", 0xFFFFFFFFFFFFFFFE}}), DSM_WMI_FAILURE);
    // The log prints its own lines behind it.
    EXPECT_THAT(
        console.stop(),
        StartsWith("Argument[1]: \"Unknown\" = 18446744073709551614 failed. Error: 0x80041002\r\n"
                   "Error 80041002 in CallMethodforITL::Put"));
}

TEST_F(PathArgumentTest, TraceShowsTheLowHalfOfTheIdentifier) {
    gConsoleTrace = 1;
    ConsoleCapture console;
    EXPECT_EQ(KORVADSMSetPathWeight(0xFFFFFFFF80000001, 3), DSM_PATH_NOT_FOUND);
    EXPECT_THAT(console.stop(), StartsWith("SetWeight  DsmID: 0x80000001\r\n"));
}

TEST_F(PathArgumentTest, TraceNamesMethodAndPathBeforeTheSearch) {
    gConsoleTrace = 1;
    for (const PathOperation& operation : kPathOperations) {
        ConsoleCapture console;
        EXPECT_EQ(operation.run(0xABCDEF), DSM_PATH_NOT_FOUND);
        EXPECT_THAT(console.stop(),
                    StartsWith(narrow(operation.method) + "  DsmID: 0xabcdef\r\nError 00000001"));
    }
}

}  // namespace
}  // namespace quista::test
