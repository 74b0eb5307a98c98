#include "app/dprintf.h"
#include "app/servicemanager.h"
#include "config/configfile.h"
#include "config/unitpaths.h"
#include "link/packet.h"
#include "link/tcp_server.h"
#include "mainwindow/mainwindow.h"

/** Who else learns which mode the panel is in: the supervisor when it asks, the unit through a file, people
 * through the service manager. */

void MainWindow::ResponseCurrentMode()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    const QByteArray payload(1, char(m_mode));
    m_server->WritePkt(m_server->makePktData(quint16(Command::Request), 1, payload));
}

void MainWindow::tellServiceManager() const
{
    for (const wire::Term& mode : wire::modes) {
        if (mode.value == quint8(m_mode))
            ServiceManager::sayMode(mode.word);
    }
}

bool MainWindow::XmlWriteOpermode(QString type)
{
    if (m_longDrain) {
        m_gatheredOpermode = type;
        return true;
    }
    return writeOpermode(type);
}

void MainWindow::writeGatheredOpermode()
{
    const QString type = std::exchange(m_gatheredOpermode, {});
    if (!type.isEmpty())
        writeOpermode(type);
}

bool MainWindow::writeOpermode(const QString& type)
{
    QString error;
    const ConfigWrite result =
        writeConfig(unitPath(UnitPath::OperMode), {{QStringLiteral("type"), type}}, &error);
    if (result == ConfigWrite::NotOpened)
        DPRINTF(4, "%s", error.toUtf8().constData());
    return result == ConfigWrite::Written;
}
