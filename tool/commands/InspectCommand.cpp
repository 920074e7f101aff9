#include <filesystem>
#include <memory>

#include "commands/Commands.h"
#include "inspect/RecordFormats.h"
#include "terminal/Print.h"

namespace orbitwalk::tool {

namespace {

struct InspectArguments {
    CommonOptions common;
    std::filesystem::path path;
    bool refined = false;
    bool csv = false;
    bool fixed = false;
};

void inspect(const InspectArguments& arguments) {
    const InspectedRecord inspected = openInspected(arguments.path, arguments.refined);
    if (arguments.csv)
        printOut(recordAsCsv(inspected.record));
    else
        printSummary(arguments.common, recordAsJson(inspected),
                     recordAsText(inspected, arguments.fixed));
}

}  // namespace

void addInspectCommand(CLI::App& app) {
    CLI::App* command = app.add_subcommand("inspect", "Show what a motion record holds");
    const auto arguments = std::make_shared<InspectArguments>();
    command
        ->add_option("RECORD", arguments->path,
                     "What capture wrote, a directory, whose files are checked to belong together; "
                     "or a record file alone (sweep.obw)")
        ->required();
    command->add_flag("--refined", arguments->refined, kRefinedHelp);
    CLI::Option* csv = command->add_flag("--csv", arguments->csv,
                                         "A line a matrix, comma separated; angles in radians");
    CLI::Option* raw = command->add_flag("--raw", arguments->fixed,
                                         "Add each matrix's nine fixed-point numbers to the text");
    addCommonOptions(*command, arguments->common, Writes::Nothing);
    CLI::Option* json = command->get_option("--json");
    json->excludes(csv);
    raw->excludes(json)->excludes(csv);
    command->callback([arguments] { inspect(*arguments); });
}

}  // namespace orbitwalk::tool
