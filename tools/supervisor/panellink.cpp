#include "tools/supervisor/panellink.h"

#include "tools/supervisor/words.h"

PanelLink::PanelLink(const QString& host, quint16 port, QObject* parent)
    : QObject(parent)
    , m_host(host)
    , m_port(port)
    , m_retry(this)
    , m_answer(this)
{
    m_retry.setObjectName(QStringLiteral("retry"));
    m_retry.setSingleShot(true);
    m_answer.setObjectName(QStringLiteral("answer"));
    m_answer.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &PanelLink::connectNow);
    connect(&m_answer, &QTimer::timeout, this, &PanelLink::onAnswerTimer);
    connect(&m_socket, &QTcpSocket::connected, this, &PanelLink::onConnected);
    connect(&m_socket, &QTcpSocket::readyRead, this, &PanelLink::onReadyRead);
    connect(&m_socket, &QTcpSocket::errorOccurred, this, &PanelLink::onErrorOccurred);
}

QString PanelLink::address() const
{
    return QStringLiteral("%1:%2").arg(m_host, QString::number(m_port));
}

void PanelLink::connectNow()
{
    m_retry.stop();
    forgetQuestions();
    m_socket.abort();
    m_socket.connectToHost(m_host, m_port);
}

bool PanelLink::send(const QByteArray& packet)
{
    if (!isUp())
        return false;
    if (m_socket.bytesToWrite() > maxUnsentBytes) {
        drop(QStringLiteral("the panel does not read"));
        return false;
    }
    m_socket.write(packet);
    m_socket.flush();
    return true;
}

void PanelLink::askMode()
{
    if (m_asked) {
        m_askAgain = true;
        return;
    }
    m_asked = send(modeRequest());
    if (m_asked)
        m_answer.start(answerLateMs);
}

void PanelLink::onConnected()
{
    m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1); // a packet leaves in one piece, at once
    m_pauseMs = firstPauseMs;
    emit connected();
}

void PanelLink::onReadyRead()
{
    for (const quint8 code : m_answers.take(m_socket.readAll())) {
        m_answer.stop();
        m_asked = false;
        emit modeReported(code);
    }
    if (!m_asked && m_askAgain) {
        m_askAgain = false;
        askMode();
    }
}

/** Late first, then given up. */
void PanelLink::onAnswerTimer()
{
    if (m_answer.interval() != answerLateMs) {
        drop(QStringLiteral("the panel does not answer"));
        return;
    }
    m_answer.start(answerTimeoutMs - answerLateMs);
    emit answerLate();
}

void PanelLink::onErrorOccurred()
{
    drop(m_socket.errorString());
}

void PanelLink::drop(const QString& reason)
{
    forgetQuestions();
    {
        const QSignalBlocker quiet(&m_socket);
        m_socket.abort();
    }
    const int pauseMs = m_pauseMs;
    m_retry.start(pauseMs);
    m_pauseMs = qMin(2 * m_pauseMs, longestPauseMs);
    emit disconnected(reason, pauseMs);
}

void PanelLink::forgetQuestions()
{
    m_answer.stop();
    m_answers.clear();
    m_asked = false;
    m_askAgain = false;
}
