#pragma once

#include <QObject>
#include <QStringList>

class QLocalServer;

// One Corvane per user: the first to start listens on the port "CorvaneInstance" in the user's
// port folder; a later start hands it the keyset files it was asked to open, and ends.
class TVKInstanceLink : public QObject
{
    Q_OBJECT
public:
    explicit TVKInstanceLink(QObject* parent = nullptr);
    ~TVKInstanceLink() override;

    // Hands the files (absolute paths; none: come to the front) to a running instance. False
    // when none answers.
    static bool sendToRunningInstance(const QStringList& files, int timeoutMs = 1000);
    // Listens as the running instance; a socket left by one that ended badly is replaced.
    bool listen();

Q_SIGNALS:
    // Another start asked this instance to open these files and come to the front.
    void openRequested(const QStringList& files);

private:
    QLocalServer* m_server = nullptr;
};
