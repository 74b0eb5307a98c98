#pragma once

#include <QApplication>
#include <QtTest>

/**
 * Runs a test class in an application set up as the panel's own: 96 dots an inch, whatever the display says.
 * Version 5 of the toolkit heeds only the environment variable for the fonts of widgets.
 *
 * How long a test may take is for the one who runs it to say; of itself the toolkit ends a function after
 * five minutes.
 */
template <typename TestClass> int runTest(int argc, char** argv)
{
    qputenv("QT_FONT_DPI", "96");
    if (!qEnvironmentVariableIsSet("QTEST_FUNCTION_TIMEOUT"))
        qputenv("QTEST_FUNCTION_TIMEOUT", "86400000");
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    QApplication application(argc, argv);
    TestClass test;
    return QTest::qExec(&test, argc, argv);
}

#define VIREO_TEST_MAIN(TestClass)                                                                           \
    int main(int argc, char** argv)                                                                          \
    {                                                                                                        \
        return runTest<TestClass>(argc, argv);                                                               \
    }
