#include "cli/chatter_guard.h"

#include <cstdio>
#include <io.h>

namespace quista::cli {
namespace {

constexpr int kOutput = 1;
constexpr int kError = 2;

int saveOutput() {
    std::fflush(stdout);
    return _dup(kOutput);
}

void dropOutput() {
    if (std::FILE* nowhere = std::fopen("NUL", "w")) {
        _dup2(_fileno(nowhere), kOutput);
        std::fclose(nowhere);
    }
}

void restoreOutput(int saved) {
    std::fflush(stdout);
    if (saved == -1) return;
    _dup2(saved, kOutput);
    _close(saved);
}

}  // namespace

ChatterGuard::ChatterGuard() : savedOutput_(saveOutput()) {
    // Without a standard error the chatter has nowhere to go.
    if (_dup2(kError, kOutput) != 0) dropOutput();
}

ChatterGuard::~ChatterGuard() {
    restoreOutput(savedOutput_);
}

MutedChatter::MutedChatter() : savedOutput_(saveOutput()) {
    dropOutput();
}

MutedChatter::~MutedChatter() {
    restoreOutput(savedOutput_);
}

}  // namespace quista::cli
