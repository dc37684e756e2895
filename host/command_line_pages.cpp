// Walks through subcommands and options.
#include "command_line_pages.h"

#include <algorithm>
#include <sstream>

namespace host {
namespace {

std::vector<const CLI::App*> shownCommands(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App* each) { return !each->get_group().empty(); });
}
std::vector<const CLI::Option*> shownOptions(const CLI::App& app) {
  return app.get_options([](const CLI::Option* each) { return !each->get_group().empty(); });
}

// "-h" and "--help", as they are typed.
std::vector<std::string> spellings(const CLI::Option& option) {
  std::vector<std::string> all;
  for (const std::string& name : option.get_snames()) all.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) all.push_back("--" + name);
  return all;
}

// What stands for the option's value, such as "TEXT"; empty where it takes none.
std::string valueName(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  return type.substr(0, type.find(':'));
}

// The values of an option that has a list of them: its type's name ends with "{one,two}".
std::vector<std::string> valuesOf(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  const std::size_t open = type.find('{'), close = type.find('}');
  if (open == std::string::npos || close == std::string::npos) return {};
  std::vector<std::string> values;
  std::istringstream list(type.substr(open + 1, close - open - 1));
  for (std::string value; std::getline(list, value, ',');) values.push_back(value);
  return values;
}

// Text in which no character means anything to the formatter.
std::string plain(const std::string& text) {
  std::string out;
  bool startsLine = true;
  for (const char c : text) {
    if (startsLine && (c == '.' || c == '\'')) out += "\\&";
    if (c == '\\') {
      out += "\\e";
    } else if (c == '-') {
      out += "\\-";
    } else {
      out += c;
    }
    startsLine = c == '\n';
  }
  return out;
}
std::string bold(const std::string& text) { return "\\fB" + plain(text) + "\\fR"; }
std::string italic(const std::string& text) { return "\\fI" + plain(text) + "\\fR"; }

std::string joined(const std::vector<std::string>& words, const std::string& between) {
  std::string out;
  for (const std::string& word : words) out += (out.empty() ? "" : between) + word;
  return out;
}

void describeOptions(std::ostream& out, const CLI::App& app) {
  for (const CLI::Option* option : shownOptions(app)) {
    out << ".TP\n";
    if (option->get_positional()) {
      out << italic(option->get_name()) << "\n";
    } else {
      std::vector<std::string> names = spellings(*option);
      for (std::string& name : names) name = bold(name);
      out << joined(names, ", ");
      const std::vector<std::string> values = valuesOf(*option);
      if (!values.empty()) {
        out << " " << joined(values, "|");
      } else if (!valueName(*option).empty()) {
        out << " " << italic(valueName(*option));
      }
      out << "\n";
    }
    out << plain(option->get_description());
    if (!option->get_default_str().empty()) out << " (default: " << plain(option->get_default_str()) << ")";
    out << "\n";
  }
}

// Blocks of lines that begin with "Title:".
void describeFooter(std::ostream& out, const std::string& footer) {
  std::istringstream lines(footer);
  bool inList = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.empty()) continue;
    if (line.front() != ' ') {
      if (inList) out << ".fi\n";
      std::string title = line.substr(0, line.find(':'));
      std::transform(title.begin(), title.end(), title.begin(),
                     [](unsigned char c) { return std::toupper(c); });
      out << ".SH " << title << "\n.nf\n";
      inList = true;
    } else {
      out << plain(line.substr(line.find_first_not_of(' '))) << "\n";
    }
  }
  if (inList) out << ".fi\n";
}

// What a shell proposes in one place of the command line.
struct Proposals {
  std::string command;  // empty before there is one
  std::vector<std::string> options;
  std::vector<std::pair<std::string, std::vector<std::string>>> values;  // of options that have a list
  std::vector<std::string> words;  // where no option is meant; none: files
};
Proposals proposalsOf(const CLI::App& app, const std::string& command) {
  Proposals all{command, {}, {}, {}};
  for (const CLI::Option* option : shownOptions(app)) {
    if (option->get_positional()) all.words = valuesOf(*option);
    for (const std::string& name : spellings(*option)) {
      all.options.push_back(name);
      if (const auto values = valuesOf(*option); !values.empty()) all.values.emplace_back(name, values);
    }
  }
  return all;
}

// A word of a script in which the shell sees nothing special.
std::string inQuotes(const std::string& text) {
  std::string out = "'";
  for (const char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + "'";
}

std::string forBash(const CLI::App& app) {
  std::ostringstream out;
  const std::string& name = app.get_name();
  std::vector<std::string> commands;
  for (const CLI::App* each : shownCommands(app)) commands.push_back(each->get_name());
  std::vector<Proposals> places = {proposalsOf(app, "")};
  places.front().words = commands;
  for (const CLI::App* each : shownCommands(app)) places.push_back(proposalsOf(*each, each->get_name()));

  out << "_" << name << "() {\n"
      << "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command= each\n"
      << "  for each in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
      << "    case $each in " << joined(commands, " | ") << ") command=$each; break ;; esac\n"
      << "  done\n"
      << "  COMPREPLY=()\n"
      << "  case $command:$before in\n";
  for (const Proposals& place : places) {
    for (const auto& [option, values] : place.values) {
      out << "    " << place.command << ":" << option << ") COMPREPLY=($(compgen -W "
          << inQuotes(joined(values, " ")) << " -- \"$word\")); return ;;\n";
    }
  }
  out << "  esac\n"
      << "  case $command:$word in\n";
  for (const Proposals& place : places) {
    out << "    " << place.command << ":-*) COMPREPLY=($(compgen -W " << inQuotes(joined(place.options, " "))
        << " -- \"$word\")) ;;\n";
    if (place.words.empty()) continue;
    out << "    " << place.command << ":*) COMPREPLY=($(compgen -W " << inQuotes(joined(place.words, " "))
        << " -- \"$word\")) ;;\n";
  }
  out << "    *) COMPREPLY=($(compgen -f -- \"$word\")) ;;\n"
      << "  esac\n"
      << "}\n"
      << "complete -o filenames -F _" << name << " " << name << "\n";
  return out.str();
}

std::string forFish(const CLI::App& app) {
  std::ostringstream out;
  const std::string command = "complete -c " + app.get_name();
  const auto addOptions = [&](const CLI::App& of, const std::string& where) {
    for (const CLI::Option* option : shownOptions(of)) {
      const std::vector<std::string> values = valuesOf(*option);
      if (option->get_positional()) {
        if (!values.empty()) out << command << where << " -f -a " << inQuotes(joined(values, " ")) << "\n";
        continue;
      }
      out << command << where;
      for (const std::string& name : option->get_snames()) out << " -s " << name;
      for (const std::string& name : option->get_lnames()) out << " -l " << name;
      if (!values.empty()) {
        out << " -x -a " << inQuotes(joined(values, " "));
      } else if (!valueName(*option).empty()) {
        out << " -r";
      }
      out << " -d " << inQuotes(option->get_description()) << "\n";
    }
  };
  addOptions(app, " -n __fish_use_subcommand");
  for (const CLI::App* each : shownCommands(app)) {
    out << command << " -n __fish_use_subcommand -f -a " << each->get_name() << " -d "
        << inQuotes(each->get_description()) << "\n";
    addOptions(*each, " -n '__fish_seen_subcommand_from " + each->get_name() + "'");
  }
  return out.str();
}

// In brackets and after colons, zsh wants these marked.
std::string forBrackets(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == '[' || c == ']' || c == ':' || c == '\\') out += '\\';
    out += c;
  }
  return out;
}

std::string forZsh(const CLI::App& app) {
  std::ostringstream out;
  const auto addOptions = [&](const CLI::App& of, const std::string& indent) {
    for (const CLI::Option* option : shownOptions(of)) {
      if (option->get_positional()) continue;
      const std::vector<std::string> values = valuesOf(*option);
      for (const std::string& name : spellings(*option)) {
        std::string spec = "*" + name + "[" + forBrackets(option->get_description()) + "]";
        if (!values.empty()) {
          spec += ":value:(" + joined(values, " ") + ")";
        } else if (!valueName(*option).empty()) {
          spec += ":value:_files";
        }
        out << indent << inQuotes(spec) << " \\\n";
      }
    }
  };
  out << "#compdef " << app.get_name() << "\n"
      << "local -a commands=(\n";
  for (const CLI::App* each : shownCommands(app)) {
    out << "  " << inQuotes(each->get_name() + ":" + forBrackets(each->get_description())) << "\n";
  }
  out << ")\n"
      << "_arguments -C \\\n";
  addOptions(app, "  ");
  out << "  '1:command:{_describe command commands}' \\\n"
      << "  '*::argument:->arguments'\n"
      << "[[ $state == arguments ]] || return\n"
      << "case $words[1] in\n";
  for (const CLI::App* each : shownCommands(app)) {
    out << "  " << each->get_name() << ")\n    _arguments \\\n";
    addOptions(*each, "      ");
    const std::vector<std::string> words = proposalsOf(*each, "").words;
    out << "      '*:" << (words.empty() ? "file:_files" : "word:(" + joined(words, " ") + ")") << "' ;;\n";
  }
  out << "esac\n";
  return out.str();
}

}  // namespace

std::string manualPage(const CLI::App& app, const std::string& version) {
  std::ostringstream out;
  std::string title = app.get_name();
  std::transform(title.begin(), title.end(), title.begin(), [](unsigned char c) { return std::toupper(c); });
  out << ".TH " << title << " 1 \"\" \"" << title << " " << version << "\" \"User Commands\"\n"
      << ".SH NAME\n"
      << app.get_name() << " \\- " << plain(app.get_description()) << "\n"
      << ".SH SYNOPSIS\n";
  for (const CLI::App* each : shownCommands(app)) {
    out << ".B " << app.get_name() << " " << each->get_name() << "\n[\\fIOPTIONS\\fR]";
    for (const CLI::Option* option : shownOptions(*each)) {
      if (!option->get_positional()) continue;
      const std::string more = option->get_items_expected_max() > 1 ? " ..." : "";
      const std::string word = italic(option->get_name()) + more;
      out << " " << (option->get_required() ? word : "[" + word + "]");
    }
    out << "\n.br\n";
  }
  out << ".SH OPTIONS\n";
  describeOptions(out, app);
  out << ".SH COMMANDS\n";
  for (const CLI::App* each : shownCommands(app)) {
    out << ".SS " << each->get_name() << "\n" << plain(each->get_description()) << ".\n";
    describeOptions(out, *each);
  }
  describeFooter(out, app.get_footer());
  return out.str();
}

std::string completion(const CLI::App& app, const std::string& shell) {
  if (shell == "bash") return forBash(app);
  if (shell == "fish") return forFish(app);
  return forZsh(app);
}

}  // namespace host
