#include "Contender.h"
#include "Variation.h"

#include <tcl.h>

namespace {
struct Release
{
    void operator()(Tcl_Obj* object) const { Tcl_DecrRefCount(object); }
    void operator()(Tcl_Interp* interpreter) const { Tcl_DeleteInterp(interpreter); }
};

/// A counted reference to an object.
using Reference = std::unique_ptr<Tcl_Obj, Release>;

Reference Share(Tcl_Obj* object)
{
    Tcl_IncrRefCount(object);
    return Reference(object);
}

class TclContender : public Contender
{
public:
    explicit TclContender(const Texts& expressions) : expressions(expressions)
    {
        Tcl_Init(tcl.get()); // defines max and min
        for (const auto& [name, value] : MakeVariables())
            Tcl_SetVar2Ex(tcl.get(), name.c_str(), nullptr, Tcl_NewDoubleObj(value), TCL_GLOBAL_ONLY);
    }

    void Evaluate(std::size_t text) override
    {
        // A fresh object each time, as an object keeps what it was compiled to.
        const std::string& expression = expressions[text];
        const Reference fresh = Share(Tcl_NewStringObj(expression.data(), static_cast<int>(expression.size())));
        Tcl_Obj* value = nullptr;
        if (Tcl_ExprObj(tcl.get(), fresh.get(), &value) == TCL_OK)
            result.reset(value); // with a reference that is ours
        else
            result = Share(Tcl_GetObjResult(tcl.get()));
    }

    Value GetValue() override
    {
        double number = 0;
        if (Tcl_GetDoubleFromObj(nullptr, result.get(), &number) == TCL_OK)
            return number;
        return Tcl_GetString(result.get());
    }

private:
    std::unique_ptr<Tcl_Interp, Release> tcl{Tcl_CreateInterp()};
    Texts expressions;
    Reference result;
};
} // namespace

std::unique_ptr<Contender> MakeTcl(const Texts& expressions)
{
    return std::make_unique<TclContender>(expressions);
}
