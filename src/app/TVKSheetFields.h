#pragma once

#include <QString>
#include <array>

// The fields of the preference sheet as the controller fills them and the sheet edits them.
struct TVKPreferenceFields
{
    std::array<QString, 4> ipAddress; // the four parts of the surface's address
    QString ethernetPort;
    // The surface family's standalone expanders: each box and whether it can be changed.
    bool standaloneTL = false;
    bool standaloneTLW = false;
    bool standaloneTLW2 = false;
    bool standaloneNV = false;
    bool standaloneTLEnabled = true;
    bool standaloneTLWEnabled = true;
    bool standaloneTLW2Enabled = true;
    bool standaloneNVEnabled = true;
    int hardwareStyle = 0; // the tag of the selected finish: 0 midnight, 1 silver
};

// The fields of the application-port sheet: two choices (tag 0 connect over Ethernet on the
// port, tag 1 do not) and the port.
struct TVKAppPortFields
{
    std::array<QString, 2> cellTitles;
    std::array<bool, 2> cellStates = {false, false};
    int selectedCell = 0;
    QString port;
};
