#include "commands/Commands.h"

namespace orbitwalk::tool {

void addCaptureCommand(CLI::App&) {}

}  // namespace orbitwalk::tool
