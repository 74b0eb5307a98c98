#pragma once

#include "tools/supervisor/modeanswers.h"

#include <QTcpSocket>
#include <QTimer>

/**
 * A connection to the panel that lives as long as the window: it comes back by itself, after a pause that
 * grows from 0.5 s to 8 s. Packets given to it while there is no link are dropped.
 */
class PanelLink : public QObject {
    Q_OBJECT

public:
    static constexpr int firstPauseMs = 500;
    static constexpr int longestPauseMs = 8000;
    /** A network restart keeps the panel from answering for up to 30 s; beyond that the link is made anew. */
    static constexpr int answerTimeoutMs = 35000;
    /** An answer that is this late is worth a word to the user. */
    static constexpr int answerLateMs = 2000;
    /** Bytes that may wait for a panel that does not read; beyond that the link is made anew. */
    static constexpr qint64 maxUnsentBytes = 256 * 1024;

    PanelLink(const QString& host, quint16 port, QObject* parent = nullptr);

    bool isUp() const { return m_socket.state() == QAbstractSocket::ConnectedState; }
    QString address() const;

    /** Sends one packet at once; false when there is no link. */
    bool send(const QByteArray& packet);

    /** Asks for the panel's mode. While an answer is due, further calls come down to one more question. */
    void askMode();

public slots:
    /** Makes the link, or makes it anew. */
    void connectNow();

signals:
    void connected();
    /** There is no link; the next attempt follows after `pauseMs`. */
    void disconnected(const QString& reason, int pauseMs);
    void modeReported(quint8 code);
    void answerLate();

private:
    void onConnected();
    void onReadyRead();
    void onErrorOccurred();
    void onAnswerTimer();
    void drop(const QString& reason);
    void forgetQuestions();

    QString m_host;
    quint16 m_port;
    QTcpSocket m_socket;
    ModeAnswers m_answers;
    QTimer m_retry;
    QTimer m_answer;
    int m_pauseMs = firstPauseMs;
    bool m_asked = false;
    bool m_askAgain = false;
};
