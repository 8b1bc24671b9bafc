#include "cli/call.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "base/numbers.h"

namespace zorvel::cli {
namespace {

const std::array commands = {&metricsCommand,   &summaryCommand,   &rarefactionCommand,
                             &projectCommand,   &diversityCommand, &matrixCommand,
                             &longTableCommand, &recordsCommand,   &importCommand};

// In the order of the enumeration.
constexpr std::array kindNames = {"list", "census", "matrix", "ios"};

constexpr const char* programFooter =
    "Messages go to standard error as FILE:LINE:CELL: MESSAGE.\n"
    "Exit status: 0 for a result, 1 for input or output that cannot be used, 2 for a wrong "
    "call.\n\n"
    "Example: zorvel-cli summary counts.csv --census North\n"
    "Each command explains itself: zorvel-cli COMMAND --help";

FileKind readKind(const std::string& text) {
    const auto* found = std::find(kindNames.begin(), kindNames.end(), text);
    if (found != kindNames.end()) return static_cast<FileKind>(found - kindNames.begin());
    throw CLI::ValidationError("--kind",
                               "'" + text + "' is none of list, census, matrix, ios and table");
}

// Only digits, and a minus sign if there are negative numbers at all; the seed has 64 bits without
// a sign.
template <class Integer>
Integer readWhole(const char* option, const std::string& text, Integer least) {
    Integer value = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, value);
    if (read.ec != std::errc() || read.ptr != end || value < least) {
        throw CLI::ValidationError(option, "'" + text + "' is not a whole number from " +
                                               std::to_string(least) + " to " +
                                               std::to_string(std::numeric_limits<Integer>::max()));
    }
    return value;
}

double readQuota(const std::string& text) {
    const auto value = parseWholeDouble(text);
    if (!value || !std::isfinite(*value)) {
        throw CLI::ValidationError("--quota", "'" + text + "' is not a finite number");
    }
    return *value;
}

// Help and version are options with callbacks, which run before anything is required.
void addCommonOptions(CLI::App& app, Call& call) {
    app.set_help_flag("-h,--help", "Print this help and exit");
    app.set_version_flag("--version", "zorvel-cli " ZORVEL_VERSION, "Print the version and exit");
    app.add_option_function<std::string>(
           "--kind",
           [&call](const std::string& text) {
               if (text == "table") {
                   call.isTable = true;
               } else {
                   call.kind = readKind(text);
               }
           },
           "What a text FILE holds: list (bare counts), census (lines\n"
           "of name,abundance), matrix (censuses by taxa), ios (export\n"
           "of the phone app) or table (any other layout, see Tables);\n"
           "import recognises all but table, for others the default is\n"
           "matrix")
        ->type_name("KIND");
    app.add_option_function<std::string>(
           "--size",
           [&call](const std::string& text) {
               call.size = readWhole<std::int64_t>("--size", text, 1);
           },
           "Specimens, or censuses where sample-based, to rarefy to:\n"
           "at least 1 (default 50)")
        ->type_name("N");
    app.add_option_function<std::string>(
           "--quota", [&call](const std::string& text) { call.quota = readQuota(text); },
           "Coverage for SQS, a number between 0 and 1 (default 0.8;\n"
           "metrics as text always uses 0.8)")
        ->type_name("Q");
    app.add_option_function<std::string>(
           "--seed",
           [&call](const std::string& text) {
               call.seed = readWhole<std::uint64_t>("--seed", text, 0);
           },
           "Seed of the random draws: equal seeds give equal results\n"
           "(0 to 2^64-1)")
        ->type_name("S");
    app.add_flag("--json", call.json, "Write JSON with all digits instead of text");
    app.add_option("--output", call.output, "Write to this file; it is not changed on an error")
        ->type_name("FILE");
}

void addFiles(CLI::App& sub, const Command& command, Call& call) {
    const char* text =
        "The file to read, text or a project; - for text from\n"
        "standard input";
    CLI::Option* files = sub.add_option("FILE", call.files, text)->required()->type_name("");
    if (!command.import) {
        files->expected(1)->allow_extra_args(false);
        return;
    }
    sub.add_option("--into", call.into,
                   "The project to add the censuses to; it is created if it\n"
                   "does not exist. If any FILE cannot be used, nothing is\n"
                   "stored")
        ->type_name("PROJECT REQUIRED");
    sub.add_flag("--table", call.isTable,
                 "The FILEs are tables of any layout (the same as\n"
                 "--kind table)");
    sub.add_flag("--preview", call.table.preview,
                 "Only show how each table would be read, with --json as\n"
                 "JSON; store nothing, --into is not needed");
}

// The common options that the command refuses: its help does not list them.
std::vector<const char*> refusedOptions(const Command& command) {
    if (command.import) return {"--size", "--quota", "--seed", "--json", "--output"};
    if (command.refusesJson) return {"--json"};
    if (command.takesDiversity) return {"--size", "--quota"};
    return {};
}

void addCommand(CLI::App& app, const Command& command, Call& call) {
    CLI::App* sub = app.add_subcommand(command.name, command.description)->group("Commands");
    addFiles(*sub, command, call);
    CLI::Option* census = nullptr;
    if (command.takesCensus) {
        census = sub->add_option("--census", call.census,
                                 command.takesDiversity
                                     ? "Only this census, the first of this name (default: each\n"
                                       "census of the file)"
                                     : "The census to take, the first of this name\n"
                                       "(default: the first of the file)")
                     ->type_name("NAME");
    }
    if (command.takesSamples) {
        sub->add_flag("--samples", call.samples,
                      command.takesDiversity ? "Over the censuses: presence and absence of species"
                                             : "Rarefy over the censuses (at least five)")
            ->excludes(census);
    }
    if (command.takesDiversity) {
        addDiversityOptions(*sub, call.diversity);
        sub->get_option("--pooled")->excludes(census)->excludes("--samples");
    }
    addCommonOptions(*sub, call);
    for (const char* option : refusedOptions(command)) sub->get_option(option)->group("");
    addTableOptions(*sub, call.table);
    sub->footer(std::string("Example: zorvel-cli ") + command.example);
    sub->callback([&call, &command] { call.command = &command; });
}

// A common option may be before or after the command, but only once.
void checkGivenOnce(const CLI::App& app, const CLI::App& sub) {
    for (const char* name : {"--kind", "--size", "--quota", "--seed", "--json", "--output"}) {
        if (app.count(name) + sub.count(name) > 1) {
            throw CLI::ValidationError(name, "given more than once");
        }
    }
}

void checkFileName(const char* option, const std::string& name) {
    if (name.empty()) throw CLI::ValidationError(option, "the name of the file is empty");
}

void checkImport(const CLI::App& sub, const Call& call) {
    if (call.table.preview && !call.isTable) {
        throw CLI::ValidationError("--preview", "is for tables: give --table");
    }
    if (!call.table.preview) {
        if (sub.count("--into") == 0) throw CLI::RequiredError("--into");
        checkFileName("--into", call.into);
    }
    if (call.into == "-") {
        throw CLI::ValidationError("--into", "a project is a file, not standard output");
    }
    if (std::count(call.files.begin(), call.files.end(), "-") > 1) {
        throw CLI::ValidationError("FILE", "standard input can be read only once");
    }
}

const char* whyRefused(const Command& command) {
    if (command.import) return " writes no result";
    return command.refusesJson ? " is written as text only" : " does not use it";
}

void checkCall(const CLI::App& app, const Call& call) {
    const CLI::App& sub = *app.get_subcommand(call.command->name);
    checkGivenOnce(app, sub);
    for (const char* option : refusedOptions(*call.command)) {
        if (app.count(option) + sub.count(option) == 0) continue;
        if (call.table.preview && std::string_view(option) == "--json") continue;
        throw CLI::ValidationError(option,
                                   std::string(call.command->name) + whyRefused(*call.command));
    }
    for (const std::string& file : call.files) checkFileName("FILE", file);
    if (call.output) checkFileName("--output", *call.output);
    if (call.isTable && call.kind) {
        throw CLI::ValidationError("--table", "and --kind exclude each other");
    }
    if (!call.isTable && !call.table.given.empty()) {
        throw CLI::ValidationError(call.table.given.front(), "is for tables: give --kind table");
    }
    if (call.command->import) checkImport(sub, call);
}

Reply helpReply(const CLI::App& app) {
    const auto subs = app.get_subcommands();
    const CLI::App& asked = subs.empty() ? app : *subs.front();
    std::string text = asked.help(subs.empty() ? "" : "zorvel-cli");
    // The group of options without a name, which is not shown, leaves an empty line.
    if (const auto gap = text.find("\n\n\n"); gap != std::string::npos) text.erase(gap, 1);
    text.erase(text.find_last_not_of('\n') + 1);
    return {ExitCode::success, text + "\n", {}};
}

std::string reasonOf(const CLI::App& app, const CLI::ParseError& error) {
    if (!app.get_subcommands().empty()) return error.what();
    const std::vector<std::string> unknown = app.remaining();
    if (unknown.empty()) return error.get_name() == "RequiredError" ? "no command" : error.what();
    return "there is no " + std::string(unknown.front().starts_with('-') ? "option" : "command") +
           " '" + unknown.front() + "'";
}

Reply errorReply(const CLI::App& app, const CLI::ParseError& error) {
    const auto subs = app.get_subcommands();
    const std::string help = subs.empty() ? "" : " " + subs.front()->get_name();
    return {ExitCode::wrongCall, "zorvel-cli: " + reasonOf(app, error),
            "Try: zorvel-cli" + help + " --help"};
}

}  // namespace

const char* kindName(FileKind kind) {
    return kindNames[static_cast<std::size_t>(kind)];
}

std::variant<Call, Reply> readCall(int argc, const char* const* argv) {
    Call call;
    CLI::App app("Diversity of biological samples, from counts in text files and projects",
                 "zorvel-cli");
    addCommonOptions(app, call);
    for (const Command* command : commands) addCommand(app, *command, call);
    app.require_subcommand(1);
    app.get_formatter()->label("SUBCOMMAND", "COMMAND FILE");
    app.footer(programFooter);
    try {
        app.parse(argc, argv);
        checkCall(app, call);
    } catch (const CLI::CallForVersion& version) {
        return Reply{ExitCode::success, std::string(version.what()) + "\n", {}};
    } catch (const CLI::CallForHelp&) {
        return helpReply(app);
    } catch (const CLI::ParseError& error) {
        return errorReply(app, error);
    }
    return call;
}

}  // namespace zorvel::cli
