#include <QApplication>
#include <QLabel>

/** The least that a program with a window of the panel's size can be. */
int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QLabel label(QStringLiteral("label"));
    label.setFixedSize(320, 240);
    label.show();
    return QApplication::exec();
}
