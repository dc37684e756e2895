// What is made from the command line's own description: the manual page, and the completion of shells.
#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace host {

// In the language of man(1), for section 1.
std::string manualPage(const CLI::App& app, const std::string& version);

// The shells that `completion` knows.
inline const std::vector<std::string> completedShells = {"bash", "fish", "zsh"};

// A script for that shell: subcommands, options, the values of options that have a list of them, and files.
std::string completion(const CLI::App& app, const std::string& shell);

}  // namespace host
