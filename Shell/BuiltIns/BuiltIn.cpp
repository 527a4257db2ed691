#include "BuiltIns/BuiltIn.h"

void BuiltIn::HandleStandardOptions(Options& options)
{
    WString header;
    options.TryGetString(recordHeader, header);
}
