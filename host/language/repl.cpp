// The interactive mode.
#include <histedit.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <optional>
#include <string>

#include "language/language.h"
#include "runtime/output.h"
#include "runtime/report.h"
#include "runtime/thread.h"

namespace host {

namespace {

const char* prompt = "";
char* currentPrompt(EditLine*) { return const_cast<char*>(prompt); }

// Lines from a terminal, edited, or from a file.
class Lines {
 public:
  Lines() : isTerminal_(isatty(STDIN_FILENO) != 0) {
    if (!isTerminal_) return;
    editor_ = el_init("qtxhost", stdin, stdout, stderr);
    history_ = history_init();
    HistEvent event;
    history(history_, &event, H_SETSIZE, 1000);
    el_set(editor_, EL_PROMPT, &currentPrompt);
    el_set(editor_, EL_EDITOR, "emacs");
    el_set(editor_, EL_HIST, history, history_);
  }
  ~Lines() {
    if (!isTerminal_) return;
    history_end(history_);
    el_end(editor_);
  }
  Lines(const Lines&) = delete;
  Lines& operator=(const Lines&) = delete;

  bool isTerminal() const { return isTerminal_; }

  std::optional<std::string> next(bool continues) {
    std::string line;
    if (!isTerminal_) return std::getline(std::cin, line) ? std::optional(line + "\n") : std::nullopt;
    prompt = continues ? "... " : "> ";
    int length = 0;
    const char* text = el_gets(editor_, &length);
    if (!text || length <= 0) return std::nullopt;
    HistEvent event;
    history(history_, &event, H_ENTER, text);
    return std::string(text, static_cast<std::size_t>(length));
  }

 private:
  bool isTerminal_;
  EditLine* editor_ = nullptr;
  History* history_ = nullptr;
};

constexpr const char* help =
    "Enter a statement to run it, or an expression to see its value.\n"
    "A block such as For … Next is run when it is complete. What is declared stays.\n"
    "  :help  this text\n  :quit  the end (as is the end of the input)\n";

}  // namespace

void repl() {
  const std::string file = "input";
  Session session(file);
  Lines lines;
  if (lines.isTerminal()) print("Type :help for help.\n");
  setUncaughtHandler([](const HostException& exception) { std::fputs(describe(exception).c_str(), stderr); });
  std::string pending;
  while (const std::optional<std::string> line = lines.next(!pending.empty())) {
    if (pending.empty() && line->starts_with(":")) {
      if (line->starts_with(":quit") || line->starts_with(":q\n")) break;
      print(help);
      continue;
    }
    pending += *line;
    try {
      session.run(pending);
      pending.clear();
    } catch (const ProgramError& error) {
      if (error.atEnd) continue;  // the next line may complete it
      flushOutput();
      std::fprintf(stderr, "%s:%d:%d: error: %s\n", file.c_str(), error.position.line, error.position.column,
                   error.what());
      pending.clear();
    } catch (const HostException& exception) {
      flushOutput();
      std::fputs(describe(exception).c_str(), stderr);
      pending.clear();
    } catch (const ProgramEnd& end) {
      flushOutput();
      std::fprintf(stderr, "%s: %s\n", file.c_str(), end.what());
      pending.clear();
    }
    flushOutput();
  }
  joinAll();
}

}  // namespace host
