#pragma once

#include "core/PlistValue.h"
#include "model/CorvaneModelData.h"
#include "service/MessageFrame.h"

#include <QByteArray>
#include <QString>
#include <memory>

class CorvaneModelData;

// The service's copy of the configuration, kept in step by the application's edit messages
// and built from the same model classes the application uses.
class ConfigMirror
{
public:
    ConfigMirror();
    ~ConfigMirror();

    // Reads a preference store (its "TVKModelData" entry) or a bare configuration. A missing
    // file gives a fresh configuration; a file that cannot be read is an error.
    bool load(const QString& path, QString* reason);
    // Applies one message from the application. Messages that do not change the configuration
    // are accepted silently; false, with the reason, when a message cannot be applied.
    bool apply(corvane::MessageID id, const QByteArray& body, int editedKeyset, QString* reason);
    // Writes the mirror as a configuration file.
    bool dump(const QString& path, QString* reason) const;

    CorvaneModelData& modelData() { return *m_model; }

private:
    std::unique_ptr<CorvaneModelData> m_model;
};
