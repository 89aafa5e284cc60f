#include "ServiceSimulator.h"

#include "ConfigMirror.h"
#include "core/FourCharCode.h"
#include "core/PlistCodec.h"
#include "service/MessageCatalogue.h"
#include "service/TVK_MessageSpecs.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSocketNotifier>
#include <chrono>
#include <cstdio>
#include <unistd.h>
#include <utility>

using corvane::MessageFrame;
using corvane::MessageID;
using corvane::PlistValue;
namespace msg = corvane::msg;

namespace {

QJsonValue toJson(const PlistValue& value)
{
    switch (value.type()) {
    case PlistValue::Type::Null:
        return QJsonValue();
    case PlistValue::Type::Boolean:
        return value.toBool();
    case PlistValue::Type::Integer:
        if (value.isUnsignedInteger())
            return double(value.toUnsigned());
        return value.toInteger();
    case PlistValue::Type::Real:
        return value.toReal();
    case PlistValue::Type::String:
        return value.toString();
    case PlistValue::Type::Data:
        return QString::fromLatin1(value.toData().toBase64());
    case PlistValue::Type::Date:
        return value.toDateTime().toString(Qt::ISODate);
    case PlistValue::Type::Array: {
        QJsonArray array;
        for (qsizetype i = 0; i < value.size(); ++i)
            array.append(toJson(value.at(i)));
        return array;
    }
    case PlistValue::Type::Dict: {
        QJsonObject object;
        for (qsizetype i = 0; i < value.size(); ++i)
            object.insert(value.keyAt(i), toJson(value.valueAt(i)));
        return object;
    }
    }
    return QJsonValue();
}

// Printable codes as their four characters, anything else (the zero ID) in hexadecimal.
QString codeForJson(MessageID id)
{
    const QString text = msg::codeText(id);
    for (const QChar c : text) {
        if (c.unicode() < 0x20 || c.unicode() > 0x7E)
            return QStringLiteral("0x%1").arg(std::uint32_t(id), 8, 16, QLatin1Char('0'));
    }
    return text;
}

QJsonArray words(const QByteArray& body)
{
    QJsonArray array;
    for (qsizetype at = 0; at + 4 <= body.size(); at += 4)
        array.append(qint64(corvane::readLittleEndian32(body.constData() + at)));
    return array;
}

std::optional<std::uint32_t> parseWord(const QString& text)
{
    bool ok = false;
    const qint64 value = text.toLongLong(&ok, 0);
    if (!ok || value < INT32_MIN || value > qint64(UINT32_MAX))
        return std::nullopt;
    return std::uint32_t(value);
}

} // namespace

ServiceSimulator::ServiceSimulator(const Options& options, std::unique_ptr<ConfigMirror> mirror)
    : m_options(options), m_mirror(std::move(mirror)), m_surfaceConnected(options.surfaceConnected)
{}

ServiceSimulator::~ServiceSimulator() = default;

bool ServiceSimulator::start()
{
    m_port = corvane::LocalMessagePort::create(
        QStringLiteral("TVK_Corvane"),
        [this](corvane::LocalMessagePort*, const MessageFrame& frame) { return receive(frame); });
    if (!m_port) {
        std::fprintf(stderr, "corvane-service-sim: cannot listen as TVK_Corvane (another "
                             "service holds the name, or the port folder is unusable)\n");
        return false;
    }
    if (m_options.readCommands) {
        m_input = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, this);
        connect(m_input, &QSocketNotifier::activated, this, &ServiceSimulator::readCommands);
    }
    emitLine({{QStringLiteral("event"), QStringLiteral("listening")},
              {QStringLiteral("port"), m_port->path()}});
    return true;
}

qint64 ServiceSimulator::now()
{
    return std::chrono::duration_cast<std::chrono::microseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void ServiceSimulator::emitLine(QJsonObject object, qint64 at)
{
    if (m_options.timestamps)
        object.insert(QStringLiteral("us"), at < 0 ? now() : at);
    const QByteArray line = QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
    std::fwrite(line.constData(), 1, std::size_t(line.size()), stdout);
    std::fflush(stdout);
}

void ServiceSimulator::error(const QString& text)
{
    emitLine({{QStringLiteral("error"), text}});
}

QByteArray ServiceSimulator::receive(const MessageFrame& frame)
{
    const qint64 at = m_options.timestamps ? now() : -1;
    const bool request = frame.flags & MessageFrame::WantsReply;
    if (!m_options.quiet) {
        QJsonObject line{{QStringLiteral("code"), codeForJson(frame.code)}};
        const std::optional<msg::BodyKind> kind = msg::applicationMessageKind(frame.code);
        if (request) {
            line.insert(QStringLiteral("request"), true);
        } else if (kind == msg::BodyKind::ResetSocket) {
            if (const auto reset = msg::decodeResetSocket(frame.body)) {
                line.insert(QStringLiteral("ip"), reset->ipAddress);
                line.insert(QStringLiteral("port"), qint64(reset->port));
            } else {
                line.insert(QStringLiteral("data"), QString::fromLatin1(frame.body.toBase64()));
            }
        } else if (kind == msg::BodyKind::PropertyList) {
            const corvane::PlistReadResult read = corvane::PlistCodec::read(frame.body);
            if (read.ok)
                line.insert(QStringLiteral("plist"), toJson(read.value));
            else
                line.insert(QStringLiteral("plistError"), read.error.toString());
        } else if (frame.body.size() % 4 == 0) {
            line.insert(QStringLiteral("words"), words(frame.body));
        } else {
            line.insert(QStringLiteral("data"), QString::fromLatin1(frame.body.toBase64()));
        }
        emitLine(line, at);
    }

    if (request) {
        for (const Outgoing& held : std::exchange(m_beforeReply, {})) {
            if (sendToApplication(held.id, held.body))
                emitLine({{QStringLiteral("sent"), corvane::msg::codeText(held.id)}});
        }
        if (frame.code == msg::RqCC) {
            QByteArray reply;
            for (const std::uint32_t field : {m_keyset, m_layer, m_group, m_control})
                corvane::appendLittleEndian32(reply, field);
            return reply;
        }
        if (frame.code == msg::Cnct)
            return TVK_OneIntSpec(m_surfaceConnected ? 1 : 0).data();
        return QByteArray();
    }

    if (frame.code == msg::MPCn) {
        TVK_IncomingMessageSpec announce(frame.body);
        connectToApplication(announce.deserializeNextField());
        return QByteArray();
    }
    track(frame);
    if (m_mirror) {
        QString reason;
        if (!m_mirror->apply(frame.code, frame.body, int(m_keyset), &reason) && !reason.isEmpty())
            error(QStringLiteral("%1: %2").arg(codeForJson(frame.code), reason));
    }
    return QByteArray();
}

void ServiceSimulator::connectToApplication(std::uint32_t localID)
{
    if (localID != corvane::fourCC("Crvn"))
        return;
    // The application announces itself more than once; a live connection is kept.
    if (m_application && m_application->isValid())
        return;
    if (m_application) {
        // It went away and came back before the hang-up was delivered.
        m_application->disconnect(this);
        m_application.reset();
        emitLine({{QStringLiteral("event"), QStringLiteral("disconnected")}});
    }
    const QString name =
        QStringLiteral("TVK_MessagePort_%1").arg(corvane::stringFromFourCharCode(localID));
    m_application = corvane::RemoteMessagePort::create(name);
    if (!m_application) {
        error(QStringLiteral("cannot reach %1").arg(name));
        return;
    }
    connect(m_application.get(), &corvane::RemoteMessagePort::invalidated, this, [this] {
        emitLine({{QStringLiteral("event"), QStringLiteral("disconnected")}});
        // Dropped later: this runs inside the port's own signal.
        QMetaObject::invokeMethod(
            this,
            [this, port = m_application.get()] {
                if (m_application.get() == port)
                    m_application.reset();
            },
            Qt::QueuedConnection);
    });
    emitLine({{QStringLiteral("event"), QStringLiteral("connected")}});
}

void ServiceSimulator::track(const MessageFrame& frame)
{
    TVK_IncomingMessageSpec fields(frame.body);
    if (frame.code == msg::ChEK) {
        m_keyset = fields.deserializeNextField();
    } else if (frame.code == msg::ChEL) {
        m_layer = fields.deserializeNextField();
    } else if (frame.code == msg::TCtl) {
        const TVK_IncomingControlStateSpec state(frame.body);
        if (state.value() == 1) {
            m_group = state.groupIndex();
            m_control = state.controlNumOrChannel();
            Q_EMIT controlLit(m_group, m_control);
        }
    }
}

bool ServiceSimulator::sendToApplication(MessageID id, const QByteArray& body)
{
    if (!m_application || !m_application->isValid()) {
        error(QStringLiteral("no application connected"));
        return false;
    }
    switch (m_application->send(id, body, 50)) {
    case corvane::RemoteMessagePort::Status::Success:
        return true;
    case corvane::RemoteMessagePort::Status::Queued:
        // The application reads nothing at the moment; it gets the message when it reads again.
        error(QStringLiteral("queued: the application reads nothing"));
        return true;
    default:
        error(QStringLiteral("send failed"));
        return false;
    }
}

bool ServiceSimulator::touch(std::uint32_t group, std::uint32_t control, std::uint32_t value)
{
    const TVK_OutgoingControlStateSpec body{group, control, 0, value};
    const qint64 at = m_options.timestamps ? now() : -1;
    if (!sendToApplication(msg::TCtl, body.data()))
        return false;
    emitLine(
        {{QStringLiteral("touched"), QJsonArray{qint64(group), qint64(control), qint64(value)}}},
        at);
    return true;
}

bool ServiceSimulator::runCommand(const QString& line)
{
    const QStringList words = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (words.isEmpty())
        return true;
    const QString& command = words.first();
    if (command == QLatin1String("quit"))
        return false;

    const bool beforeReply = command == QLatin1String("before-reply");
    if ((command == QLatin1String("send") || beforeReply) && words.size() >= 2) {
        const QString& code = words.at(1);
        std::vector<std::uint32_t> fields;
        for (qsizetype i = 2; i < words.size(); ++i) {
            const std::optional<std::uint32_t> field = parseWord(words.at(i));
            if (!field) {
                error(QStringLiteral("not a number: %1").arg(words.at(i)));
                return true;
            }
            fields.push_back(*field);
        }
        std::optional<Outgoing> message;
        if ((code == QLatin1String("TCtl") || code == QLatin1String("CurC")) &&
            fields.size() == 4) {
            const TVK_OutgoingControlStateSpec body{fields[0], fields[1], fields[2], fields[3]};
            message = Outgoing{code == QLatin1String("TCtl") ? msg::TCtl : msg::CurC, body.data()};
        } else if (code == QLatin1String("CnSt") && fields.size() == 1) {
            message = Outgoing{msg::CnSt, msg::encodeConnectionState(fields[0] != 0)};
        }
        if (!message) {
            error(QStringLiteral("usage: send|before-reply TCtl <group> <control> <axis> <value> "
                                 "| ... CurC <keyset> <layer> <group> <control> | ... CnSt <0|1>"));
            return true;
        }
        if (beforeReply) {
            // Held until the application's next request, then sent while it waits for the
            // reply: what a busy service does when a touch and a request cross.
            m_beforeReply.push_back(*message);
            emitLine({{QStringLiteral("held"), code}});
        } else {
            const qint64 at = m_options.timestamps ? now() : -1;
            if (sendToApplication(message->id, message->body))
                emitLine({{QStringLiteral("sent"), code}}, at);
        }
        return true;
    }
    if (command == QLatin1String("surface") && words.size() == 2 &&
        (words.at(1) == QLatin1String("connected") ||
         words.at(1) == QLatin1String("disconnected"))) {
        m_surfaceConnected = words.at(1) == QLatin1String("connected");
        emitLine({{QStringLiteral("event"), QStringLiteral("surface")},
                  {QStringLiteral("connected"), m_surfaceConnected}});
        return true;
    }
    if (command == QLatin1String("dump") && words.size() >= 2) {
        const QString path = line.section(QLatin1Char(' '), 1, -1, QString::SectionSkipEmpty);
        QString reason;
        if (!m_mirror || !m_mirror->dump(path, &reason)) {
            error(QStringLiteral("cannot write %1: %2").arg(path, reason));
            return true;
        }
        emitLine(
            {{QStringLiteral("event"), QStringLiteral("dumped")}, {QStringLiteral("file"), path}});
        return true;
    }
    if (m_extraCommands && m_extraCommands(words))
        return true;
    error(QStringLiteral("unknown command: %1").arg(line.trimmed()));
    return true;
}

void ServiceSimulator::readCommands()
{
    char buffer[4096];
    const ssize_t got = ::read(STDIN_FILENO, buffer, sizeof buffer);
    if (got <= 0) {
        // End of input ends the service, as closing its terminal would; a last command without
        // its line end still runs.
        m_input->setEnabled(false);
        const QString last = QString::fromUtf8(m_pendingInput).trimmed();
        m_pendingInput.clear();
        if (!last.isEmpty())
            runCommand(last);
        Q_EMIT finished();
        return;
    }
    m_pendingInput.append(buffer, qsizetype(got));
    qsizetype newline;
    while ((newline = m_pendingInput.indexOf('\n')) >= 0) {
        const QString line = QString::fromUtf8(m_pendingInput.left(newline)).trimmed();
        m_pendingInput.remove(0, newline + 1);
        if (!runCommand(line)) {
            m_input->setEnabled(false);
            Q_EMIT finished();
            return;
        }
    }
}
