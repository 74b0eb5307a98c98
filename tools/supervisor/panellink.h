#pragma once

#include "tools/supervisor/modeanswers.h"
#include "tools/supervisor/rivalwatch.h"

#include <QTcpSocket>
#include <QTimer>

/**
 * A connection to the panel that lives as long as the window: it comes back by itself, after a pause that
 * grows from 0.5 s to 8 s. Packets given to it while there is no link are dropped.
 *
 * The panel serves its newest caller alone, and nobody tells the one before it: only its questions stay
 * unanswered. Whether the link is ours is therefore asked every second. Another caller that has gone again,
 * as `vireo-supervisor send` does, is followed at once. To one that stays the link is left, or two windows
 * would take it from each other for ever, until the user does something here.
 */
class PanelLink : public QObject {
    Q_OBJECT

public:
    static constexpr int firstPauseMs = 500;
    static constexpr int longestPauseMs = 8000;
    /** A network restart keeps the panel from answering for up to 30 s; beyond that the link is made anew. */
    static constexpr int answerTimeoutMs = 35000;
    /** An answer that is this late is looked into. */
    static constexpr int answerLateMs = 500;
    static constexpr int askEveryMs = 1000;
    /** Bytes that may wait for a panel that does not read; beyond that the link is made anew. */
    static constexpr qint64 maxUnsentBytes = 256 * 1024;

    enum class By {
        Itself, ///< a value that runs; it never takes the link from anybody
        User, ///< something that the user did; it takes the link back
    };

    PanelLink(const QString& host, quint16 port, QObject* parent = nullptr);

    bool isUp() const { return m_socket.state() == QAbstractSocket::ConnectedState; }
    /** Another caller has the link. */
    bool isReplaced() const { return m_replaced; }
    /** A question has no answer yet: what the last one said may be over. */
    bool isAsking() const { return m_asked || m_askAgain; }
    QString address() const;

    /** Sends one packet at once; false when there is no link, or when it is another's. */
    bool send(const QByteArray& packet, By by = By::User);

    /** Asks for the panel's mode. While an answer is due, further calls come down to one more question. */
    void askMode();

public slots:
    /** Makes the link, or makes it anew. */
    void connectNow();

signals:
    /** A new link, maybe to a panel that has just been started. */
    void connected();
    /** There is no link; the next attempt follows after `pauseMs`. */
    void disconnected(const QString& reason, int pauseMs);
    void modeReported(quint8 code);
    void answerLate();
    /** Another caller has the link; not `surely` where this machine cannot tell. */
    void replaced(bool surely);
    /** The link was another's and is ours again; the panel has been running all the time. */
    void takenBack();

private:
    void open();
    void takeBack();
    void onConnected();
    void onReadyRead();
    void onErrorOccurred();
    void onAnswerTimer();
    void lookForRival();
    void setReplaced(bool surely);
    void write(const QByteArray& packet);
    void drop(const QString& reason);
    void forgetQuestions();

    QString m_host;
    quint16 m_port;
    QTcpSocket m_socket;
    ModeAnswers m_answers;
    RivalWatch m_rivals;
    QTimer m_retry;
    QTimer m_answer;
    QTimer m_ask;
    int m_pauseMs = firstPauseMs;
    int m_waitedMs = 0; // for the answer that is due
    bool m_asked = false;
    bool m_askAgain = false;
    bool m_answered = false; // on this connection
    bool m_replaced = false;
    bool m_takingBack = false;
    QByteArray m_held; // what the user did, until the link is ours again
};
