#pragma once

#include <QSet>

class QTcpSocket;

/** Whether somebody connected to the panel after us and so took our place. */
enum class Rival {
    None,
    Present,
    Unknown, ///< the panel runs elsewhere: this machine cannot tell
};

/**
 * Watches who else holds a connection to the panel. Neither the panel nor the connection tells a caller that
 * it was replaced; the kernel's list of connections does, where the panel runs on this machine.
 */
class RivalWatch {
public:
    /** To be called as soon as `own` is connected: whoever is there by then came before. */
    void begin(const QTcpSocket& own);

    Rival look(const QTcpSocket& own) const;

private:
    QSet<quint16> m_earlier; // the ports of those who were there before
};
