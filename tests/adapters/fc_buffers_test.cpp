// The caller's buffers: how much is copied, and what stands behind it.
#include "tests/adapters/fc_adapter_test.h"
#include "tests/support/guarded_buffer.h"

namespace quista::test {
namespace {

/// A buffer of exactly as many characters as the call is told.
class CallerBuffer {
  public:
    explicit CallerBuffer(int length) : buffer_(static_cast<std::size_t>(length)) {
        buffer_.fill();
    }
    char* data() const { return buffer_.as<char>(); }
    std::string bytes() const { return {data(), buffer_.size()}; }

  private:
    GuardedBuffer buffer_;
};

std::string zeros(std::size_t count) {
    return std::string(count, '\0');
}

class FcBuffersTest : public FcAdapterTest {
  protected:
    FcBuffersTest() { setName("fc-a"); }

    void setName(const std::string& name) {
        library->setAdapters({{name, {port("\\\\.\\Scsi1:")}, {{0, 1}}}});
    }
    /// The bytes of a name buffer of this length.
    std::string nameBytes(int length, unsigned long target = 1) const {
        const CallerBuffer name(length);
        EXPECT_EQ(GetFcAdapterInfoEx(1, 0, target, nullptr, 0, name.data(), length), kOk);
        return name.bytes();
    }
    std::string addressBytes(int length, unsigned long target = 1) const {
        const CallerBuffer address(length);
        EXPECT_EQ(GetFcAdapterInfoEx(1, 0, target, address.data(), length, nullptr, 0), kOk);
        return address.bytes();
    }
};

TEST_F(FcBuffersTest, WholeTexts) {
    EXPECT_EQ(addressBytes(256), wwnText() + zeros(233));
    EXPECT_EQ(addressBytes(24), wwnText() + zeros(1));
    EXPECT_EQ(nameBytes(256), "fc-a" + zeros(252));
    EXPECT_EQ(nameBytes(5), "fc-a" + zeros(1));
}

/// A text that fills the length has no terminator.
TEST_F(FcBuffersTest, CutTexts) {
    EXPECT_EQ(addressBytes(23), wwnText());
    EXPECT_EQ(addressBytes(22), wwnText().substr(0, 22));
    EXPECT_EQ(addressBytes(1), "2");
    EXPECT_EQ(nameBytes(4), "fc-a");
    EXPECT_EQ(nameBytes(3), "fc-");
}

TEST_F(FcBuffersTest, LengthsAboveTheTextsOwnArePadded) {
    EXPECT_EQ(addressBytes(300), wwnText() + zeros(277));
    EXPECT_EQ(nameBytes(1000), "fc-a" + zeros(996));
}

TEST_F(FcBuffersTest, NothingFound) {
    EXPECT_EQ(addressBytes(1, 9), "0");
    EXPECT_EQ(addressBytes(256, 9), kNothing);
    EXPECT_EQ(nameBytes(256, 9), kNothing);
    EXPECT_EQ(nameBytes(300, 9), kNothing + zeros(44));
}

TEST_F(FcBuffersTest, NoLengthLeavesTheBufferAlone) {
    for (const int length : {0, -1, -2147483647 - 1}) {
        char address = '?';
        char name = '?';
        EXPECT_EQ(GetFcAdapterInfoEx(1, 0, 1, &address, length, &name, length), kOk);
        EXPECT_EQ(address, '?');
        EXPECT_EQ(name, '?');
    }
}

TEST_F(FcBuffersTest, NullBuffers) {
    EXPECT_EQ(GetFcAdapterInfoEx(1, 0, 1, nullptr, 256, nullptr, 256), kOk);
    EXPECT_EQ(GetFcAdapterInfoEx(1, 0, 1, nullptr, -1, nullptr, 0), kOk);
}

/// Names are kept up to 128 characters, without a terminator there: what a longer length shows
/// behind them are the characters that stood there before.
TEST_F(FcBuffersTest, LongNames) {
    const std::string zeroCharacters(128, '0');
    setName(std::string(127, 'n'));
    EXPECT_EQ(nameBytes(256), std::string(127, 'n') + zeros(129));
    for (const std::size_t length : {128u, 129u, 255u, 256u}) {
        const std::string name(length, 'n');
        setName(name);
        EXPECT_EQ(nameBytes(256), std::string(128, 'n') + zeroCharacters);
        EXPECT_EQ(nameBytes(128), std::string(128, 'n'));
        EXPECT_EQ(debugTexts().back(), std::wstring(length, L'n'));
    }
}

/// The API's fields of 256 characters may have no terminator.
TEST_F(FcBuffersTest, DeviceNameWithoutTerminator) {
    const std::string device = std::string(255, 'd') + "1";
    library->setAdapters({{"fc-a", {port(device)}, {{0, 1}}}});
    EXPECT_EQ(findFcAdapter(1, 0, 1), (FoundAdapter{kOk, wwnText(), "fc-a"}));
    EXPECT_EQ(countDebugTexts(std::wstring(255, L'd') + L"1"), 1u);
}

}  // namespace
}  // namespace quista::test
