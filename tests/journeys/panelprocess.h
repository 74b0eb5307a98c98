#pragma once

#include "link/packet.h"
#include "link/tcp_server.h"

#include <QProcess>
#include <QSignalSpy>
#include <QStringList>
#include <QTcpSocket>
#include <QtTest>

/**
 * The real program in a process of its own, on the unit that VIREO_ROOT names, and a supervisor connected to
 * it. VIREO_UNDER names a command to run the program under, such as a memory checker.
 */
class PanelProcess {
public:
    explicit PanelProcess(const QStringList& arguments,
                          const QString& program = QStringLiteral(VIREO_PROGRAM))
    {
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        QStringList command = qEnvironmentVariable("VIREO_UNDER").split(QLatin1Char(' '), Qt::SkipEmptyParts);
        command << program << arguments;
        m_process.start(command.takeFirst(), command);
    }
    ~PanelProcess()
    {
        m_process.terminate();
        if (!m_process.waitForFinished(10000))
            m_process.kill();
        m_process.waitForFinished();
    }

    /** Connects once the program listens; false when it does not within a minute. */
    bool connectSupervisor()
    {
        const bool connected = QTest::qWaitFor(
            [this] {
                m_link.abort();
                m_link.connectToHost(QHostAddress::LocalHost, tcp_server::port);
                return m_link.waitForConnected(100);
            },
            60000);
        m_link.setSocketOption(QAbstractSocket::LowDelayOption,
                               1); // a question does not wait for its packet's receipt
        return connected;
    }

    void write(const QByteArray& bytes)
    {
        m_link.write(bytes);
        m_link.waitForBytesWritten();
    }
    template <typename Data> void send(Command command, const Data& data) { write(packetOf(command, data)); }

    /** Asks for the mode; -1 without an answer. Everything sent before is handled by then. */
    int mode(int timeoutMs = 10000)
    {
        send(Command::Request, wire::Request::Mode);
        QSignalSpy arrived(&m_link, &QTcpSocket::readyRead);
        while (m_link.bytesAvailable() < 5)
            if (!arrived.wait(timeoutMs))
                return -1;
        const QByteArray answer = m_link.read(5);
        return answer.startsWith(packetOf(quint16(Command::Request), 1, {})) ? int(quint8(answer.at(4))) : -1;
    }

    /** Everything printed so far, a line each; the answer to mode() is printed before it arrives. */
    QStringList lines()
    {
        m_process.waitForReadyRead(0);
        m_output += m_process.readAll();
        QStringList result;
        for (const QByteArray& line : m_output.split('\n'))
            result << QString::fromUtf8(line);
        return result;
    }
    bool waitForLine(const QString& line)
    {
        return QTest::qWaitFor([&] { return lines().contains(line); }, 10000);
    }
    void forgetLines()
    {
        lines();
        m_output.clear();
    }

    qint64 processId() const { return m_process.processId(); }
    bool isRunning() const { return m_process.state() == QProcess::Running; }
    QTcpSocket& link() { return m_link; }

private:
    QProcess m_process;
    QTcpSocket m_link;
    QByteArray m_output;
};
