#include "startUp.h"

int main(int argc, char* argv[])
{
    return StartUp::run(StartUp::Program::Workbench, argc, argv);
}
