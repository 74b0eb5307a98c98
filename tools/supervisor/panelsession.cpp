#include "tools/supervisor/panelsession.h"

#include "tools/supervisor/words.h"

#include <QElapsedTimer>

namespace {

constexpr int connectTimeoutMs = 5000;
constexpr int writeTimeoutMs = 35000; // a panel that restarts its network does not read meanwhile
constexpr int closeTimeoutMs = 1000;

} // namespace

bool PanelSession::open(const QString& host, quint16 port)
{
    m_socket.connectToHost(host, port);
    if (!m_socket.waitForConnected(connectTimeoutMs))
        return fail(QStringLiteral("no link to the panel at %1:%2").arg(host, QString::number(port)));
    m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1); // a packet leaves in one piece, at once
    m_rivals.begin(m_socket);
    return true;
}

bool PanelSession::send(const QByteArray& packet)
{
    m_socket.write(packet);
    while (m_socket.bytesToWrite() > 0)
        if (!m_socket.waitForBytesWritten(writeTimeoutMs))
            return fail(QStringLiteral("the link broke while sending"));
    m_owed += packet == modeRequest() ? 1 : 0;
    return true;
}

std::optional<quint8> PanelSession::askMode()
{
    if (!send(modeRequest()))
        return std::nullopt;
    QList<quint8> codes;
    while (m_owed > 0) {
        if (!awaitAnswer())
            return std::nullopt;
        codes = m_answers.take(m_socket.readAll());
        m_owed -= int(codes.size());
    }
    return codes.last();
}

/** Waits in short spells, to see between them whether another caller is served meanwhile. */
bool PanelSession::awaitAnswer()
{
    QElapsedTimer waited;
    waited.start();
    while (!awaitBytes(qMin(answerLateMs, m_timeoutMs - int(waited.elapsed())))) {
        if (m_socket.state() != QAbstractSocket::ConnectedState || waited.hasExpired(m_timeoutMs))
            return fail(QStringLiteral("the panel did not answer"));
        if (m_rivals.look(m_socket) == Rival::Present) {
            m_error =
                QStringLiteral("replaced: the panel serves another program that connected after this one");
            return false;
        }
    }
    return true;
}

bool PanelSession::wait(int milliseconds)
{
    QElapsedTimer waited;
    waited.start();
    while (waited.elapsed() < milliseconds) {
        if (awaitBytes(milliseconds - int(waited.elapsed())))
            m_owed -= int(m_answers.take(m_socket.readAll()).size());
        else if (m_socket.state() != QAbstractSocket::ConnectedState)
            return fail(QStringLiteral("the panel has gone"));
    }
    return true;
}

/** A time that has run out reads as no time, never as "for ever". */
bool PanelSession::awaitBytes(int milliseconds)
{
    return m_socket.waitForReadyRead(qMax(0, milliseconds));
}

void PanelSession::close()
{
    m_socket.disconnectFromHost();
    if (m_socket.state() != QAbstractSocket::UnconnectedState)
        m_socket.waitForDisconnected(closeTimeoutMs);
}

bool PanelSession::fail(const QString& what)
{
    m_error = what + QStringLiteral(": ") + m_socket.errorString();
    if (m_socket.state() == QAbstractSocket::ConnectedState)
        m_error += QStringLiteral("; another supervisor may have taken the link");
    return false;
}
