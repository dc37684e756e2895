// The commands of qtxhost: they run host programs against a plug-in library, and show what it offers.
#pragma once

namespace host {

// What main is: takes its arguments and gives the exit status. 2 and a message where what is asked for cannot
// be done.
int commandLine(int argc, char** argv);

}  // namespace host
