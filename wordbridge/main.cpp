#include "wordbridge/companion.h"

#include <QCoreApplication>

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    return wordbridge::run(QCoreApplication::arguments().mid(1));
}
