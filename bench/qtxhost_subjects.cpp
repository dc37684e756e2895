// The stand-in host: beside Lua, in a loop and in calls of library functions; and what threads cost it,
// beside as many processes of one thread, which would cost the same if threads never waited for each other.
// Each time is that of processes of their own: their user time, per turn of their loops.
#include "process.h"
#include "subjects.h"

namespace bench {
namespace {

std::string replaced(std::string text, const std::string& mark, const std::string& by) {
  for (std::size_t at; (at = text.find(mark)) != std::string::npos;) text.replace(at, mark.size(), by);
  return text;
}

// The programs are to print something, lest nobody notices if they do something else. # is for the number of
// turns.
Contender program(std::string name, std::vector<std::string> command, const std::string& text, long turns,
                  int processes = 1) {
  if (quick) turns = 1000;
  const auto once = [=](long count) {
    return run(command, replaced(text, "#", std::to_string(count)), processes);
  };
  return {std::move(name), [=](std::size_t) { return once(turns).userSeconds / static_cast<double>(turns); },
          [=](std::size_t) { return once(100).output; }, 1};
}
const std::vector<std::string> qtxhost = {QTX_HOST_PROGRAM, "run", "-"};

Subject besideLua(const char* name, const char* text, const char* lua, long turns) {
  return {.name = name,
          .contenders =
              [=] {
                return std::vector{program("own", qtxhost, text, turns),
                                   program("Lua", {QTX_LUA_PROGRAM}, lua, turns)};
              },
          .same = within(1e-9),
          .fewSamples = true};
}

// In what a thread declares and does, @ stands for its number.
std::string threadsDoing(int threads, const std::string& declaration, const std::string& statement) {
  const bool each = declaration.find('@') != std::string::npos;
  std::string program, start, join;
  for (int i = 1; i <= threads; ++i) {
    const auto numbered = [&](const std::string& text) { return replaced(text, "@", std::to_string(i)); };
    if (each || i == 1) program += numbered(declaration) + "\n";
    program +=
        numbered("Sub Work@()\n  Dim n As Integer\n  For i As Integer = 1 To #\n    " + statement +
                 "\n  Next\nEnd Sub\nDim thread@ As New Thread\nAddHandler thread@.Run, AddressOf Work@\n");
    start += numbered("thread@.Start\n");
    join += numbered("thread@.Join\n");
  }
  return program + start + join + "Print \"done\"\n";
}
Subject inThreads(const char* name, const char* declaration, const char* statement, int threads) {
  return {.name = name,
          .contenders =
              [=] {
                constexpr long turns = 500'000;
                return std::vector{
                    program("own", qtxhost, threadsDoing(threads, declaration, statement), turns),
                    program("processes", qtxhost, threadsDoing(1, declaration, statement), turns, threads)};
              },
          .threads = threads,
          .fewSamples = true};
}

}  // namespace

std::vector<Subject> qtxhostSubjects() {
  std::vector<Subject> all = {
      besideLua("qtxhost, a = a + i in a loop",
                "Dim a As Integer\nFor i As Integer = 1 To #\n  a = a + i\nNext\nPrint a\n",
                "local a = 0\nfor i = 1, # do a = a + i end\nprint(a)\n", 20'000'000),
      besideLua("qtxhost, a call of FloorQTX in a loop",
                "Dim x As Double\nFor i As Integer = 1 To #\n  x = FloorQTX(2.5)\nNext\nPrint x\n",
                "local f, x = Floor, 0\nfor i = 1, # do x = f(2.5) end\nprint(x)\n", 10'000'000),
      besideLua("qtxhost, a call of BitCountQTX in a loop",
                "Dim n As Integer\nFor i As Integer = 1 To #\n  n = BitCountQTX(i)\nNext\nPrint n\n",
                "local f, n = BitCount, 0\nfor i = 1, # do n = f(i) end\nprint(n)\n", 10'000'000),
  };
  for (const int threads : {2, 4}) {
    all.push_back(inThreads("qtxhost, an object made", "", "Dim made As New Date", threads));
    all.push_back(inThreads("qtxhost, use of an object of the thread's own",
                            "Dim own@ As New AtomicIntegerQTX", "n = own@.Value", threads));
    all.push_back(inThreads("qtxhost, use of an object that threads share",
                            "Dim shared As New AtomicIntegerQTX", "n = shared.Value", threads));
  }
  return all;
}

}  // namespace bench
