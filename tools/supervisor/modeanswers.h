#pragma once

#include <QByteArray>
#include <QList>

/**
 * Cuts the panel's answers out of the bytes it sends: packets of command 13 with the mode's code as their one
 * data byte. Other packets are passed over.
 */
class ModeAnswers {
public:
    /** Takes the next bytes as they come and returns the codes of the answers that are complete now. */
    QList<quint8> take(const QByteArray& bytes);

    void clear() { m_waiting.clear(); }

private:
    QByteArray m_waiting; // less than one packet, so at most 64 KiB
};
