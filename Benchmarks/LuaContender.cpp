#include "Contender.h"
#include "Variation.h"

#include <lua.hpp>

namespace {
class LuaContender : public Contender
{
public:
    explicit LuaContender(const Texts& expressions)
    {
        for (const std::string& expression : expressions)
            chunks.push_back("return " + expression);
        luaL_openlibs(lua.get());
        for (const auto& [name, value] : MakeVariables()) {
            lua_pushnumber(lua.get(), value);
            lua_setglobal(lua.get(), name.c_str());
        }
        for (const char* name : {"sqrt", "sin", "cos", "max", "min"})
            MakeGlobal(name);
    }

    void Evaluate(std::size_t text) override
    {
        lua_settop(lua.get(), 0);
        if (luaL_loadbuffer(lua.get(), chunks[text].data(), chunks[text].size(), "=") == LUA_OK)
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
    Texts chunks;

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

std::unique_ptr<Contender> MakeLua(const Texts& expressions)
{
    return std::make_unique<LuaContender>(expressions);
}
