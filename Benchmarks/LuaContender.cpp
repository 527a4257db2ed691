#include "Contender.h"

#include <lua.hpp>

namespace {
class LuaContender : public Contender
{
public:
    explicit LuaContender(const std::string& expression) : chunk("return " + expression)
    {
        luaL_openlibs(lua.get());
        SetVariable("a", variableA);
        SetVariable("b", variableB);
        SetVariable("c", variableC);
        SetVariable("d", variableD);
        for (const char* name : {"sqrt", "sin", "cos"})
            MakeGlobal(name);
    }

    void Evaluate() override
    {
        lua_settop(lua.get(), 0);
        if (luaL_loadstring(lua.get(), chunk.c_str()) == LUA_OK)
            lua_pcall(lua.get(), 0, 1, 0); // leaves the value, or the error's text
    }

    Value GetValue() override
    {
        if (lua_type(lua.get(), -1) == LUA_TSTRING)
            return lua_tostring(lua.get(), -1);
        return lua_isboolean(lua.get(), -1) ? lua_toboolean(lua.get(), -1) : lua_tonumber(lua.get(), -1);
    }

private:
    struct Close
    {
        void operator()(lua_State* state) const { lua_close(state); }
    };

    std::unique_ptr<lua_State, Close> lua{luaL_newstate()};
    std::string chunk;

    void SetVariable(const char* name, double value)
    {
        lua_pushnumber(lua.get(), value);
        lua_setglobal(lua.get(), name);
    }

    /// Spares the look-up of the library in each call: the others have none.
    void MakeGlobal(const char* name)
    {
        lua_getglobal(lua.get(), "math");
        lua_getfield(lua.get(), -1, name);
        lua_setglobal(lua.get(), name);
        lua_pop(lua.get(), 1);
    }
};
} // namespace

std::unique_ptr<Contender> MakeLua(const std::string& expression)
{
    return std::make_unique<LuaContender>(expression);
}
