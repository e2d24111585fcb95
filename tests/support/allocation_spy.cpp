#include "tests/support/allocation_spy.h"

#include <windows.h>

#include <objbase.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>

#include "tests/support/guarded_buffer.h"

namespace quista::test {

// COM interfaces have no virtual destructor; the spy is deleted as what it is.
#ifdef __GNUC__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// Every block that the spy sees gets a small block of the system's as its handle, so that a block
/// can lie wherever the test wants it.
class AllocationSpy::Spy final : public IMallocSpy {
  public:
    struct Block {
        std::size_t size = 0;
        std::size_t number = 0;  ///< in order of allocation
        void* actual = nullptr;  ///< what the system knows the block by
        void* region = nullptr;  ///< pages of a guarded block
    };
    struct Failure {
        std::size_t size;
        unsigned occurrence;
        unsigned count;
    };

    std::size_t guardMinimum = 1;
    std::size_t guardMaximum = 0;
    std::optional<Failure> failure;
    std::optional<unsigned char> fill;
    std::map<std::size_t, unsigned> requests;
    std::map<void*, Block> blocks;
    std::size_t allocations = 0;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        const bool known = iid == IID_IUnknown || iid == IID_IMallocSpy;
        *object = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    SIZE_T STDMETHODCALLTYPE PreAlloc(SIZE_T size) override {
        requested_ = size;
        return size;
    }
    void* STDMETHODCALLTYPE PostAlloc(void* actual) override {
        return actual == nullptr ? nullptr : place(actual, requested_);
    }

    void* STDMETHODCALLTYPE PreFree(void* data, BOOL spied) override {
        return spied ? forget(data) : data;
    }
    void STDMETHODCALLTYPE PostFree(BOOL) override {}

    SIZE_T STDMETHODCALLTYPE PreRealloc(void* data, SIZE_T size, void** actual,
                                        BOOL spied) override {
        requested_ = size;
        *actual = spied ? forget(data) : data;
        return size;
    }
    void* STDMETHODCALLTYPE PostRealloc(void* actual, BOOL) override {
        // A guarded block would lose its contents here; the guarded sizes are never reallocated.
        if (actual == nullptr) return nullptr;
        remember(actual, {requested_, ++allocations, actual, nullptr});
        return actual;
    }

    void* STDMETHODCALLTYPE PreGetSize(void* data, BOOL spied) override {
        return spied ? actualOf(data) : data;
    }
    SIZE_T STDMETHODCALLTYPE PostGetSize(SIZE_T size, BOOL) override { return size; }
    void* STDMETHODCALLTYPE PreDidAlloc(void* data, BOOL spied) override {
        return spied ? actualOf(data) : data;
    }
    int STDMETHODCALLTYPE PostDidAlloc(void*, BOOL, int result) override { return result; }
    void STDMETHODCALLTYPE PreHeapMinimize() override {}
    void STDMETHODCALLTYPE PostHeapMinimize() override {}

  private:
    void* place(void* actual, std::size_t size) {
        const unsigned request = ++requests[size];
        if (mustFail(size, request)) return nullptr;
        Block block{size, ++allocations, actual, nullptr};
        void* data = actual;
        if (size >= guardMinimum && size <= guardMaximum) {
            const GuardedRegion guarded = allocateGuarded(size);
            block.region = guarded.region;
            if (guarded.data != nullptr) data = guarded.data;
        }
        if (fill) std::memset(data, *fill, size);
        remember(data, block);
        return data;
    }

    bool mustFail(std::size_t size, unsigned request) const {
        if (!failure || failure->size != size || request < failure->occurrence) return false;
        return failure->count == 0 || request < failure->occurrence + failure->count;
    }

    void remember(void* data, const Block& block) { blocks[data] = block; }

    void* forget(void* data) {
        const auto found = blocks.find(data);
        if (found == blocks.end()) return data;
        const Block block = found->second;
        freeGuarded(block.region);
        blocks.erase(found);
        return block.actual;
    }

    void* actualOf(void* data) const {
        const auto found = blocks.find(data);
        return found == blocks.end() ? data : found->second.actual;
    }

    std::size_t requested_ = 0;
};

#ifdef __GNUC__
#pragma GCC diagnostic pop
#endif

namespace {

/// The text of a block laid out as a BSTR: four bytes, the text's length in bytes, the text.
std::optional<std::wstring> textIn(const void* data, std::size_t size) {
    constexpr std::size_t kHeader = 8;
    if (size < kHeader + sizeof(wchar_t)) return std::nullopt;
    DWORD length = 0;
    std::memcpy(&length, static_cast<const char*>(data) + 4, sizeof length);
    const std::size_t room = size - kHeader - sizeof(wchar_t);
    // The system rounds such blocks up, by less than one step of 16 bytes.
    if (length > room || room - length >= 16 || length % sizeof(wchar_t) != 0) return std::nullopt;
    std::wstring text(length / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), static_cast<const char*>(data) + kHeader, length);
    return text;
}

}  // namespace

AllocationSpy::AllocationSpy() : spy_(std::make_unique<Spy>()) {
    CoRegisterMallocSpy(spy_.get());
}

AllocationSpy::~AllocationSpy() = default;

AllocationSpy& AllocationSpy::instance() {
    // Never destroyed: the system calls the spy until the process ends.
    static AllocationSpy* const spy = new AllocationSpy;
    return *spy;
}

void AllocationSpy::guardBlocks(std::size_t minimum, std::size_t maximum) {
    spy_->guardMinimum = minimum;
    spy_->guardMaximum = maximum;
}

void AllocationSpy::failBlocks(std::size_t size, unsigned occurrence, unsigned count) {
    spy_->requests.clear();
    spy_->failure = Spy::Failure{size, occurrence, count};
}

void AllocationSpy::fillBlocks(unsigned char value) {
    spy_->fill = value;
}

void AllocationSpy::stop() {
    spy_->guardMinimum = 1;
    spy_->guardMaximum = 0;
    spy_->failure.reset();
    spy_->fill.reset();
    spy_->requests.clear();
}

unsigned AllocationSpy::requests(std::size_t size) const {
    const auto found = spy_->requests.find(size);
    return found == spy_->requests.end() ? 0 : found->second;
}

std::size_t AllocationSpy::mark() const {
    return spy_->allocations;
}

std::vector<std::size_t> AllocationSpy::survivorsSince(std::size_t mark) const {
    std::map<std::size_t, std::size_t> sizes;
    for (const auto& [data, block] : spy_->blocks) {
        if (block.number > mark) sizes[block.number] = block.size;
    }
    std::vector<std::size_t> result;
    for (const auto& [number, size] : sizes) result.push_back(size);
    return result;
}

std::vector<std::wstring> AllocationSpy::survivingTextsSince(std::size_t mark) const {
    std::map<std::size_t, std::wstring> texts;
    for (const auto& [data, block] : spy_->blocks) {
        if (block.number <= mark) continue;
        if (const auto text = textIn(data, block.size)) texts[block.number] = *text;
    }
    std::vector<std::wstring> result;
    for (const auto& [number, text] : texts) result.push_back(text);
    return result;
}

}  // namespace quista::test
