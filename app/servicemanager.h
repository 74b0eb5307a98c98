#pragma once

#include <QByteArray>
#include <QObject>
#include <QTimer>

/**
 * Talks to the service manager that started the program: that it is ready; from then on, as often as the
 * manager asked for, that its event loop still turns; and in a line for people what it does now, on each
 * change. Without a manager it does nothing and costs nothing.
 *
 * The manager asks with environment variables: NOTIFY_SOCKET is the datagram socket it listens on, a path or,
 * behind an @, an abstract name; WATCHDOG_USEC the microseconds within which it wants to hear; WATCHDOG_PID
 * the process that is meant, any where it is missing. They are taken out of the environment, so that programs
 * started from here do not answer in the panel's place. A name or number that cannot be is no request; a
 * message that cannot be sent is lost without a word.
 *
 * There is one in the program, made by main. Who has something to say finds it by the static functions, which
 * do nothing where there is none.
 */
class ServiceManager : public QObject {
public:
    explicit ServiceManager(QObject* parent = nullptr);
    ~ServiceManager() override;

    /** To be called once, when the supervisor can connect. */
    void announceReady();

    /** For a wait that keeps the event loop from turning, once a second or so: the panel lives all the same.
     */
    static void sayAlive();
    /** The mode that shows and the peer that is served, as the line for people names them. */
    static void sayMode(const QByteArray& mode);
    static void sayPeer(const QByteArray& peer);

private:
    void change(QByteArray& part, const QByteArray& text);
    void sayStatus() const;
    void send(const QByteArray& state) const;

    /** The socket's name as the kernel wants it; empty without a manager. */
    QByteArray m_name;
    /** Milliseconds between two messages; 0 for none. */
    int m_interval = 0;
    QByteArray m_mode = "none";
    QByteArray m_peer = "no supervisor";
    /** Any number of changes in one turn of the event loop are one line. */
    QTimer m_statusDue;
};
