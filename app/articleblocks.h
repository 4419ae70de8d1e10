// Takes the authors and the addresses out of the article that quillet prints.
#pragma once

#include <QString>

struct Article {
    QString html;      // what is left for the word processor to insert
    QString authors;   // the vexa:authors element with its tags, or empty
    QString addresses; // the vexa:addresses element with its tags, or empty
};

// A block reaches from the first opening tag of its element to the last closing tag, with
// everything between them; it is copied as it stands. Element names are compared with their letter
// case, and an opening tag without attributes does not count. Pure function, linear in the length
// of the text.
Article splitArticle(const QString& output);
