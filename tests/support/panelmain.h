#pragma once

#include <QApplication>
#include <QtTest>

/** Runs a test class in an application set up as the panel's own: 96 dots an inch, whatever the display says.
 */
#define VIREO_TEST_MAIN(TestClass)                                                                           \
    int main(int argc, char** argv)                                                                          \
    {                                                                                                        \
        QCoreApplication::setAttribute(Qt::AA_Use96Dpi);                                                     \
        QApplication application(argc, argv);                                                                \
        TestClass test;                                                                                      \
        return QTest::qExec(&test, argc, argv);                                                              \
    }
