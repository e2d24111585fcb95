// quistactl.exe: the command-line tool. The work is in run().
#include <windows.h>

#include "cli/handle_output.h"
#include "cli/run.h"
#include "cli/text.h"

int wmain(int count, wchar_t** values) {
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i) arguments.push_back(quista::cli::toUtf8(values[i]));
    quista::cli::HandleOutput out(STD_OUTPUT_HANDLE);
    quista::cli::HandleOutput err(STD_ERROR_HANDLE);
    return quista::cli::run(arguments, {out, err});
}
