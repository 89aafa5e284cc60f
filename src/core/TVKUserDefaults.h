#pragma once

#include "core/PlistValue.h"

#include <QString>

namespace corvane {

// The per-user preference store: one property-list dictionary in one file, read whole when the
// store is opened and written whole, atomically, by synchronize(). The configuration lives in it
// under "TVKModelData" beside the global settings; the application, the simulated service and
// the keyset tool all reach it through this class.
//
// A store whose file exists but cannot be read is never overwritten: synchronize() refuses until
// the damaged file has been moved aside (moveAside()), so that nothing the user had is lost.
class TVKUserDefaults
{
public:
    enum class State
    {
        Missing,   // no file yet: an empty store, written on the first synchronize()
        Loaded,    // read from the file
        Unreadable // the file exists but holds no readable dictionary
    };

    // $XDG_CONFIG_HOME/Tavrik/com.tavrik.CorvaneRS.plist (XDG_CONFIG_HOME defaults to ~/.config).
    static QString defaultPath();

    // Opens the store at the path and reads it.
    explicit TVKUserDefaults(QString path = defaultPath());

    const QString& path() const { return m_path; }
    State state() const { return m_state; }
    // Why an unreadable store could not be read ("<path>: offset N: reason"); empty otherwise.
    const QString& error() const { return m_error; }

    // Reads the file again, dropping every change not yet synchronized.
    State reload();

    // The object stored under the key, or a null value.
    const PlistValue& objectForKey(QStringView key) const;
    void setObject(const QString& key, PlistValue object);
    void removeObjectForKey(QStringView key);
    // The whole store.
    const PlistValue& dictionary() const { return m_values; }

    // Writes the store to its file atomically (XML), creating its folder when missing; a store
    // whose file already holds every value is not written again. False,
    // with the reason in errorMessage, when the write failed or the file is unreadable and still
    // in place; the file then keeps its previous contents.
    bool synchronize(QString* errorMessage = nullptr);

    // Moves an unreadable file aside to "<path>.unreadable-<yyyyMMdd-hhmmss>" so that the store
    // can be written again, and starts empty. Returns the new name of the file, or a null text
    // when the store was readable or the move failed (errorMessage says why).
    QString moveAside(QString* errorMessage = nullptr);
    // Moves any file aside to "<path>.<why>-<yyyyMMdd-hhmmss>" (a number added when that is
    // taken), never over another; the new name, or a null text (errorMessage says why).
    static QString moveFileAside(const QString& path, const QString& why,
                                 QString* errorMessage = nullptr);

private:
    QString m_path;
    PlistValue m_values;
    State m_state = State::Missing;
    QString m_error;
    bool m_changed = false;
};

} // namespace corvane
