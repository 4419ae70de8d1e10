// Tells a macromolecular CIF (mmCIF) from other text.
#pragma once

#include <QByteArray>
#include <QString>

// True when text contains one of a fixed list of mmCIF data names and category prefixes, in any
// letter case, anywhere: in a loop header, a value or a comment. CIF syntax plays no part. Pure
// function.
bool isMmCifText(const QString& text);

// The same for a text that comes in pieces.
class MmCifSearch
{
public:
    void read(const QString& piece);
    void readAscii(const QByteArray& piece); // a piece that is all ASCII

    bool hasFound() const { return found; }

private:
    QString tail; // the end of what was read, in which a marker may have begun
    bool found = false;
};
