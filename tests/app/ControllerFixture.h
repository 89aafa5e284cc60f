#pragma once

#include "ScriptedViews.h"
#include "ServiceTestSupport.h"
#include "app/CorvaneController.h"
#include "core/PlistValue.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>

namespace corvane::test {

// The application object the controller and its timers need, made once per test program.
void ensureGuiApplication();

// The controller as the application runs it: its store in a private XDG configuration folder,
// the real simulated service beside it on a private port folder, the windows scripted.
class ControllerTest : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    // Writes a store holding the model's configuration (and the global keys given).
    void storeConfiguration(const TVKModelData& model, const PlistValue& globals = {});
    // Starts the simulated service on the store (or without one).
    bool startService(const QStringList& extraArguments = {});
    // Makes the controller and runs its start-up as the application does.
    CorvaneController& startController(bool wakeWindows = true);
    // The simulator's copy of the configuration and the controller's, in the parts the service
    // keeps (the keysets and the owner).
    PlistValue mirrorConfiguration();
    PlistValue controllerConfiguration() const;
    // Waits until the service has the controller's configuration.
    ::testing::AssertionResult serviceInStep();
    // Lines received by the simulator since `from` with that code.
    std::vector<QJsonObject> received(const QString& code, qsizetype from) const;
    // Waits until the simulator has received `count` messages with that code since `from`.
    bool waitForCount(const QString& code, int count, qsizetype from, int timeoutMs = 5000);
    qsizetype mark() const { return service ? service->lineCount() : 0; }

    PortFolder ports;
    QTemporaryDir home;
    QString storePath;
    ScriptedViews views;
    std::unique_ptr<SimulatorProcess> service;
    std::unique_ptr<CorvaneController> controller;

private:
    QByteArray m_previousConfig;
    QByteArray m_previousData;
};

// Only the parts of a configuration that the service is told about, as far as an archive
// carries them.
PlistValue servicePart(const PlistValue& configuration);
PlistValue readablePart(const PlistValue& keysets);

} // namespace corvane::test
