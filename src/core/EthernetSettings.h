#pragma once

#include <QString>

namespace corvane {

class TVKUserDefaults;

// The surface's Ethernet address and port as the preference store holds them, and where they
// came from.
struct EthernetSettings
{
    enum class Source
    {
        Globals,       // the global "TVKIPAdr" and "TVKEnetPrt", both present
        Configuration, // the stored configuration's pair, as far as it has one
        None           // neither: the fresh-installation values
    };

    Source source = Source::None;
    QString ipAddress = QStringLiteral("0.0.0.0");
    uint port = 23;
};

// The global pair when the store holds both keys. Otherwise the pair of the stored configuration
// ("TVKModelData"), whatever it holds: a missing address reads as empty, a missing port as 0.
// Without a stored configuration either, "0.0.0.0" and port 23.
EthernetSettings storedEthernetSettings(const TVKUserDefaults& store);

} // namespace corvane
