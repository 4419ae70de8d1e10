// The least program that shows a page: what any program with a web view takes to start.
#include <QApplication>
#include <QUrl>
#include <QWebView>

int main(int argc, char* argv[])
{
    QApplication program(argc, argv);
    QWebView view;
    view.resize(500, 450);
    view.load(QUrl(program.arguments().value(1)));
    view.show();
    return program.exec();
}
