// What the program tells the word processor about the article: journal, authors, addresses.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

namespace wordbridge
{

struct Author {
    QString given;
    QString family;
    QStringList addressIds;
    bool isCorresponding = false;
    QString email;
    QString note;

    QString name() const { return (given + QLatin1Char(' ') + family).trimmed(); }
};

struct Address {
    QString id;
    QString label;
    QString text;
};

struct PublicationMetadata {
    QString journal;
    QString category;
    QString field;
    QVector<Author> authors;
    QVector<Address> addresses;
    // The two blocks as they stand in the file; empty where they are missing or not well-formed.
    QString authorsXml;
    QString addressesXml;
    QStringList remarks; // what is wrong with the file, a sentence each
};

// Reads the bytes of macstart.xml: the journal element, then a block of authors and one of
// addresses, each of which may be missing. The text is encoded twice (see textencoding.h). The
// values of the journal element are taken as they stand, since the program does not escape them. A
// damaged file never stops anything: what cannot be read is left out and remarked on.
PublicationMetadata readPublicationMetadata(const QByteArray& bytes);

// The metadata as a well-formed document of its own, for the .docx: an element `manuscript` with
// `journal`, `category`, `field` (as far as they are not empty) and the two blocks.
QByteArray manuscriptXml(const PublicationMetadata& metadata);

// The properties that the template's macro sets, as the meta.xml of an OpenDocument text.
QByteArray openDocumentMeta(const PublicationMetadata& metadata, const QString& title);

} // namespace wordbridge
