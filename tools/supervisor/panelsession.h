#pragma once

#include "tools/supervisor/modeanswers.h"
#include "tools/supervisor/rivalwatch.h"

#include <QTcpSocket>

#include <optional>

/**
 * One connection to the panel, used step by step: every call returns when its work is done. For the command
 * line and scripts; errorString() gives the reason after a call that failed, in one line.
 */
class PanelSession {
public:
    /** A network restart keeps the panel from answering for up to 30 s. */
    static constexpr int answerTimeoutMs = 35000;
    /** An answer that is this late is looked into: another caller may have taken the link. */
    static constexpr int answerLateMs = 500;

    explicit PanelSession(int timeoutMs = answerTimeoutMs)
        : m_timeoutMs(timeoutMs)
    {
    }

    bool open(const QString& host, quint16 port);

    /** Returns when all bytes have left. */
    bool send(const QByteArray& packet);

    /** Asks for the mode's code; empty when no answer came. */
    std::optional<quint8> askMode();

    /** Lets time pass; false when the panel closes the link meanwhile. */
    bool wait(int milliseconds);

    /** Ends the connection after the last byte has left. */
    void close();

    QString errorString() const { return m_error; }

private:
    bool awaitBytes(int milliseconds);
    bool awaitAnswer();
    bool fail(const QString& what);

    int m_timeoutMs;
    QTcpSocket m_socket;
    ModeAnswers m_answers;
    RivalWatch m_rivals;
    int m_owed = 0; // answers still to come
    QString m_error;
};
