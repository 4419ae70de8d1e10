#include "app/application.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    QApplication program(argc, argv);
    Application application;
    return program.exec();
}
