// The stand-in host beside Lua: a loop, and calls of library functions; and what more threads cost it. Every
// measurement is a process of its own; all are run in turn, several times, and their medians are printed.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <lua.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace {

int rounds = 5;  // or what the option of the other benchmarks for that says

double secondsIn(const timeval& time) {
  return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

// Seconds of user time that so many child processes take together, all at once. Their output is not wanted;
// `run` gives the exit status.
double costOf(const std::function<int()>& run, int processes = 1) {
  for (int i = 0; i < processes; ++i) {
    if (fork() != 0) continue;
    dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
    _exit(run());
  }
  double sum = 0;
  for (int i = 0; i < processes; ++i) {
    int status = 0;
    rusage usage = {};
    if (wait4(-1, &status, 0, &usage) < 0 || status != 0) {
      std::fprintf(stderr, "host_bench: a measured program has failed\n");
      std::exit(1);
    }
    sum += secondsIn(usage.ru_utime);
  }
  return sum;
}

double costInHost(const std::string& program, int processes = 1) {
  const auto run = [&] {
    std::FILE* input = std::tmpfile();
    std::fwrite(program.data(), 1, program.size(), input);
    std::rewind(input);
    dup2(fileno(input), STDIN_FILENO);
    execl(QTX_HOST_PROGRAM, QTX_HOST_PROGRAM, "run", "-", nullptr);
    return 1;
  };
  return costOf(run, processes);
}

// What a Lua program calls in the library's place: C functions that do the same.
int luaFloor(lua_State* state) {
  lua_pushnumber(state, std::floor(luaL_checknumber(state, 1)));
  return 1;
}
int luaBitCount(lua_State* state) {
  lua_pushinteger(state, std::popcount(static_cast<lua_Unsigned>(luaL_checkinteger(state, 1))));
  return 1;
}

double costInLua(const std::string& program) {
  return costOf([&] {
    lua_State* state = luaL_newstate();
    luaL_openlibs(state);
    lua_register(state, "Floor", &luaFloor);
    lua_register(state, "BitCount", &luaBitCount);
    return luaL_dostring(state, program.c_str()) == LUA_OK ? 0 : 1;
  });
}

double median(std::vector<double> values) {
  const std::size_t middle = values.size() / 2;
  std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(middle), values.end());
  return values[middle];
}

struct Pair {
  const char* what;
  const char* host;
  const char* lua;
  std::vector<double> hostTimes = {}, luaTimes = {};
};
Pair pairs[] = {
    {"20 million a = a + i", "Dim a As Integer\nFor i As Integer = 1 To 20000000\n  a = a + i\nNext\n",
     "local a = 0\nfor i = 1, 20000000 do a = a + i end\n"},
    {"10 million calls of FloorQTX",
     "Dim x As Double\nFor i As Integer = 1 To 10000000\n  x = FloorQTX(2.5)\nNext\n",
     "local f, x = Floor, 0\nfor i = 1, 10000000 do x = f(2.5) end\n"},
    {"10 million calls of BitCountQTX",
     "Dim n As Integer\nFor i As Integer = 1 To 10000000\n  n = BitCountQTX(i)\nNext\n",
     "local f, n = BitCount, 0\nfor i = 1, 10000000 do n = f(i) end\n"},
};

constexpr std::array threadCounts = {2, 4};

struct Scaling {
  const char* what;
  const char* declaration;  // at module level; in it and in the loop, # stands for the thread's number
  const char* loop;         // done a million times by each thread
  std::vector<double> alone = {};
  // What threads cost, over what as many processes cost at the same time.
  std::array<std::vector<double>, threadCounts.size()> ratios = {};
};
Scaling scalings[] = {
    {"a million objects made", "", "Dim made As New Date"},
    {"a million uses of an object variable of the thread's own", "Dim own# As New AtomicIntegerQTX",
     "n = own#.Value"},
    {"a million uses of an object variable that threads share", "Dim shared As New AtomicIntegerQTX",
     "n = shared.Value"},
};

std::string numbered(std::string text, int number) {
  for (std::size_t at; (at = text.find('#')) != std::string::npos;)
    text.replace(at, 1, std::to_string(number));
  return text;
}

std::string programOf(const Scaling& scaling, int threads) {
  const bool each = std::string(scaling.declaration).find('#') != std::string::npos;
  std::string program, start, join;
  for (int i = 1; i <= threads; ++i) {
    if (each || i == 1) program += numbered(scaling.declaration, i) + "\n";
    program += numbered(
        "Sub Work#()\n  Dim n As Integer\n  For i As Integer = 1 To 1000000\n    " +
            std::string(scaling.loop) +
            "\n  Next\nEnd Sub\nDim thread# As New Thread\nAddHandler thread#.Run, AddressOf Work#\n",
        i);
    start += numbered("thread#.Start\n", i);
    join += numbered("thread#.Join\n", i);
  }
  return program + start + join;
}

}  // namespace

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    constexpr std::string_view option = "--benchmark_repetitions=";
    if (std::string_view(argv[i]).starts_with(option))
      rounds = std::max(1, std::atoi(argv[i] + option.size()));
  }
  for (int round = 0; round < rounds; ++round) {
    for (Pair& each : pairs) {
      each.hostTimes.push_back(costInHost(each.host));
      each.luaTimes.push_back(costInLua(each.lua));
    }
    for (Scaling& each : scalings) {
      const std::string one = programOf(each, 1);
      each.alone.push_back(costInHost(one));
      for (std::size_t i = 0; i < threadCounts.size(); ++i) {
        const int count = threadCounts[i];
        each.ratios[i].push_back(costInHost(programOf(each, count)) / costInHost(one, count));
      }
    }
  }
  std::printf("%-60s %9s %9s %9s\n", "Medians of user times, in seconds", "qtxhost", "Lua", "ratio");
  for (const Pair& each : pairs) {
    const double host = median(each.hostTimes), lua = median(each.luaTimes);
    std::printf("%-60s %9.3f %9.3f %9.2f\n", each.what, host, lua, host / lua);
  }
  std::printf("\n%-60s %9s %9s %9s\n", "Of one thread; then what threads cost over as many processes",
              "1 thread", "2 threads", "4 threads");
  for (const Scaling& each : scalings) {
    std::printf("%-60s %9.3f", each.what, median(each.alone));
    for (const std::vector<double>& ratios : each.ratios) std::printf(" %9.2f", median(ratios));
    std::printf("\n");
  }
}
