#include "Contender.h"

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
    explicit TclContender(const std::string& expression) : expression(expression)
    {
        SetVariable("a", variableA);
        SetVariable("b", variableB);
        SetVariable("c", variableC);
        SetVariable("d", variableD);
    }

    void Evaluate() override
    {
        // A fresh object each time, as an object keeps what it was compiled to.
        const Reference text = Share(Tcl_NewStringObj(expression.data(), static_cast<int>(expression.size())));
        Tcl_Obj* value = nullptr;
        if (Tcl_ExprObj(tcl.get(), text.get(), &value) == TCL_OK)
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
    std::string expression;
    Reference result;

    void SetVariable(const char* name, double value)
    {
        Tcl_SetVar2Ex(tcl.get(), name, nullptr, Tcl_NewDoubleObj(value), TCL_GLOBAL_ONLY);
    }
};
} // namespace

std::unique_ptr<Contender> MakeTcl(const std::string& expression)
{
    return std::make_unique<TclContender>(expression);
}
