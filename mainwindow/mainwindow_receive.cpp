#include "app/dprintf.h"
#include "app/limits.h"
#include "link/packet.h"
#include "link/tcp_server.h"
#include "mainwindow/mainwindow.h"
#include "protocol/paparser.h"

#include <QDeadlineTimer>
#include <QTimer>

/**
 * The receive queue. Chunks follow the segments of TCP, not the packets; the cutter takes packets off the
 * front and finds its way back after junk by dropping single bytes. At most four bytes, a bare header, wait
 * for the next chunk.
 */

void MainWindow::stackBuff(QByteArray chunk)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (chunk.isEmpty())
        return;
    m_received.append(chunk);
    emit sgBuffStacked();
}

/**
 * What remains in the queue is announced again, which calls this slot again. Were such a nested call to do
 * the work, a megabyte of junk would nest a million deep; so it only notes that there is more, and the
 * outermost one goes on.
 */
void MainWindow::parsingfromSupervisor()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    m_moreToDrain = true;
    if (!m_draining)
        drain();
}

/**
 * A burst that takes longer than a turn is finished in later turns of the event loop, so that painting,
 * timers and the service manager's watchdog live on. Meanwhile nothing more is taken from the link.
 */
void MainWindow::drain()
{
    const QDeadlineTimer turn(limits::drainTurnMs);
    m_draining = true;
    while (m_moreToDrain && !turn.hasExpired()) {
        m_moreToDrain = false;
        consumeFront();
    }
    m_draining = false;
    m_received.remove(0, m_consumed);
    m_consumed = 0;
    tellServiceManager();
    if (m_moreToDrain)
        goOnInTheNextTurn();
    else if (m_longDrain)
        endLongDrain();
}

void MainWindow::goOnInTheNextTurn()
{
    if (!m_longDrain)
        m_server->holdReceiving();
    m_longDrain = true;
    writeGatheredOpermode();
    QTimer::singleShot(0, this, [this] {
        if (m_moreToDrain)
            drain();
    });
}

void MainWindow::endLongDrain()
{
    m_longDrain = false;
    writeGatheredOpermode();
    m_server->resumeReceiving();
}

void MainWindow::consumeFront()
{
    const int waiting = int(m_received.size()) - m_consumed;
    if (waiting <= PacketHeader::bytes)
        return;
    int taken = checkupPacket();
    if (taken != 0)
        m_parser->parseBySupervisor(m_received.mid(m_consumed, taken));
    else
        taken = 1;
    m_consumed += qMin(taken, waiting);
    if (m_consumed < m_received.size())
        emit sgBuffStacked();
}

int MainWindow::checkupPacket()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    const PacketHeader header = PacketHeader::from(m_received, m_consumed);
    const int waiting = int(m_received.size()) - m_consumed;
    if (header.command < firstCommand || header.command > lastCommand)
        return 0;
    // The whole queue is held against the data length alone: up to four missing bytes pass.
    if (waiting < header.length || header.length == 0) {
        DPRINTF(4, "size error");
        DPRINTF(4, " Pkt queue size [ %d ] ,, need DataLen [ %d ] ", waiting, header.length);
        DPRINTF(4, "Pkt : %s", m_received.mid(m_consumed, PacketHeader::bytes).toHex().constData());
        return 0;
    }
    return header.length + PacketHeader::bytes;
}
