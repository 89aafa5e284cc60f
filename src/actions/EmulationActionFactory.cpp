#include "actions/EmulationActionFactory.h"

#include "actions/TVKAction.h"

namespace corvane {

// The emulation action classes register here as they are added; until a kind has its class,
// the control is left without an action, as for a kind the table does not know.
std::unique_ptr<TVKAction> makeEmulationAction(int /*kind*/, TVKControl* /*control*/,
                                               int /*emulatedGroup*/, int /*emulatedControl*/,
                                               bool /*namedControl*/, bool /*onlyControlInGroup*/)
{
    return nullptr;
}

std::unique_ptr<TVKAction> makeDisplayEmulationAction(int /*kind*/, TVKControl* /*display*/,
                                                      int /*source*/)
{
    return nullptr;
}

} // namespace corvane
