// ipodctl: command-line client of the iPod service.
#include "program.h"

int main(int argc, char** argv)
{
    return ctl::Main(argc, argv);
}
