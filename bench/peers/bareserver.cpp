#include <QCoreApplication>
#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>

/**
 * The least that a server of the toolkit can do: `bare-server PORT echo` sends back what it reads,
 * `bare-server PORT drop` forgets it and answers a burst that ends in a byte of 255 with one byte.
 */

namespace {

constexpr char burstEnd = '\xFF';

void echo(QTcpSocket* socket)
{
    socket->write(socket->readAll());
    socket->flush();
}

void drop(QTcpSocket* socket)
{
    if (!socket->readAll().endsWith(burstEnd))
        return;
    socket->write(&burstEnd, 1);
    socket->flush();
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const auto answer = arguments.value(2) == QLatin1String("echo") ? echo : drop;
    QTcpServer server;
    QObject::connect(&server, &QTcpServer::newConnection, &server, [&server, answer] {
        QTcpSocket* const socket = server.nextPendingConnection();
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket, answer] { answer(socket); });
    });
    if (!server.listen(QHostAddress::LocalHost, arguments.value(1).toUShort()))
        return 1;
    return QCoreApplication::exec();
}
