#include "commands/Program.h"

int main(int argc, char** argv) {
    return orbitwalk::tool::runProgram(argc, argv);
}
