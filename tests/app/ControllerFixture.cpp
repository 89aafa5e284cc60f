#include "ControllerFixture.h"

#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "core/TVKUserDefaults.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"

#include <QFile>
#include <QGuiApplication>

namespace key = corvane::key;

namespace corvane::test {

void ensureGuiApplication()
{
    if (QCoreApplication::instance())
        return;
    static int argc = 1;
    static char name[] = "app_tests";
    static char* argv[] = {name, nullptr};
    static QGuiApplication* app = new QGuiApplication(argc, argv);
    (void)app;
}

PlistValue readablePart(const PlistValue& keysets)
{
    // Groups 29 and 30 hold 32 controls but are read back with 8, the rest made afresh: what
    // lies beyond the eighth never survives an archive, in the service or in the store.
    PlistValue result = PlistValue::makeArray();
    for (qsizetype k = 0; k < keysets.size(); ++k) {
        PlistValue keyset = keysets.at(k);
        PlistValue layers = PlistValue::makeArray();
        const PlistValue& archivedLayers = keyset.value(key::Layers);
        for (qsizetype l = 0; l < archivedLayers.size(); ++l) {
            PlistValue layer = archivedLayers.at(l);
            const PlistValue& archivedGroups = layer.value(key::Groups);
            PlistValue groups = PlistValue::makeArray();
            for (qsizetype g = 0; g < archivedGroups.size(); ++g) {
                const PlistValue& group = archivedGroups.at(g);
                if ((g == 29 || g == 30) && group.size() > 8) {
                    PlistValue first = PlistValue::makeArray();
                    for (qsizetype i = 0; i < 8; ++i)
                        first.append(group.at(i));
                    groups.append(std::move(first));
                } else {
                    groups.append(group);
                }
            }
            layer.insert(key::Groups, std::move(groups));
            layers.append(std::move(layer));
        }
        keyset.insert(key::Layers, std::move(layers));
        result.append(std::move(keyset));
    }
    return result;
}

PlistValue servicePart(const PlistValue& configuration)
{
    PlistValue part = PlistValue::makeDict();
    for (const QString& name : {key::HasOwnerKS, key::OwnKSBID, key::OwnKSSig}) {
        if (configuration.contains(name))
            part.insert(name, configuration.value(name));
    }
    part.insert(key::Keysets, readablePart(configuration.value(key::Keysets)));
    return part;
}

void ControllerTest::SetUp()
{
    ensureGuiApplication();
    ASSERT_TRUE(home.isValid());
    m_previousConfig = qgetenv("XDG_CONFIG_HOME");
    m_previousData = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_CONFIG_HOME", (home.path() + QStringLiteral("/config")).toUtf8());
    qputenv("XDG_DATA_HOME", (home.path() + QStringLiteral("/data")).toUtf8());
    storePath = TVKUserDefaults::defaultPath();
    TVKKeyset::resetTargetIDs();
}

void ControllerTest::TearDown()
{
    if (controller)
        controller->handleTerminateMessage();
    controller.reset();
    service.reset();
    qputenv("XDG_CONFIG_HOME", m_previousConfig);
    qputenv("XDG_DATA_HOME", m_previousData);
}

void ControllerTest::storeConfiguration(const TVKModelData& model, const PlistValue& globals)
{
    TVKUserDefaults store(storePath);
    PlistValue dict = PlistValue::makeDict();
    model.writeTo(dict);
    store.setObject(key::ModelData, std::move(dict));
    if (globals.isDict()) {
        for (const QString& key : globals.keys())
            store.setObject(key, globals.value(key));
    }
    QString error;
    ASSERT_TRUE(store.synchronize(&error)) << error.toStdString();
}

bool ControllerTest::startService(const QStringList& extraArguments)
{
    service = std::make_unique<SimulatorProcess>(
        ports, QStringList{QStringLiteral("--config"), storePath} + extraArguments,
        home.path() + QStringLiteral("/config"));
    return service->start();
}

CorvaneController& ControllerTest::startController(bool wakeWindows)
{
    const qsizetype from = mark();
    controller = std::make_unique<CorvaneController>();
    controller->setViews(views.interfaces());
    controller->awakeFromNib();
    if (wakeWindows) {
        views.existing.insert(TVKWindow::Main);
        controller->windowIsAwake();
        controller->applicationDidFinishLaunching();
    }
    if (service)
        service->waitForEvent(QStringLiteral("connected"), from);
    return *controller;
}

PlistValue ControllerTest::mirrorConfiguration()
{
    static int dumps = 0;
    const QString path = home.path() + QStringLiteral("/mirror-%1.plist").arg(++dumps);
    const qsizetype from = mark();
    service->command(QStringLiteral("dump ") + path);
    if (!service->waitForEvent(QStringLiteral("dumped"), from))
        return {};
    const PlistReadResult read = PlistCodec::readFile(path);
    return read.ok ? servicePart(read.value) : PlistValue();
}

PlistValue ControllerTest::controllerConfiguration() const
{
    PlistValue dict = PlistValue::makeDict();
    controller->modelData()->writeTo(dict);
    return servicePart(dict);
}

namespace {

// Where two trees first differ, as a path of keys and indices.
QString firstDifference(const PlistValue& a, const PlistValue& b, const QString& path)
{
    if (a.isDict() && b.isDict()) {
        QStringList keys = a.keys() + b.keys();
        keys.removeDuplicates();
        for (const QString& key : keys) {
            if (!a.contains(key) || !b.contains(key))
                return path + u'/' + key + QStringLiteral(" (only on one side)");
            const QString inner = firstDifference(a.value(key), b.value(key), path + u'/' + key);
            if (!inner.isEmpty())
                return inner;
        }
        return {};
    }
    if (a.isArray() && b.isArray()) {
        if (a.size() != b.size())
            return path + QStringLiteral(" (%1 against %2 entries)").arg(a.size()).arg(b.size());
        for (qsizetype i = 0; i < a.size(); ++i) {
            const QString inner =
                firstDifference(a.at(i), b.at(i), path + u'/' + QString::number(i));
            if (!inner.isEmpty())
                return inner;
        }
        return {};
    }
    if (a == b)
        return {};
    return path + QStringLiteral(": ") +
           QString::fromUtf8(PlistCodec::write(a)).section(u'\n', 3, 3) +
           QStringLiteral(" against ") +
           QString::fromUtf8(PlistCodec::write(b)).section(u'\n', 3, 3);
}

} // namespace

::testing::AssertionResult ControllerTest::serviceInStep()
{
    // The messages are on their way over the socket while the dump command goes over the
    // service's standard input, so a loaded machine may answer the dump first: look again for a
    // while before calling it a difference.
    PlistValue mirror;
    PlistValue mine;
    for (int attempt = 0; attempt < 15; ++attempt) {
        spinFor(attempt == 0 ? 20 : 200);
        mirror = mirrorConfiguration();
        mine = controllerConfiguration();
        if (mirror == mine)
            return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << "the service's configuration differs from the controller's at "
           << firstDifference(mirror, mine, QString()).toStdString() << " (service first)";
}

std::vector<QJsonObject> ControllerTest::received(const QString& code, qsizetype from) const
{
    std::vector<QJsonObject> lines;
    const std::vector<QJsonObject>& all = service->lines();
    for (size_t i = size_t(std::max<qsizetype>(from, 0)); i < all.size(); ++i) {
        if (all[i].value(QStringLiteral("code")).toString() == code)
            lines.push_back(all[i]);
    }
    return lines;
}

bool ControllerTest::waitForCount(const QString& code, int count, qsizetype from, int timeoutMs)
{
    return spinUntil([&] { return int(received(code, from).size()) >= count; }, timeoutMs);
}

} // namespace corvane::test
