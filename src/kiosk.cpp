// The workbench of a machine that does nothing else: fills the screen, opens its project and runs all tasks.
#include "startUp.h"

int main(int argc, char* argv[])
{
    return StartUp::run(StartUp::Program::Kiosk, argc, argv);
}
