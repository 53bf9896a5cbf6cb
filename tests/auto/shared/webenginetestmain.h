#pragma once

#include <QApplication>
#include <QtTest>

// The main of a suite that makes web views: the web engine shares its
// OpenGL context with the widgets', and that must be set before the
// application exists, which QTEST_MAIN does not allow.
#define SUBJECT_WEBENGINE_TEST_MAIN(TestObject)                                                                        \
    int main(int argc, char *argv[])                                                                                   \
    {                                                                                                                  \
        QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);                                                    \
        QApplication app(argc, argv);                                                                                  \
        TestObject test;                                                                                               \
        QTEST_SET_MAIN_SOURCE_PATH                                                                                     \
        return QTest::qExec(&test, argc, argv);                                                                        \
    }
