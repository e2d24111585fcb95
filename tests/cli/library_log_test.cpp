#include "cli/library_log.h"

#include <gtest/gtest.h>

namespace quista::cli {
namespace {

constexpr const char* kStamp = "11/20/2026 14:08:54";

std::string line(const std::string& rest) {
    return kStamp + std::string(" Error ") + rest + "\n";
}

TEST(LibraryLogTest, FailedStepHasPlaceAndCode) {
    const auto step = failedStepIn(line("E0000008 in CallMethodforITL::Put"));
    ASSERT_TRUE(step);
    EXPECT_EQ(step->place, "CallMethodforITL::Put");
    EXPECT_EQ(step->code, 0xE0000008u);
}

TEST(LibraryLogTest, MessageIsNoPartOfThePlace) {
    const auto step = failedStepIn(line("80041001 in KORVADSMSetPRKey: Put(Key): WBEM_E_FAILED"));
    ASSERT_TRUE(step);
    EXPECT_EQ(step->place, "KORVADSMSetPRKey: Put(Key)");
}

TEST(LibraryLogTest, EndsOfEnumerationsAndNotesAreNoFailures) {
    EXPECT_FALSE(failedStepIn(line("00000001 in KORVADSM: IEnumWbemClassObject::Next: x")));
    EXPECT_FALSE(failedStepIn(line("0000002D in DSM_INITIALIZED")));
    EXPECT_FALSE(failedStepIn(line("00000036 in DSM recompiling MOFs!!")));
}

TEST(LibraryLogTest, FirstFailureCounts) {
    const auto step = failedStepIn(line("00000001 in A") + "the rest of a message\r\n" +
                                   line("80041002 in B") + line("80041003 in C"));
    ASSERT_TRUE(step);
    EXPECT_EQ(step->place, "B");
}

TEST(LibraryLogTest, OtherLinesAreSkipped) {
    for (const char* text :
         {"", "\n", "Error 80041001 in A\n", "11/20/2026 14:08:54 Error 8004100X in A\n",
          "11/20/2026 14:08:54 Error 80041001\n", "11/20/2026 14:08:54 Error 8004"}) {
        EXPECT_FALSE(failedStepIn(text)) << text;
    }
}

}  // namespace
}  // namespace quista::cli
