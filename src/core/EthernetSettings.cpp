#include "core/EthernetSettings.h"

#include "core/StoredKeys.h"
#include "core/TVKUserDefaults.h"

namespace corvane {

EthernetSettings storedEthernetSettings(const TVKUserDefaults& store)
{
    EthernetSettings settings;
    const PlistValue& address = store.objectForKey(key::IPAdr);
    const PlistValue& port = store.objectForKey(key::EnetPrt);
    if (!address.isNull() && !port.isNull()) {
        settings.source = EthernetSettings::Source::Globals;
        settings.ipAddress = address.toString();
        settings.port = uint(port.toUnsigned());
        return settings;
    }
    const PlistValue& configuration = store.objectForKey(key::ModelData);
    if (configuration.isDict()) {
        settings.source = EthernetSettings::Source::Configuration;
        settings.ipAddress = configuration.value(key::IPAdr).toString();
        settings.port = uint(configuration.value(key::EnetPrt).toUnsigned());
    }
    return settings;
}

} // namespace corvane
