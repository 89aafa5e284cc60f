#include "surface/SurfaceConstants.h"

#include "surface/Corvane_Constant_Server.h"

namespace corvane {

const TVK_Constant_Server& surfaceConstants()
{
    if (const TVK_Constant_Server* server = TVK_Constant_Server::defaultConstantServer())
        return *server;
    // Made once and kept for the run; it must not become the live instance behind the back of
    // whoever makes that later.
    static const TVK_Constant_Server* const fallback = [] {
        auto* server = new Corvane_Constant_Server;
        TVK_Constant_Server::setDefaultConstantServer(nullptr);
        return server;
    }();
    return *fallback;
}

} // namespace corvane
