#include <memory>

#include "commands/Commands.h"
#include "inspect/RecordFormats.h"
#include "sweep/Sweep.h"
#include "terminal/Print.h"

namespace orbitwalk::tool {

namespace {

struct InspectOptions {
    std::string path;
    bool json = false;
    bool csv = false;
    bool fixed = false;
};

void inspect(const InspectOptions& options) {
    const RecordReader record = readRecordFile(options.path);
    const std::string text = options.json  ? recordAsJson(record)
                             : options.csv ? recordAsCsv(record)
                                           : recordAsText(record, options.fixed);
    printOut(text);
}

}  // namespace

void addInspectCommand(CLI::App& app) {
    CLI::App* command = app.add_subcommand("inspect", "Show what a motion record holds");
    const auto options = std::make_shared<InspectOptions>();
    command->add_option("RECORD", options->path, "Record written by a capture (sweep.obw)")
        ->required();
    CLI::Option* json = command->add_flag("--json", options->json, "One JSON object");
    CLI::Option* csv = command->add_flag("--csv", options->csv, "A line a matrix, comma separated");
    CLI::Option* raw = command->add_flag("--raw", options->fixed,
                                         "Add each matrix's nine fixed-point numbers to the text");
    json->excludes(csv);
    raw->excludes(json)->excludes(csv);
    command->callback([options] { inspect(*options); });
}

}  // namespace orbitwalk::tool
