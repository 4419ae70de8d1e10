// How long osascript takes from its start to the finished .docx, compared with LibreOffice's own
// conversion of the same HTML to .docx, which starts the same program and writes the same format
// but does less: no template, no macro, no metadata.
//
// bench_osascript [REPEATS]     medians of REPEATS runs (default 5), in seconds, and their ratio
#include "wordbridge/error.h"
#include "wordbridge/files.h"

#include <algorithm>
#include <cstdio>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QUrl>
#include <vector>

namespace
{

using wordbridge::writeFile;

QByteArray article(int tables, int rows)
{
    QByteArray html = "<!DOCTYPE html><html lang=\"en\"><head><meta charset=\"utf-8\"><title>Bench"
                      "</title></head><body><p class=\"title\"><a name=\"vexa_title\">Title</a></p>"
                      "<p class=\"authors\"><a name=\"vexa_authors\">&#160;</a></p>"
                      "<p class=\"addresses\"><a name=\"vexa_addresses\">&#160;</a></p>"
                      "<h1>Abstract</h1><p>Text with H<sub>2</sub>O and &#945;.</p>";
    for (int table = 1; table <= tables; ++table) {
        html += "<table><caption>Table " + QByteArray::number(table) +
                ". Experimental details</caption><thead><tr><th>Quantity</th><th>Value</th>"
                "<th>Unit</th></tr></thead><tbody>";
        for (int row = 0; row < rows; ++row)
            html += "<tr><th scope=\"row\"><i>R</i><sub>int</sub></th><td>1.234 (5)</td>"
                    "<td>10<sup>-3</sup></td></tr>";
        html += "</tbody></table>";
    }
    return html + "</body></html>";
}

// The files that both programs work on, in a home folder of their own.
class Bench
{
public:
    Bench()
    {
        environment.insert(QStringLiteral("HOME"), m_folder.path());
        environment.insert(QStringLiteral("XDG_CACHE_HOME"), path("cache"));
        environment.remove(QStringLiteral("DISPLAY"));
        environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
        environment.remove(QStringLiteral("XDG_CONFIG_HOME"));
        writeFile(path("script"),
                  QStringLiteral(
                      "tell application \"Microsoft Word\"\ncreate new document attached template "
                      "(POSIX file \"" VEXA_BUNDLE_DIR "/vexainkworks_wm.dotm\") as string\n"
                      "insert file at text object of selection file name (POSIX file \"%1\") as "
                      "string\nrun VB macro macro name \"Vexa_authors.VexaM_setInitialXmlData\"\n"
                      "end tell\n")
                      .arg(path("article.html"))
                      .toUtf8());
        writeFile(path("publauthors/macstart.xml"),
                  "<vexa:publjnl xmlns:vexa=\"n\"><jnlname>J</jnlname></vexa:publjnl>"
                  "<vexa:authors xmlns:vexa=\"n\" count=\"1\"><vexa:author id=\"a\" seq=\"1\">"
                  "<vexa:family>A</vexa:family></vexa:author></vexa:authors>");
    }

    QString path(const char* name) const { return m_folder.filePath(QLatin1String(name)); }

    double timeOsascript() const
    {
        return time(QStringLiteral(VEXA_BUNDLE_DIR "/osascript"), {path("script")});
    }

    double timeConversion() const
    {
        const QString profile = QUrl::fromLocalFile(path("profile")).toString();
        return time(QStringLiteral("soffice"),
                    {QStringLiteral("-env:UserInstallation=") + profile,
                     QStringLiteral("--headless"), QStringLiteral("--convert-to"),
                     QStringLiteral("docx:MS Word 2007 XML"), QStringLiteral("--outdir"),
                     path("converted"), path("article.html")});
    }

    // The next runs find no profile of LibreOffice.
    void cool() const
    {
        QDir(path("cache")).removeRecursively();
        QDir(path("profile")).removeRecursively();
    }

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();

private:
    double time(const QString& program, const QStringList& arguments) const
    {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setStandardErrorFile(QProcess::nullDevice());
        process.setStandardOutputFile(QProcess::nullDevice());
        QElapsedTimer timer;
        timer.start();
        process.start(program, arguments);
        if (!process.waitForFinished(600000) || process.exitCode() != 0)
            throw wordbridge::Error(program + QStringLiteral(" failed"));
        return static_cast<double>(timer.nsecsElapsed()) / 1e9;
    }

    QTemporaryDir m_folder;
};

double median(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void compare(const Bench& bench, const char* what, bool cold, int repeats)
{
    if (!cold) { // both fill their profiles
        bench.timeOsascript();
        bench.timeConversion();
    }
    std::vector<double> osascript;
    std::vector<double> conversion;
    for (int i = 0; i < repeats; ++i) {
        if (cold)
            bench.cool();
        osascript.push_back(bench.timeOsascript());
        conversion.push_back(bench.timeConversion());
    }
    const double ours = median(osascript);
    const double theirs = median(conversion);
    std::printf("%-24s %10.2f %12.2f %8.2f\n", what, ours, theirs, ours / theirs);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const int repeats = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    try {
        Bench bench;
        std::printf("%-24s %10s %12s %8s\n", "", "osascript", "LibreOffice", "ratio");
        writeFile(bench.path("article.html"), article(2, 40));
        compare(bench, "article, cold", true, repeats);
        compare(bench, "article, warm", false, repeats);
        writeFile(bench.path("article.html"), article(300, 10));
        compare(bench, "300 tables, warm", false, std::min(repeats, 3));
    } catch (const wordbridge::Error& error) {
        std::fprintf(stderr, "bench_osascript: %s\n", error.what());
        return 1;
    }
    return 0;
}
