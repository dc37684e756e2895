// The interactive mode.
#include <histedit.h>
#include <langinfo.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>

#include "language/language.h"
#include "runtime/name.h"
#include "runtime/output.h"
#include "runtime/report.h"
#include "runtime/thread.h"
#include "runtime/waiting.h"

namespace host {

namespace {

// Texts are UTF-8, and a terminal of today shows them, whatever the environment says.
void useUtf8() {
  std::setlocale(LC_CTYPE, "");
  for (const char* fallback : {"C.UTF-8", "UTF-8"}) {  // Linux; macOS
    if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0) std::setlocale(LC_CTYPE, fallback);
  }
}

// Where the lines of earlier sessions are; empty where there is no such place.
std::filesystem::path historyFile() {
  const auto folder = [](const char* variable) -> std::filesystem::path {
    const char* value = std::getenv(variable);
    return value && *value ? value : "";
  };
  std::filesystem::path state = folder("XDG_STATE_HOME");
  if (state.empty() && !folder("HOME").empty()) state = folder("HOME") / ".local/state";
  return state.empty() ? state : state / "qtxhost" / "history";
}

// Lines from a terminal, edited there.
class Editor {
 public:
  explicit Editor(const Session& session)
      : session_(session), history_(history_init()), file_(historyFile()) {
    useUtf8();
    editor_ = el_init("qtxhost", stdin, stdout, stderr);
    HistEvent event;
    history(history_, &event, H_SETSIZE, 1000);
    history(history_, &event, H_SETUNIQUE, 1);
    if (!file_.empty()) history(history_, &event, H_LOAD, file_.c_str());
    el_set(editor_, EL_CLIENTDATA, this);
    el_set(
        editor_, EL_PROMPT, +[](EditLine* editor) { return const_cast<char*>(of(editor).prompt_); });
    el_set(editor_, EL_EDITOR, "emacs");
    el_set(editor_, EL_HIST, history, history_);
    // The narrow form of this copies the names and never gives them back.
    el_wset(
        editor_, EL_ADDFN, L"complete", L"Completes a name",
        +[](EditLine* editor, wint_t) { return of(editor).complete(); });
    el_set(editor_, EL_BIND, "\t", "complete", nullptr);
    // While a line is edited, Ctrl-C is a key like others. No signal is made of any.
    el_set(editor_, EL_SETTY, "-d", "-isig", nullptr);
    el_wset(
        editor_, EL_ADDFN, L"drop", L"Drops the line",
        +[](EditLine* editor, wint_t) { return of(editor).drop(); });
    el_set(editor_, EL_BIND, "^C", "drop", nullptr);
  }
  ~Editor() {
    if (!file_.empty()) {
      std::error_code ignored;
      std::filesystem::create_directories(file_.parent_path(), ignored);
      HistEvent event;
      history(history_, &event, H_SAVE, file_.c_str());
    }
    history_end(history_);
    el_end(editor_);
  }
  Editor(const Editor&) = delete;
  Editor& operator=(const Editor&) = delete;

  bool dropped() const { return dropped_; }  // whether the last line was, by Ctrl-C

  std::optional<std::string> next(bool continues) {
    prompt_ = continues ? "... " : "> ";
    dropped_ = false;
    int length = 0;
    // Before the prompt, which the editor shows first: a Ctrl-C behind it belongs to the line.
    el_set(editor_, EL_PREP_TERM, 1);
    const char* text = el_gets(editor_, &length);
    if (dropped_) return "";
    if (!text || length <= 0) {
      std::putchar('\n');
      return std::nullopt;
    }
    return std::string(text, static_cast<std::size_t>(length));
  }

  void remember(const std::string& entry) {
    HistEvent event;
    if (entry.find_first_not_of(" \t\n") != std::string::npos) {
      history(history_, &event, H_ENTER, entry.substr(0, entry.find_last_not_of('\n') + 1).c_str());
    }
  }

 private:
  static Editor& of(EditLine* editor) {
    void* self = nullptr;
    el_get(editor, EL_CLIENTDATA, &self);
    return *static_cast<Editor*>(self);
  }

  unsigned char drop() {
    dropped_ = true;
    std::fputs("^C\n", stdout);
    return CC_NEWLINE;
  }

  unsigned char complete() {
    const LineInfo* line = el_line(editor_);
    const std::string before(line->buffer, static_cast<std::size_t>(line->cursor - line->buffer));
    const Completions found = session_.completions(before);
    if (found.names.empty()) return CC_REFRESH_BEEP;
    std::string common = found.names[0];
    for (const std::string& each : found.names) {
      std::size_t same = 0;
      while (same < std::min(common.size(), each.size()) && lowered(common[same]) == lowered(each[same]))
        ++same;
      common.resize(same);
    }
    if (common.size() > found.typed || found.names.size() == 1) {
      el_deletestr(editor_, static_cast<int>(found.typed));
      el_insertstr(editor_, common.c_str());
      return CC_REFRESH;
    }
    std::putchar('\n');
    for (const std::string& each : found.names) std::printf("%s  ", each.c_str());
    std::putchar('\n');
    return CC_REDISPLAY;
  }

  const Session& session_;
  EditLine* editor_ = nullptr;
  History* history_;
  std::filesystem::path file_;
  const char* prompt_ = "";
  bool dropped_ = false;
};

// While it lives, Ctrl-C stops what the session runs instead of ending the process.
class StoppedByInterrupt {
 public:
  explicit StoppedByInterrupt(Session& session) {
    running = &session;
    struct sigaction stop = {};
    stop.sa_handler = [](int) { running->stop(); };
    stop.sa_flags = SA_RESTART;
    sigaction(SIGINT, &stop, &before_);
  }
  ~StoppedByInterrupt() { sigaction(SIGINT, &before_, nullptr); }
  StoppedByInterrupt(const StoppedByInterrupt&) = delete;
  StoppedByInterrupt& operator=(const StoppedByInterrupt&) = delete;

 private:
  static inline Session* running = nullptr;
  struct sigaction before_ = {};
};

constexpr const char* help =
    "Enter a statement to run it, or an expression to see its value.\n"
    "A block such as For … Next is run when it is complete. What is declared stays.\n"
    "  help         this text\n"
    "  help NAME    what the documentation says about a class, member, function or word\n"
    "  exit, quit   the end (as is the end of the input)\n"
    "On a terminal Tab completes names, the arrow keys bring back what was entered, and Ctrl-C drops a line "
    "or\n"
    "stops what runs.\n";

std::string_view trimmed(std::string_view line) {
  const std::size_t first = line.find_first_not_of(" \t\r\n");
  return first == std::string_view::npos ? ""
                                         : line.substr(first, line.find_last_not_of(" \t\r\n") - first + 1);
}

class Repl {
 public:
  bool run() {
    std::optional<Editor> editor;
    std::optional<StoppedByInterrupt> stopped;
    if (isatty(STDIN_FILENO) != 0) {
      stopped.emplace(session_);
      editor.emplace(session_);
      print("Type help for help.\n");
    }
    setUncaughtHandler([&](const HostException& exception) { tell(describe(exception)); });
    setDeadlockHandler(
        [&](const std::string& places) { tell(file_ + ": " + Deadlock().what() + "\n" + places); });
    std::string pending;
    while (true) {
      std::optional<std::string> line = editor ? editor->next(!pending.empty()) : nextOfPipe();
      if (!line) break;
      if (editor && editor->dropped()) {
        pending.clear();
        continue;
      }
      if (pending.empty()) {
        if (const std::optional<bool> goesOn = command(trimmed(*line))) {
          if (!*goesOn) break;
          if (editor) editor->remember(*line);
          continue;
        }
      }
      enter(pending, *line, editor ? &*editor : nullptr);
      flushOutput();
    }
    if (!pending.empty()) compile(pending);
    joinAll();
    flushOutput();
    return !failed_;
  }

 private:
  static std::optional<std::string> nextOfPipe() {
    std::string line;
    if (!std::getline(std::cin, line)) return std::nullopt;
    return line + "\n";
  }

  void tell(const std::string& text) {
    failed_ = true;
    flushOutput();
    std::fputs(text.c_str(), stderr);
  }

  // Whether the session goes on after the line, if that is a command.
  std::optional<bool> command(std::string_view line) {
    if (line.starts_with(":")) line.remove_prefix(1);
    const std::size_t end = std::min(line.find_first_of(" \t"), line.size());
    const std::string_view word = line.substr(0, end), rest = trimmed(line.substr(end));
    const bool ends = sameName(word, "exit") || sameName(word, "quit") || sameName(word, "q");
    if (rest.empty() && ends && !session_.knows(word)) return false;
    if (!sameName(word, "help") || session_.knows(word)) return std::nullopt;
    const std::string name = session_.asDocumented(rest);
    const std::string text = rest.empty() ? help : documentationOf(name);
    if (text.empty()) {
      tell(noDocumentationOf(name.empty() ? rest : name) + "\n");
    } else {
      print(text);
      flushOutput();
    }
    return true;
  }

  void enter(std::string& pending, const std::string& line, Editor* editor) {
    const std::string before = pending;
    pending += line;
    switch (compile(pending, editor != nullptr)) {
      case Outcome::unfinished:
        return;
      case Outcome::wrong:
        // Of what was right before, only the last line can be to blame: it is asked for again.
        if (editor) editor->remember(before.empty() ? pending : line);
        pending = editor ? before : "";
        return;
      case Outcome::done:
        if (editor) editor->remember(pending);
        pending.clear();
    }
  }

  enum class Outcome { done, unfinished, wrong };

  // Runs the text. Whoever types it is told at once what is wrong with a block that is not complete; of one
  // from a pipe the rest is read first.
  Outcome compile(const std::string& text, std::optional<bool> isTyped = {}) {
    try {
      session_.run(text);
      const std::string warnings = describe(session_.warnings(), file_, text);
      std::fputs(warnings.c_str(), stderr);
    } catch (const ProgramError& error) {
      if (isTyped && (*isTyped ? error.atEnd : error.isUnfinished)) return Outcome::unfinished;
      std::vector<Problem> problems = error.problems;
      if (isTyped) std::erase_if(problems, [](const Problem& each) { return each.atEnd || each.isWarning; });
      tell(describe(problems, file_, text));
      return Outcome::wrong;
    } catch (const HostException& exception) {
      tell(describe(exception));
    } catch (const OutOfSteps&) {
      tell("\nstopped\n");
    } catch (const Stopped&) {
      tell("\nstopped\n");
    } catch (const Deadlock&) {  // has been told
    } catch (const ProgramEnd& end) {
      tell(file_ + ": " + end.what() + "\n");
    }
    return Outcome::done;
  }

  const std::string file_ = "input";
  Session session_{file_};
  std::atomic<bool> failed_ = false;  // threads tell as well
};

}  // namespace

bool repl() { return Repl().run(); }

}  // namespace host
