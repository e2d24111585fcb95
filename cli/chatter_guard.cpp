#include "cli/chatter_guard.h"

#include <cstdio>
#include <io.h>

namespace quista::cli {
namespace {

constexpr int kOutput = 1;
constexpr int kError = 2;

}  // namespace

ChatterGuard::ChatterGuard() {
    std::fflush(stdout);
    savedOutput_ = _dup(kOutput);
    if (_dup2(kError, kOutput) == 0) return;
    // Without a standard error the chatter has nowhere to go.
    if (std::FILE* nowhere = std::fopen("NUL", "w")) {
        _dup2(_fileno(nowhere), kOutput);
        std::fclose(nowhere);
    }
}

ChatterGuard::~ChatterGuard() {
    std::fflush(stdout);
    if (savedOutput_ == -1) return;
    _dup2(savedOutput_, kOutput);
    _close(savedOutput_);
}

}  // namespace quista::cli
