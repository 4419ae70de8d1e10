// A test program in which every test function, or row of its data, runs in a process of its own.
#pragma once

#include <QString>

// For tests that end the program's event loop: the web engine's timers stay dead after that, and
// Qt itself remembers. Started without arguments, the program starts itself once for each case,
// passes their output on and returns the number of failed cases. Started with arguments it is an
// ordinary test program.
#define VEXA_TEST_MAIN_EACH_CASE_ALONE(TestClass)                                                  \
    int main(int argc, char* argv[])                                                               \
    {                                                                                              \
        if (argc < 2)                                                                              \
            return runEachCaseAlone(QString::fromLocal8Bit(argv[0]));                              \
        QApplication program(argc, argv);                                                          \
        TestClass test;                                                                            \
        return QTest::qExec(&test, argc, argv);                                                    \
    }

int runEachCaseAlone(const QString& program);
