// What the elements, classes and inline styles of an article mean for its text.
#pragma once

#include "wordbridge/htmltree.h"
#include "wordbridge/odtstyles.h"

namespace wordbridge
{

// Encoded names of styles that the article's writer refers to itself; all others come from classes.
extern const QString bodyStyle;
extern const QString captionStyle;

// What a paragraph inherits from the elements around it.
struct Surroundings {
    ParagraphFormat paragraph{bodyStyle, {}, 0, false};
    TextFormat text;
    int headingLevel = 0; // 0: no heading
    bool preformatted = false;
};

bool isOneOf(const QString& name, std::initializer_list<const char*> names);

// Whether an element and all in it is no text of the article: scripts, controls, the program's own.
bool isLeftOut(const QString& elementName);

// Whether an element ends the paragraph before it.
bool isBlock(const QString& elementName);

// Whether an inline element wrongly holds a block.
bool containsBlock(const HtmlNode& element);

// What holds inside an element, given what holds around it.
Surroundings insideBlock(const HtmlNode& block, const Surroundings& around);
Surroundings insideInline(const HtmlNode& element, const Surroundings& around);

} // namespace wordbridge
