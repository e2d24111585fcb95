#include "cli/run.h"

#include <cstdlib>
#include <exception>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/format.h"
#include "cli/json_renderer.h"
#include "cli/text_renderer.h"
#include "cli/watchdog.h"

namespace quista::cli {
namespace {

bool hasColor(const Options& options, const Output& output) {
    if (options.color != ColorChoice::kAuto) return options.color == ColorChoice::kAlways;
    const char* noColor = std::getenv("NO_COLOR");
    const bool isUnwanted = noColor != nullptr && *noColor != '\0';
    return output.takesColor() && !isUnwanted;
}

// Shows the report: the result on standard output, the messages on standard error.
int emit(const Report& report, const Options& options, const Streams& streams) {
    const TextStyle style{.width = streams.out.width(),
                          .hasColor = hasColor(options, streams.out),
                          .hasHeaders = options.hasHeaders};
    const bool written =
        streams.out.write(options.isJson ? renderJson(report) : renderText(report, style));
    streams.err.write(renderMessages(report, hasColor(options, streams.err)));
    if (written) return static_cast<int>(report.exitCode);
    streams.err.write("quistactl: error: the output could not be written\n");
    return static_cast<int>(ExitCode::kFailed);
}

void addFailure(Report& report, const Failure& failure) {
    report.add(Severity::kError, failure.what(), failure.status(), failure.hint());
    report.messages.back().step = failure.step();
    report.exitCode = failure.exitCode();
    report.status = failure.status();
}

class Run {
  public:
    Run(const std::vector<std::string>& arguments, const Streams& streams, const Process& process)
        : arguments_(arguments), streams_(streams), process_(process) {
        report_.arguments = arguments;
        options_.isJson = asksForJson(arguments);
    }

    int execute() {
        try {
            executeCommand();
        } catch (const TimedOut& timedOut) {
            // The watchdog has shown it already.
            return static_cast<int>(timedOut.exitCode());
        } catch (const Failure& failure) {
            addFailure(report_, failure);
        } catch (const std::exception& error) {
            addFailure(report_, Failure(ExitCode::kFailed, DSM_SUCCESS, error.what()));
        }
        return emit(report_, options_, streams_);
    }

  private:
    void executeCommand() {
        CommandLine commandLine;
        Command* command = commandLine.parse(arguments_);
        options_ = commandLine.options();
        options_.isJson |= asksForJson(arguments_);
        if (command == nullptr) {
            report_.plainText = commandLine.text();
            return;
        }
        report_.command = command->name();
        Watchdog watchdog(options_.timeLimit(), [this](const std::string& call) { expire(call); });
        command->execute({options_, process_, watchdog}, report_);
    }

    // On the watchdog's thread, while the command hangs in a call.
    void expire(const std::string& call) {
        Report overdue;
        overdue.command = report_.command;
        overdue.arguments = arguments_;
        addFailure(overdue,
                   Failure(ExitCode::kTimedOut, DSM_SUCCESS,
                           call + " has not returned after " +
                               formatCount(options_.timeoutSeconds, "second"),
                           "WMI or the driver does not answer. --timeout sets another limit."));
        process_.end(emit(overdue, options_, streams_));
    }

    const std::vector<std::string>& arguments_;
    const Streams& streams_;
    const Process& process_;
    Options options_;
    Report report_;
};

}  // namespace

int run(const std::vector<std::string>& arguments, const Streams& streams, const Process& process) {
    return Run(arguments, streams, process).execute();
}

}  // namespace quista::cli
