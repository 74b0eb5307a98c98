#pragma once

#include <QByteArray>
#include <QObject>

/**
 * Tells the service manager that started the program that it is ready, and from then on that its event loop
 * still turns, as often as the manager asked for. Without a manager it does nothing and costs nothing.
 *
 * The manager asks with environment variables: NOTIFY_SOCKET is the datagram socket it listens on, a path or,
 * behind an @, an abstract name; WATCHDOG_USEC the microseconds within which it wants to hear; WATCHDOG_PID
 * the process that is meant, any where it is missing. They are taken out of the environment, so that programs
 * started from here do not answer in the panel's place. A name or number that cannot be is no request; a
 * message that cannot be sent is lost without a word.
 */
class Watchdog : public QObject {
public:
    explicit Watchdog(QObject* parent = nullptr);

    /** To be called once, when the supervisor can connect. */
    void announceReady();

private:
    void send(const QByteArray& state) const;

    /** The socket's name as the kernel wants it; empty without a manager. */
    QByteArray m_name;
    /** Milliseconds between two messages; 0 for none. */
    int m_interval = 0;
};
