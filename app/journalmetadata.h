// What the word processor's side is told about the chosen journal.
#pragma once

#include <QString>

enum class MetadataShape {
    WithField,   // with a jnlfield element; short communications get a category of their own
    WithoutField // journal name and category as passed, no jnlfield element
};

struct JournalMetadata {
    QString code;     // the journal's template family: "s", "j", "m" or the last letter of its name
    QString category; // the category in lower case, without white space
    QString xml;      // one line; the values stand in it unescaped
};

// jnl is a journal's name, cat an article category, field the sub-field that jnlfield gets; all as
// the page passes them. Pure function.
JournalMetadata makeJournalMetadata(const QString& jnl, const QString& cat, const QString& field,
                                    MetadataShape shape);
