// maketemplate: puts the Word template together from its readable sources.
#include "wordbridge/error.h"
#include "wordtemplate/templatepackage.h"

#include <cstdio>
#include <QFile>

int main(int argc, char* argv[])
{
    if (argc != 4) {
        std::fputs("usage: maketemplate PARTS_FOLDER MACROS_FOLDER OUTPUT.dotm\n", stderr);
        return 2;
    }
    try {
        wordtemplate::buildTemplate(QFile::decodeName(argv[1]), QFile::decodeName(argv[2]))
            .write(QFile::decodeName(argv[3]));
    } catch (const wordbridge::Error& error) {
        std::fprintf(stderr, "maketemplate: error: %s\n", error.what());
        return 1;
    }
    return 0;
}
