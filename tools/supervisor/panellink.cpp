#include "tools/supervisor/panellink.h"

#include "tools/supervisor/words.h"

PanelLink::PanelLink(const QString& host, quint16 port, QObject* parent)
    : QObject(parent)
    , m_host(host)
    , m_port(port)
    , m_retry(this)
    , m_answer(this)
    , m_ask(this)
{
    m_retry.setObjectName(QStringLiteral("retry"));
    m_retry.setSingleShot(true);
    m_answer.setObjectName(QStringLiteral("answer"));
    m_answer.setInterval(answerLateMs);
    m_ask.setObjectName(QStringLiteral("ask"));
    m_ask.setInterval(askEveryMs);
    connect(&m_retry, &QTimer::timeout, this, &PanelLink::connectNow);
    connect(&m_answer, &QTimer::timeout, this, &PanelLink::onAnswerTimer);
    connect(&m_ask, &QTimer::timeout, this, &PanelLink::askMode);
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
    m_takingBack = false;
    m_held.clear();
    open();
}

void PanelLink::takeBack()
{
    m_takingBack = true;
    open();
}

void PanelLink::open()
{
    m_retry.stop();
    forgetQuestions();
    {
        const QSignalBlocker quiet(&m_socket);
        m_socket.abort();
    }
    m_socket.connectToHost(m_host, m_port);
}

bool PanelLink::send(const QByteArray& packet, By by)
{
    if (m_replaced || m_takingBack) {
        if (by == By::Itself)
            return false;
        m_held += packet;
        if (!m_takingBack)
            takeBack();
        return true;
    }
    if (!isUp())
        return false;
    if (m_socket.bytesToWrite() > maxUnsentBytes) {
        drop(QStringLiteral("the panel does not read"));
        return false;
    }
    write(packet);
    return true;
}

void PanelLink::write(const QByteArray& packet)
{
    m_socket.write(packet);
    m_socket.flush();
}

void PanelLink::askMode()
{
    if (m_asked) {
        m_askAgain = true;
        return;
    }
    m_asked = send(modeRequest(), By::Itself);
    if (m_asked) {
        m_waitedMs = 0;
        m_answer.start();
    }
}

void PanelLink::onConnected()
{
    m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1); // a packet leaves in one piece, at once
    m_rivals.begin(m_socket);
    m_pauseMs = firstPauseMs;
    m_ask.start();
    if (!m_takingBack) {
        emit connected();
        return;
    }
    m_takingBack = false;
    if (!m_held.isEmpty())
        write(m_held);
    m_held.clear();
    emit takenBack();
}

void PanelLink::onReadyRead()
{
    for (const quint8 code : m_answers.take(m_socket.readAll())) {
        m_answer.stop();
        m_asked = false;
        m_answered = true;
        m_replaced = false;
        emit modeReported(code);
    }
    if (!m_asked && m_askAgain) {
        m_askAgain = false;
        askMode();
    }
}

/** Late first, then given up. A link that is another's is not given up: a new one would take it away. */
void PanelLink::onAnswerTimer()
{
    m_waitedMs += answerLateMs;
    if (m_waitedMs == answerLateMs)
        emit answerLate();
    lookForRival();
    if (!m_replaced && m_waitedMs >= answerTimeoutMs)
        drop(QStringLiteral("the panel does not answer"));
}

/**
 * A panel that answered and does not any more, with nobody else there: somebody came and went, or the panel
 * is busy. A new link is right for the first and does no harm to the second, which reads the old one first.
 */
void PanelLink::lookForRival()
{
    const Rival rival = m_rivals.look(m_socket);
    if (rival != Rival::None)
        setReplaced(rival == Rival::Present);
    else if (m_answered || m_replaced)
        takeBack();
}

void PanelLink::setReplaced(bool surely)
{
    if (!m_replaced)
        emit replaced(surely);
    m_replaced = true;
}

void PanelLink::onErrorOccurred()
{
    drop(m_socket.errorString());
}

void PanelLink::drop(const QString& reason)
{
    forgetQuestions();
    m_takingBack = false;
    m_held.clear();
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
    m_ask.stop();
    m_answers.clear();
    m_waitedMs = 0;
    m_asked = false;
    m_askAgain = false;
    m_answered = false;
    m_replaced = false;
}
