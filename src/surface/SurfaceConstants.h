#pragma once

class TVK_Constant_Server;

namespace corvane {

// The live surface constants; a tool or test that reads archives without having made them gets
// the surface family's own, so counts never silently drop to zero.
const TVK_Constant_Server& surfaceConstants();

} // namespace corvane
