#include "actions/TVKNULLAction.h"

std::unique_ptr<TVKAction> TVKNULLAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKNULLAction(*this));
}

std::unique_ptr<TVKAction> TVKNULLDisplayAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKNULLDisplayAction(*this));
}
