// Runs a Lua program from standard input, which finds, in the library's place, C functions that do the same.
#include <bit>
#include <cmath>
#include <cstdio>
#include <lua.hpp>

namespace {

int luaFloor(lua_State* state) {
  lua_pushnumber(state, std::floor(luaL_checknumber(state, 1)));
  return 1;
}
int luaBitCount(lua_State* state) {
  lua_pushinteger(state, std::popcount(static_cast<lua_Unsigned>(luaL_checkinteger(state, 1))));
  return 1;
}

}  // namespace

int main() {
  lua_State* state = luaL_newstate();
  luaL_openlibs(state);
  lua_register(state, "Floor", &luaFloor);
  lua_register(state, "BitCount", &luaBitCount);
  if (luaL_dofile(state, nullptr) == LUA_OK) return 0;
  std::fprintf(stderr, "%s\n", lua_tostring(state, -1));
  return 1;
}
