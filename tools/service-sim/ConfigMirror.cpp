#include "ConfigMirror.h"

#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "core/TVKUserDefaults.h"
#include "model/CorvaneModelData.h"
#include "model/TVKModelData.h"
#include "service/ConfigurationEdits.h"

namespace key = corvane::key;

using corvane::MessageID;
using corvane::PlistValue;

ConfigMirror::ConfigMirror() : m_model(std::make_unique<CorvaneModelData>()) {}

ConfigMirror::~ConfigMirror() = default;

bool ConfigMirror::load(const QString& path, QString* reason)
{
    const corvane::TVKUserDefaults store(path);
    switch (store.state()) {
    case corvane::TVKUserDefaults::State::Missing:
        m_model = std::make_unique<CorvaneModelData>();
        return true;
    case corvane::TVKUserDefaults::State::Unreadable:
        *reason = store.error();
        return false;
    case corvane::TVKUserDefaults::State::Loaded:
        break;
    }
    const PlistValue& stored = store.objectForKey(key::ModelData);
    if (store.dictionary().contains(key::ModelData) && !stored.isDict()) {
        // A store whose configuration entry is damaged is not a configuration of its own.
        *reason = QStringLiteral("%1: \"TVKModelData\" is not a dictionary").arg(path);
        return false;
    }
    const PlistValue& configuration = stored.isDict() ? stored : store.dictionary();
    const QString limit = TVKModelData::archiveLimitExceeded(configuration);
    if (!limit.isNull()) {
        *reason = QStringLiteral("%1: %2").arg(path, limit);
        return false;
    }
    try {
        m_model = std::make_unique<CorvaneModelData>(configuration);
    } catch (const std::bad_alloc&) {
        *reason = QStringLiteral("%1: not enough memory to read the configuration").arg(path);
        return false;
    }
    return true;
}

bool ConfigMirror::dump(const QString& path, QString* reason) const
{
    PlistValue dict = PlistValue::makeDict();
    m_model->writeTo(dict);
    return corvane::PlistCodec::writeFile(path, dict, corvane::PlistFormat::Xml, reason);
}

bool ConfigMirror::apply(MessageID id, const QByteArray& body, int editedKeyset, QString* reason)
{
    return applyConfigurationMessage(*m_model, id, body, editedKeyset, reason);
}
