// qtxhost, the stand-in host.
#include "command_line.h"

int main(int argc, char** argv) { return host::commandLine(argc, argv); }
