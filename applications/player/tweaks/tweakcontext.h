#pragma once

namespace Zph::Applications::Player {

// What tweaks take from the application's state when they are made.
struct TweakContext
{
    bool diagnostics = false; // captions tell uid, identifier and user tag
    bool trackSliders = true; // sliders report while they are dragged, not only when released
    int sizeLimit = 0;        // base-2 logarithm of the largest output size offered; 0 for the usual one
};

} // namespace Zph::Applications::Player
