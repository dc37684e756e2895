// What is wrong with a program: with its text, and where; and that it takes too long.
#pragma once

#include <exception>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "runtime/throwing.h"

namespace host {

struct Position {
  int line = 0, column = 0;  // from 1; columns count bytes
};

struct Problem {
  Position position;
  std::string message;
  bool isWarning = false;  // the program runs all the same
  bool atEnd = false;      // something is missing, and more lines may bring it
};

// A program that cannot be run. what() is the message of the first problem alone.
class ProgramError : public std::runtime_error {
 public:
  ProgramError(Position where, const std::string& message, bool endsTooEarly = false)
      : ProgramError({{where, message, false, endsTooEarly}}) {}
  // Of everything that was found: not empty, in the order of the text, warnings among it.
  explicit ProgramError(std::vector<Problem> all);
  std::vector<Problem> problems;
  Position position;  // of the first that is no warning
  bool atEnd;         // the text is right as far as it goes; more lines may complete it
  bool isUnfinished;  // whatever else is wrong, more lines belong to it
};

// A name that nothing is known of, which is reported once however often it is used.
class UnknownName final : public ProgramError {
 public:
  UnknownName(Position where, std::string unknown, const std::string& message)
      : ProgramError(where, message), name(std::move(unknown)) {}
  std::string name;
};

// What is wrong with the use of a name, and not worth saying where the name's own declaration is wrong.
class WrongUse final : public ProgramError {
 public:
  WrongUse(Position where, std::string used, const std::string& message)
      : ProgramError(where, message), name(std::move(used)) {}
  std::string name;
};

// What could not be read, and was reported when it was.
class FollowsFromAnother final : public ProgramError {
 public:
  explicit FollowsFromAnother(Position where)
      : ProgramError(where, "this follows from a problem that was found before") {}
};

// Ends a program that has taken all the steps that it may.
class OutOfSteps final : public ProgramEnd {
 public:
  const char* what() const noexcept override { return "the program has taken all the steps that it may"; }
};

[[noreturn]] inline void fail(Position position, const std::string& message) {
  throw ProgramError(position, message);
}

// Something that the program may well mean, but whose effect surprises. Goes to the Problems of this thread.
void warn(Position position, const std::string& message);

// Collects what is wrong with one text, so that what stands after an error is looked at too.
class Problems {
 public:
  Problems();
  ~Problems();
  Problems(const Problems&) = delete;
  Problems& operator=(const Problems&) = delete;

  // Runs the action and keeps the ProgramError that it throws; whether there was none.
  template <typename Action>
  bool attempt(Action action) {
    try {
      action();
      return true;
    } catch (const FollowsFromAnother&) {
    } catch (const UnknownName& error) {
      if (expectUnknown(error.name)) add(error);
    } catch (const WrongUse& error) {
      if (!isExpected(error.name)) add(error);
    } catch (const ProgramError& error) {
      add(error);
    }
    return false;
  }

  // Where something is wrong with a line, the later passes say no more of it.
  void add(const ProgramError& error);
  // That something further down is missing, which says nothing of the line itself.
  void addMissing(Position position, const std::string& message, bool atEnd);
  void addWarning(Position position, const std::string& message);
  void startPass() { ++pass_; }
  // The name is not declared because of a problem that was found; whether this was not known.
  bool expectUnknown(const std::string& name);
  bool isExpected(const std::string& name) const;

  // Throws a ProgramError of all that was found, if anything but warnings.
  void throwIfAny() const;
  std::vector<Problem> found() const;  // in the order of the text

 private:
  void keep(Problem problem);

  Problems* outer_;
  int pass_ = 0;
  bool anyError_ = false;
  std::vector<Problem> found_;
  std::set<std::tuple<int, int, std::string>> said_;  // what of them and where, so that nothing is said twice
  std::map<int, int> passOfLine_;                     // in which something was first wrong with it
  std::set<std::string> unknown_ = {""};              // that of a name that was not read among them
};

}  // namespace host
